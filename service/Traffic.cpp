#include "service/Traffic.h"

#include <map>

void Traffic::addRequest(const QString &path)
{
    const std::lock_guard lock(m_mutex);
    ++m_counts[path].requests;
}

void Traffic::addBytes(const QString &path, qint64 bytes)
{
    const std::lock_guard lock(m_mutex);
    m_counts[path].bytes += bytes;
}

void Traffic::clear()
{
    const std::lock_guard lock(m_mutex);
    m_counts.clear();
}

QJsonObject Traffic::Count::toJson() const
{
    return {{QStringLiteral("requests"), requests}, {QStringLiteral("bytes"), bytes}};
}

QJsonObject Traffic::toJson(const QString &path) const
{
    const std::lock_guard lock(m_mutex);
    Count all;
    std::map<QString, Count> folders;
    for (auto it = m_counts.cbegin(); it != m_counts.cend(); ++it) {
        if (!it.key().startsWith(path))
            continue;
        const int end = it.key().indexOf(QLatin1Char('/'), 1);
        for (Count *count : {&all, &folders[it.key().left(qMax(end, 0) + 1)]}) {
            count->requests += it->requests;
            count->bytes += it->bytes;
        }
    }
    QJsonObject prefixes;
    for (const auto &[folder, count] : folders)
        prefixes.insert(folder, count.toJson());
    QJsonObject answer = all.toJson();
    answer.insert(QStringLiteral("prefixes"), prefixes);
    return answer;
}
