#pragma once

#include <atomic>
#include <vector>

#include <QFile>
#include <QString>

#include "support/archivekit/ExtractionPlan.h"
#include "support/archivekit/ZipRecords.h"

namespace archivekit {

/// The entries of a zip file as its central directory tells them, in the order of their place in
/// the file. Reading checks what libarchive lets pass: that the header before each entry's content
/// tells the same as the directory, and that no two entries share bytes.
class ZipDirectory
{
public:
    /// True if the file @p path begins like a zip file.
    static bool isZip(const QString &path);

    /// Reading fails as soon as @p stop is set, which must outlive this object.
    explicit ZipDirectory(const std::atomic<bool> &stop) : m_stop(stop) {}

    /// False if there is something wrong; failure() and failedEntry() then tell what.
    [[nodiscard]] bool read(const QString &path);

    const std::vector<EntryHeader> &entries() const { return m_entries; }
    QString failure() const { return m_failure; }
    /// The entry that was refused; empty when it is the archive as a whole.
    QString failedEntry() const { return m_failedEntry; }

private:
    bool readRecords(const DirectoryPlace &place);
    bool checkPlaces(qint64 directoryOffset);
    bool addEntry(const CentralRecord &record);
    bool fail(const CentralRecord &record, const char *why);
    bool fail(const char *why);

    const std::atomic<bool> &m_stop;
    QFile m_file;
    std::vector<CentralRecord> m_records;
    std::vector<EntryHeader> m_entries;
    QString m_failure;
    QString m_failedEntry;
};

} // namespace archivekit
