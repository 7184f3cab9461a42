#include "support/archivekit/Extraction.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <QThreadPool>

#include "platform/Utf8Names.h"
#include "support/archivekit/EntryNames.h"
#include "support/archivekit/WorkQueue.h"
#include "support/archivekit/ZipDirectory.h"
#include "support/jsonfskit/Log.h"

namespace archivekit {

namespace {

// Left to the system and to other programs on the disk.
constexpr qint64 reservedBytes = 64 * 1024 * 1024;

/// What the disk of @p folder, which need not exist yet, has room for.
qint64 roomFor(QString folder)
{
    while (!QFileInfo::exists(folder) && !QDir(folder).isRoot())
        folder = QFileInfo(QDir().absoluteFilePath(folder)).path();
    return std::max<qint64>(QStorageInfo(folder).bytesAvailable() - reservedBytes, 0);
}

/// What is unpacked already, scaled up by the used share of the archive.
quint64 guessedTotal(quint64 done, double share)
{
    return static_cast<quint64>(static_cast<double>(done) / std::max(share, 1e-6));
}

/// Who may read the file may run it.
void makeExecutable(QFile &file)
{
    QFileDevice::Permissions permissions = file.permissions();
    permissions.setFlag(QFileDevice::ExeOwner, permissions & QFileDevice::ReadOwner);
    permissions.setFlag(QFileDevice::ExeGroup, permissions & QFileDevice::ReadGroup);
    permissions.setFlag(QFileDevice::ExeOther, permissions & QFileDevice::ReadOther);
    if (!file.setPermissions(permissions))
        Log::warning(QLatin1String("can not make \"") % file.fileName() %
                     QLatin1String("\" executable"));
}

} // namespace

/// What one thread has for unpacking a zip. The entries lie in the order in which the reader
/// meets them.
struct Extraction::ZipWorker
{
    ArchiveReader reader;
    const std::vector<EntryHeader> &entries;
    const std::vector<QString> &paths;
    size_t reached = 0; ///< the entries before it are behind the reader
    bool isOpen = false;

