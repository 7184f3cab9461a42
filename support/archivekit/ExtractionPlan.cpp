#include "support/archivekit/ExtractionPlan.h"

#include "support/archivekit/EntryNames.h"

namespace archivekit {

namespace {

/// "./name" and "name/" are usual ways to write a name.
QString tidy(const QString &name, EntryType type)
{
    QString path = name;
    while (path.startsWith(QLatin1String("./")))
        path.remove(0, 2);
    if (type == EntryType::Folder && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path == QLatin1String(".") ? QString() : path;
}

} // namespace

ExtractionPlan::ExtractionPlan(qint64 mostBytes) : m_mostBytes(mostBytes) {}

bool ExtractionPlan::take(const EntryHeader &entry)
{
    if (++m_count > mostEntries)
        return refuse(QStringLiteral("the archive has too many entries"));
    if (entry.encrypted)
        return refuse(QStringLiteral("the entry is encrypted"));
    if (entry.type == EntryType::Other)
        return refuse(QStringLiteral("the entry is neither a file nor a folder"));
    m_path = tidy(entry.name, entry.type);
    if (m_path.isEmpty() && !entry.name.isEmpty() && entry.type == EntryType::Folder)
        return true;
    const NameFault fault = faultOf(m_path);
    if (fault != NameFault::None)
        return refuse(textOf(fault));
    if (entry.type == EntryType::File) {
        if (entry.bytes < 0)
            return refuse(QStringLiteral("the entry does not tell its size"));
        if (entry.bytes > m_mostBytes - m_totalBytes)
            return refuse(QStringLiteral("the archive does not fit on the disk"));
        m_totalBytes += entry.bytes;
    } else if (entry.bytes > 0) {
        return refuse(QStringLiteral("the entry is a folder that has content"));
    }
    return claimFoldersAbove(m_path) && claim(m_path, entry.type);
}

bool ExtractionPlan::refuse(const QString &reason)
{
    m_refusal = reason;
    return false;
}

bool ExtractionPlan::claim(const QString &path, EntryType type)
{
    const QString key = path.toCaseFolded();
    const auto earlier = m_claims.constFind(key);
    if (earlier == m_claims.constEnd()) {
        m_claims.insert(key, {path, type});
        if (type == EntryType::Folder)
            m_folders << path;
        return true;
    }
    if (earlier->path != path)
        return refuse(QLatin1String("the name differs from \"") % earlier->path %
                      QLatin1String("\" by case alone"));
    if (type == EntryType::File || earlier->type == EntryType::File)
        return refuse(QStringLiteral("the archive has two entries of that name"));
    return true;
}

bool ExtractionPlan::claimFoldersAbove(const QString &path)
{
    const int end = path.lastIndexOf(QLatin1Char('/'));
    if (end < 0 || path.leftRef(end) == m_lastFolder)
        return true;
    const QString folder = path.left(end);
    if (!claimFoldersAbove(folder) || !claim(folder, EntryType::Folder))
        return false;
    m_lastFolder = folder;
    return true;
}

} // namespace archivekit
