#pragma once

#include <mutex>

#include <QHash>
#include <QJsonObject>
#include <QString>

/// Counts the requests and the bytes of bodies that went out, without their headers. Any thread.
class Traffic
{
public:
    void addRequest(const QString &path);
    void addBytes(const QString &path, qint64 bytes);
    void clear();

    /// "requests" and "bytes" for all paths that begin with @p path, and under "prefixes" the same
    /// for each first folder below the root.
    QJsonObject toJson(const QString &path) const;

private:
    struct Count
    {
        qint64 requests = 0;
        qint64 bytes = 0;
        QJsonObject toJson() const;
    };

    mutable std::mutex m_mutex;
    QHash<QString, Count> m_counts;
};
