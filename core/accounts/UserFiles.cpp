#include "core/accounts/UserFiles.h"

#include <algorithm>

#include <QCryptographicHash>
#include <QDir>
#include <QStringBuilder>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FileNames.h"

namespace {

const QLatin1String usersFileName("users.dat");
const QLatin1String recordSuffix(".dat");

enum class Capitals {
    Kept,
    Encoded,
};

QSet<QString> entriesOf(const QString &folder)
{
    const QStringList entries = QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    return QSet<QString>(entries.begin(), entries.end());
}

/// Names that mean something else: those of devices, of our own files and of their forerunners,
/// which bear some characters more.
bool isReserved(const QString &name)
{
    const QString withDot = name % QLatin1Char('.');
    return FS::isDeviceName(name) ||
           withDot.startsWith(usersFileName % QLatin1Char('.'), Qt::CaseInsensitive);
}

bool isUnfit(QChar character)
{
    return character.category() == QChar::Other_Control ||
           QLatin1String("/\\:*?\"<>|%").contains(character);
}

QString percentEncoded(QChar character)
{
    QString text;
    const QByteArray digits = QString(character).toUtf8().toHex().toUpper();
    for (int i = 0; i < digits.size(); i += 2)
        text += QLatin1Char('%') % QString::fromLatin1(digits.mid(i, 2));
    return text;
}

/// How much of @p name is left when Windows has dropped the dots and blanks behind it.
int keptLength(const QString &name)
{
    int length = name.size();
    while (length > 0 && QLatin1String(". ").contains(name.at(length - 1)))
        --length;
    return length;
}

QString encoded(const QString &name, Capitals capitals)
{
    const int kept = keptLength(name);
    QString text;
    for (int i = 0; i < name.size(); ++i) {
        const QChar character = name.at(i);
        const bool isCapital = character.isUpper() || character.isTitleCase();
        if (isUnfit(character) || i >= kept || (i == 0 && isReserved(name)) ||
            (isCapital && capitals == Capitals::Encoded))
            text += percentEncoded(character);
        else
            text += character;
    }
    return text;
}

/// No encoded name begins like this, for behind each "%" of those stand two digits.
QString digestOf(const QString &name)
{
    QByteArray units;
    for (const QChar unit : name)
        units.append(char(unit.row())).append(char(unit.cell()));
    const QByteArray digest = QCryptographicHash::hash(units, QCryptographicHash::Sha256);
    return QLatin1String("%-") % QString::fromLatin1(digest.toHex());
}

bool canBeWritten(const QString &fileName)
{
    // Room for the suffix and for what a file bears while it is written.
    constexpr int longestBytes = 255 - 4 - 7;
    const QByteArray utf8 = fileName.toUtf8();
    return utf8.size() <= longestBytes && QString::fromUtf8(utf8) == fileName &&
           platform::fromNative(platform::toNative(fileName)) == fileName;
}

} // namespace

// Without a base directory this would be a folder of the system's; that of all homes on Windows.
UserFiles::UserFiles(const QString &baseDir)
    : m_folder(baseDir.isEmpty() ? QString() : baseDir % QLatin1String("/users/"))
{
    lookAgain();
}

void UserFiles::lookAgain()
{
    m_entries = m_folder.isEmpty() ? QSet<QString>() : entriesOf(m_folder);
}

QString UserFiles::usersFile() const
{
    return m_folder.isEmpty() ? QString() : m_folder % usersFileName;
}

QString UserFiles::pendingSaveFile() const
{
    return m_folder.isEmpty() ? QString() : usersFile() % QLatin1String(".pending");
}

QString UserFiles::folderOf(const QString &userName) const
{
    return hasPlace(userName) ? m_folder % fileNameOf(userName) : QString();
}

QString UserFiles::recordOf(const QString &userName) const
{
    if (!hasPlace(userName))
        return {};
    const QString name = fileNameOf(userName);
    return m_folder % name % QLatin1Char('/') % name % recordSuffix;
}

bool UserFiles::hasPlace(const QString &userName) const
{
    return !userName.isEmpty() && !m_folder.isEmpty();
}

/// The form under which the user already has a folder, else the first that is free.
QString UserFiles::fileNameOf(const QString &userName) const
{
    QStringList forms{encoded(userName, Capitals::Kept), encoded(userName, Capitals::Encoded)};
    forms.erase(std::remove_if(forms.begin(), forms.end(),
                               [](const QString &form) { return !canBeWritten(form); }),
                forms.end());
    forms << digestOf(userName);
    const auto found = std::find_if(forms.crbegin(), forms.crend(), [this](const QString &form) {
        return m_entries.contains(form);
    });
    if (found != forms.crend())
        return *found;
    return *std::find_if(forms.cbegin(), forms.cend() - 1,
                         [this](const QString &form) { return !isTaken(form); });
}

/// Whether the file system has an entry of this name, though none is spelled so.
bool UserFiles::isTaken(const QString &fileName) const
{
    return !m_entries.contains(fileName) &&
           platform::entryKind(m_folder % fileName) != platform::EntryKind::Missing;
}
