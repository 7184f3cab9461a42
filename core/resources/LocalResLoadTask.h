#pragma once

#include <memory>

#include <QHash>
#include <QMap>
#include <QMetaObject>
#include <QRegExp>
#include <QStringList>
#include <QTimer>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"
#include "support/coresupport/TaskAbstract.h"

class QDirIterator;

/// Finds the resources that lie on disk by their .inf files, Java runtimes excepted.
///
/// Main thread only; started once. Each turn of the event loop lists one directory, of a large one
/// only a part, or looks at one file, so that a large collection does not freeze the host. It
/// always ends in success, and does not open the files: whether one is sound is found by who loads
/// it.
class RIVETCORE_EXPORT LocalResLoadTask : public TaskAbstract
{
    Q_OBJECT
public:
    /// @p baseDir is the directory of all downloads.
    explicit LocalResLoadTask(const QString &baseDir, QObject *parent = nullptr);
    ~LocalResLoadTask() override;

Q_SIGNALS:
    /// In no particular order.
    void oneResLoaded(uint id, uint type);

protected:
    void onTaskRun() override;

private:
    void runOnEachTurn(void (LocalResLoadTask::*step)());
    void listNextDirectory();
    void reportNextFile();

    const QStringList m_nameFilters;
    const QRegExp m_filePattern;
    QMap<QString, ResType> m_pendingDirectories;
    std::unique_ptr<QDirIterator> m_listing; ///< of the first of them, once begun
    QHash<ResType, QStringList> m_foundFiles;
    const QString m_baseDir;
    QTimer m_timer;
    QMetaObject::Connection m_timerConnection;
};
