#include "support/transferservice/LocalCopy.h"

#include <QDateTime>
#include <QFileInfo>

#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

using platform::RenameOutcome;

namespace {

/// Shorter files are fetched again as a whole, which spares them a write of the state file.
constexpr qint64 leastResumedBytes = 256 * 1024;
/// Of one write. From larger ones the system makes large blocks of its cache, out of memory that
/// nothing has used lately, which on a virtual machine costs several times the copying itself.
constexpr qint64 writtenAtOnceBytes = 64 * 1024;

QString partPathOf(const QString &filePath)
{
    return filePath + QLatin1String(".part");
}

QString statePathOf(const QString &filePath)
{
    return filePath + QLatin1String(".state");
}

bool isComplete(const QFileInfo &file, const DownloadRecord &record)
{
    return file.isFile() && (record.totalBytes < 0 || file.size() == record.totalBytes);
}

} // namespace

LocalCopy::LocalCopy(const QString &filePath, const QUrl &url)
    : m_filePath(filePath),
      m_url(url.toString(QUrl::FullyEncoded)),
      m_part(partPathOf(filePath)),
      m_state(readDownloadState(statePathOf(filePath)))
{
    const bool hadFile = m_state.file.has_value();
    const bool hadPart = m_state.part.has_value();
    if (hadFile && (m_state.file->url != m_url || !isComplete(QFileInfo(filePath), *m_state.file)))
        m_state.file.reset();
    const QFileInfo part(m_part.fileName());
    if (hadPart && (m_state.part->url != m_url || m_state.part->rangeValidator.isEmpty() ||
                    !part.isFile() || part.size() == 0))
        m_state.part.reset();
    m_partBytes = m_state.part ? part.size() : 0;
    m_isStateOutdated = hadFile != m_state.file.has_value() || hadPart != m_state.part.has_value();
}

bool LocalCopy::removeAll(const QString &filePath)
{
    bool isGone = true;
    for (const QString &path : {partPathOf(filePath), filePath, statePathOf(filePath)})
        isGone = FS::removeFile(path) && isGone;
    return isGone;
}

bool LocalCopy::isResumable() const
{
    return m_partBytes > 0 && !partRecord().rangeValidator.isEmpty();
}

qint64 LocalCopy::availableBytes() const
{
    return m_partBytes > 0 || !hasFile() ? m_partBytes : QFileInfo(m_filePath).size();
}

qint64 LocalCopy::expectedBytes() const
{
    if (m_state.part)
        return qMax<qint64>(0, m_state.part->totalBytes);
    return hasFile() ? QFileInfo(m_filePath).size() : 0;
}

bool LocalCopy::makeResumable()
{
    const qint64 total = partRecord().totalBytes;
    if (m_partBytes == 0 || total < 0 || m_partBytes < total)
        return true;
    if (m_partBytes > total)
        return dropPart();
    if (!QFile::resize(m_part.fileName(), total - 1))
        return complain("cannot shorten ");
    m_partBytes = total - 1;
    return true;
}

bool LocalCopy::beginPart(const DownloadRecord &record)
{
    // First the old bytes go, then the record changes: never does a record stand beside bytes of
    // another version.
    if (m_filePath.isEmpty() || !FS::ensureFilePathExists(m_filePath) ||
        !openPart(QIODevice::Truncate))
        return complain("cannot write ");
    m_isStateOutdated = m_isStateOutdated || m_state.part.has_value();
    m_partBytes = 0;
    m_state.part = record;
    m_state.part->url = m_url;
    const bool isWorthARecord = record.totalBytes < 0 || record.totalBytes >= leastResumedBytes;
    return (!m_isStateOutdated && !isWorthARecord) || writeState();
}

bool LocalCopy::resumePart(qint64 totalBytes)
{
    if (!openPart(QIODevice::Append))
        return complain("cannot write ");
    if (totalBytes < 0 || m_state.part->totalBytes >= 0)
        return true;
    m_state.part->totalBytes = totalBytes;
    return writeState();
}

bool LocalCopy::append(const char *data, qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        const qint64 written = m_part.write(data + done, qMin(size - done, writtenAtOnceBytes));
        if (written <= 0)
            return complain("cannot write ");
        done += written;
        m_partBytes += written;
    }
    return true;
}

bool LocalCopy::isPartUntouched() const
{
    return QFileInfo(m_part.fileName()).size() == m_partBytes;
}

bool LocalCopy::dropPart()
{
    m_part.close();
    m_partBytes = 0;
    m_state.part.reset();
    m_isStateOutdated = true;
    return bool(FS::removeFile(m_part.fileName()));
}

RenameOutcome LocalCopy::completePart()
{
    // An old part that was only resumed for its last byte would otherwise keep an old date.
    m_part.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    m_part.close();
    if (!isPartUntouched()) {
        complain("somebody else changed ");
        return RenameOutcome::Failed;
    }
    const RenameOutcome outcome = platform::replaceFile(m_part.fileName(), m_filePath);
    if (outcome != RenameOutcome::Renamed && outcome != RenameOutcome::Held)
        complain("cannot rename ");
    if (outcome != RenameOutcome::Renamed)
        return outcome;
    // The record follows the file: one about a version that is not there yet would let an old file
    // pass for the new one.
    m_state.file = std::exchange(m_state.part, std::nullopt);
    m_partBytes = 0;
    // Without it the file is complete all the same.
    writeState();
    return outcome;
}

bool LocalCopy::openPart(QIODevice::OpenMode mode)
{
    m_part.close();
    // Unbuffered: what was written is the system's, also when this process is killed.
    return m_part.open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode);
}

bool LocalCopy::writeState()
{
    m_isStateOutdated = !writeDownloadState(statePathOf(m_filePath), m_state);
    return !m_isStateOutdated || complain("no state kept for ");
}

bool LocalCopy::complain(const char *what) const
{
    Log::warning(QLatin1String("download: ") + QLatin1String(what) + m_part.fileName() +
                 QLatin1String(": ") + m_part.errorString());
    return false;
}
