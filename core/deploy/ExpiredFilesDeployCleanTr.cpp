#include "core/deploy/ExpiredFilesDeployCleanTr.h"

#include <algorithm>

#include <QDir>

#include "core/deploy/DeployedFile.h"
#include "platform/FileEntry.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/Log.h"

namespace {

QString cleanName(const QString &name)
{
    return QDir::cleanPath(QDir::fromNativeSeparators(name));
}

} // namespace

bool ExpiredFilesDeployCleanTr::Execute()
{
    if (!begin())
        return false;
    QList<quint64> expired = m_history->getDeployResInDeployFolder(m_folder);
    const auto firstWanted = std::partition(
        expired.begin(), expired.end(), [this](quint64 key) { return !m_wanted.contains(key); });
    QSet<QString> kept;
    for (auto key = firstWanted; key != expired.end(); ++key) {
        const QStringList names = recordedFiles(*key);
        for (const QString &name : names)
            kept.insert(platform::comparableName(cleanName(name)));
    }
    expired.erase(firstWanted, expired.end());

    bool success = true;
    for (const quint64 key : qAsConst(expired)) {
        const QStringList names = recordedFiles(key);
        m_history->deleteRecord(m_folder, key, true);
        success = removeFiles(names, kept) && success;
        m_result += names;
    }
    return success;
}

QStringList ExpiredFilesDeployCleanTr::getExecuteResult()
{
    return m_result;
}

bool ExpiredFilesDeployCleanTr::removeFiles(const QStringList &names,
                                            const QSet<QString> &kept) const
{
    bool success = true;
    for (const QString &recorded : names) {
        const QString name = cleanName(recorded);
        if (kept.contains(platform::comparableName(name)))
            continue;
        if (!DeployedFile::isRemovable(m_folder, recorded)) {
            Log::warning(QLatin1String("not removed, for it leads out of ") % m_folder %
                         QLatin1String(": ") % recorded);
            success = false;
        } else if (CCommonFunction::DeleteSingleFile(m_folder % QLatin1Char('/') % name)) {
            removeEmptyFoldersAbove(name);
        } else {
            success = false;
        }
    }
    return success;
}

void ExpiredFilesDeployCleanTr::removeEmptyFoldersAbove(const QString &name) const
{
    const QDir top(m_folder);
    QString folder = name;
    while (folder.contains(QLatin1Char('/'))) {
        folder.truncate(folder.lastIndexOf(QLatin1Char('/')));
        if (!top.rmdir(folder))
            return;
    }
}