    /// Brings the reader to the entry at @p wanted.
    bool goTo(size_t wanted)
    {
        if (!isOpen || wanted < reached) {
            reached = 0;
            isOpen = reader.open();
        }
        while (isOpen && reached <= wanted) {
            if (reader.nextEntry() != ReadStep::Next)
                return false;
            ++reached;
        }
        return isOpen;
    }
};

Extraction::Extraction(QString archivePath, QString targetDirectory)
    : m_archivePath(archivePath), m_targetDirectory(targetDirectory)
{
}

bool Extraction::run()
{
    const platform::Utf8Names names;
    m_staging.emplace(m_targetDirectory);
    m_isStream = !ZipDirectory::isZip(m_archivePath);
    const bool isDone = (m_isStream ? unpackStream() : unpackZip()) && !m_stop && commit();
    m_total = isDone ? m_done.load() : m_total.load();
    m_staging.reset();
    return isDone;
}

void Extraction::cancel()
{
    const QMutexLocker lock(&m_failing);
    m_hasFailed = true;
    m_stop = true;
}

Extraction::Progress Extraction::progress() const
{
    const quint64 done = m_done;
    return {done, std::max<quint64>(done, m_total)};
}

bool Extraction::unpackZip()
{
    ZipDirectory directory(m_stop);
    if (!directory.read(m_archivePath))
        return fail(directory.failedEntry(), directory.failure());
    const std::vector<EntryHeader> &entries = directory.entries();
    ExtractionPlan plan(roomFor(m_targetDirectory));
    std::vector<QString> paths;
    for (const EntryHeader &entry : entries) {
        if (m_stop)
            return false;
        if (!plan.take(entry))
            return fail(entry.name, plan.refusal());
        paths.push_back(plan.path());
    }
    m_total = static_cast<quint64>(plan.totalBytes());
    if (!prepareAndMakeFolders(plan.folders()))
        return false;

    QThreadPool pool;
    const auto threads = static_cast<size_t>(pool.maxThreadCount());
    const std::vector<Batch> batches = batchesOf(entries, plan.totalBytes(), threads);
    std::atomic<size_t> next{0};
    for (size_t i = 0; i < std::min(threads, batches.size()); ++i) {
        pool.start([&] {
            const platform::Utf8Names names;
            ZipWorker worker{ArchiveReader(m_archivePath, ReaderFormat::Zip, m_stop), entries,
                             paths};
            for (size_t taken = next++; taken < batches.size(); taken = next++) {
                if (!unpackBatch(worker, batches[taken]))
                    return;
            }
        });
    }
    pool.waitForDone();
    return !m_stop;
}

bool Extraction::unpackBatch(ZipWorker &worker, const Batch &batch)
{
    for (const size_t wanted : batch) {
        if (m_stop || !worker.goTo(wanted))
            return fail(worker.entries[wanted].name, worker.reader.failure());
        if (!writeEntry(worker.reader, worker.entries[wanted], worker.paths[wanted]))
            return false;
    }
    return true;
}

bool Extraction::unpackStream()
{
    ArchiveReader reader(m_archivePath, ReaderFormat::SevenZipOrTar, m_stop);
    if (!reader.open())
        return fail({}, reader.failure());
    ExtractionPlan plan(roomFor(m_targetDirectory));
    QString lastName;
    ReadStep step = reader.nextEntry();
    for (; step == ReadStep::Next; step = reader.nextEntry()) {
        const EntryHeader entry = reader.header();
        lastName = entry.name;
        if (!plan.take(entry))
            return fail(entry.name, plan.refusal());
        if (!prepareAndMakeFolders(plan.folders()))
            return false;
        if (entry.type == EntryType::File && !writeEntry(reader, entry, plan.path()))
            return false;
        if (m_stop)
            return false;
    }
    if (step == ReadStep::Failed)
        return fail(lastName, reader.failure());
    return prepareAndMakeFolders({});
}

/// Makes those of @p folders that are not made yet; at the first call, the folder of ours too.
bool Extraction::prepareAndMakeFolders(const QStringList &folders)
{
    if (m_staging->contentPath().isEmpty() && !m_staging->prepare())
        return fail({}, m_staging->failure());
    for (; m_foldersMade < folders.size(); ++m_foldersMade) {
        const QString &folder = folders.at(m_foldersMade);
        if (!QDir().mkdir(m_staging->contentPath() % QLatin1Char('/') % folder))
            return fail(folder, QStringLiteral("the folder can not be made"));
    }
    return true;
}

bool Extraction::writeEntry(ArchiveReader &reader, const EntryHeader &entry, const QString &path)
{
    QFile file(m_staging->contentPath() % QLatin1Char('/') % path);
    if (!file.open(QIODevice::NewOnly | QIODevice::WriteOnly | QIODevice::Unbuffered))
        return fail(entry.name, file.errorString());
    if (!writeContent(reader, entry, file))
        return false;
    if (entry.executable)
        makeExecutable(file);
    return true;
}

/// Never more than the entry has announced, nor less.
bool Extraction::writeContent(ArchiveReader &reader, const EntryHeader &entry, QFile &file)
{
    qint64 written = 0;
    ArchiveReader::Piece piece;
    ReadStep step = reader.nextPiece(piece);
    for (; step == ReadStep::Next && !m_stop; step = reader.nextPiece(piece)) {
        if (piece.offset != written)
            return fail(entry.name, QStringLiteral("the entry has holes"));
        if (piece.bytes > entry.bytes - written)
            return fail(entry.name, QStringLiteral("the entry is larger than it says"));
        if (file.write(piece.data, piece.bytes) != piece.bytes)
            return fail(entry.name, file.errorString());
        written += piece.bytes;
        m_done += static_cast<quint64>(piece.bytes);
        if (m_isStream)
            m_total = guessedTotal(m_done, reader.share());
    }
    if (step == ReadStep::Failed)
        return fail(entry.name, reader.failure());
    if (written != entry.bytes)
        return fail(entry.name, QStringLiteral("the entry is smaller than it says"));
    return true;
}

bool Extraction::commit()
{
    return m_staging->commit() || fail(m_staging->failedPath(), m_staging->failure());
}

/// Only the first failure is told, and nothing after a cancel().
bool Extraction::fail(const QString &entry, const QString &why)
{
    const QMutexLocker lock(&m_failing);
    const QString where = entry.isEmpty()
                              ? QString()
                              : QLatin1String(", entry \"") % printable(entry) % QLatin1Char('"');
    if (!m_hasFailed)
        Log::critical(QLatin1String("can not unpack \"") % m_archivePath % QLatin1Char('"') %
                      where % QLatin1String(": ") % why);
    m_hasFailed = true;
    m_stop = true;
    return false;
}

} // namespace archivekit
