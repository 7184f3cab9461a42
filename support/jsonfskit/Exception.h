#pragma once

#include <exception>

#include <QByteArray>
#include <QString>

#include "support/jsonfskit/JsonFsKitExport.h"

/// Why a reader could not read. Thrown by value between a reader and its caller, caught by
/// reference; never crosses the border of the library.
class JSONFSKIT_EXPORT Exception : public std::exception
{
public:
    explicit Exception(const QString &cause);
    ~Exception() override;

    /// The failure in words; names what was being read.
    QString cause() const;

    /// cause() in UTF-8.
    const char *what() const noexcept override;

private:
    QByteArray m_cause;
};
