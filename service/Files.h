#pragma once

#include "service/Exchange.h"

/// The download server: the files below one folder, with ETag and Last-Modified, conditional
/// requests and single ranges. Any thread.
class Files
{
public:
    explicit Files(QString folder);

    /// The answer to a request for @p name, a path below the folder.
    Answer get(const QString &name, const Call &call) const;

private:
    std::shared_ptr<QFile> open(const QString &name) const;

    const QString m_folder;
};
