#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace archivekit {

/// No archive of ours comes near it; one with more is refused before it costs memory.
constexpr int mostEntries = 200000;

enum class EntryType {
    File,
    Folder,
    Other, ///< links, devices and the like
};

/// What an archive says of one entry.
struct EntryHeader
{
    QString name;
    EntryType type = EntryType::Other;
    qint64 bytes = -1; ///< of unpacked content; below 0 where the archive does not say
    bool executable = false;
    bool encrypted = false;
};

/// Judges the entries of one archive, one after another: names, kinds, sizes, their number, and
/// whether they get into each other's way.
///
/// Two entries must not have one name, nor names that differ by case alone, and neither must the
/// folders above them: on Windows one would end in the other, so both systems refuse. A folder
/// may be listed as often as it likes. Links of both kinds are refused, whatever they point to.
class ExtractionPlan
{
public:
    /// All files together may have @p mostBytes.
    explicit ExtractionPlan(qint64 mostBytes);

    /// Takes the next entry in; false if it is refused, and refusal() then tells why.
    [[nodiscard]] bool take(const EntryHeader &entry);

    QString refusal() const { return m_refusal; }
    /// Where the entry taken in last goes, relative to the target; empty for the target itself.
    QString path() const { return m_path; }
    /// All folders that the entries need, each behind the one that holds it.
    const QStringList &folders() const { return m_folders; }
    qint64 totalBytes() const { return m_totalBytes; }

private:
    bool refuse(const QString &reason);
    bool claim(const QString &path, EntryType type);
    bool claimFoldersAbove(const QString &path);

    struct Claim
    {
        QString path;
        EntryType type;
    };
    qint64 m_mostBytes;
    qint64 m_totalBytes = 0;
    int m_count = 0;
    QHash<QString, Claim> m_claims; ///< by the name without its case
    QString m_lastFolder;           ///< the folder that the last entry lay in
    QStringList m_folders;
    QString m_path;
    QString m_refusal;
};

} // namespace archivekit
