#include "platform/FileEntry.h"

#include <windows.h>

#include <QDir>
#include <QRegularExpression>

#include "platform/win32/Handle.h"
#include "platform/win32/NativePath.h"

namespace platform {

namespace {

/// Open to look at the entry itself (@p flags = FILE_FLAG_OPEN_REPARSE_POINT) or at what it leads
/// to. Asks for no access, so it also works where nobody may read, and disturbs nobody.
Handle openToLook(const NativePath &path, DWORD flags)
{
    return Handle(CreateFileW(path.c_str(), 0,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

/// True for symbolic links and junctions. Other reparse points, such as the place-holders of cloud
/// folders, stand for the file itself. One that cannot be looked at counts as a link, since a link
/// is never entered.
bool isLink(const NativePath &path)
{
    const Handle entry = openToLook(path, FILE_FLAG_OPEN_REPARSE_POINT);
    FILE_ATTRIBUTE_TAG_INFO info{};
    if (!entry.isValid() ||
        !GetFileInformationByHandleEx(entry.get(), FileAttributeTagInfo, &info, sizeof info))
        return true;
    return info.ReparseTag == 0 || IsReparseTagNameSurrogate(info.ReparseTag);
}

EntryKind kindOf(const NativePath &path, DWORD attributes)
{
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && isLink(path))
        return EntryKind::Link;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? EntryKind::Directory : EntryKind::File;
}

bool isGone(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// A folder counts as not empty for as long as somebody has a deleted file of it open.
bool isPassing(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_ACCESS_DENIED || error == ERROR_DIR_NOT_EMPTY;
}

QString messageOf(DWORD error)
{
    return qt_error_string(static_cast<int>(error));
}

/// Takes the write protection off an entry; gives it back unless the entry was dealt with.
class LiftedProtection
{
public:
    explicit LiftedProtection(const NativePath &path)
        : m_path(path), m_attributes(GetFileAttributesW(path.c_str()))
    {
        if (isProtected())
            SetFileAttributesW(m_path.c_str(), m_attributes & ~DWORD(FILE_ATTRIBUTE_READONLY));
    }
    ~LiftedProtection()
    {
        if (isProtected())
            SetFileAttributesW(m_path.c_str(), m_attributes);
    }
    LiftedProtection(const LiftedProtection &) = delete;
    LiftedProtection &operator=(const LiftedProtection &) = delete;

    bool isKnown() const { return m_attributes != INVALID_FILE_ATTRIBUTES; }
    bool isFolder() const { return isKnown() && (m_attributes & FILE_ATTRIBUTE_DIRECTORY); }
    void forget() { m_attributes = INVALID_FILE_ATTRIBUTES; }

private:
    bool isProtected() const { return isKnown() && (m_attributes & FILE_ATTRIBUTE_READONLY); }

    const NativePath &m_path;
    DWORD m_attributes;
};

RenameOutcome move(const NativePath &from, const NativePath &to, DWORD flags)
{
    if (MoveFileExW(from.c_str(), to.c_str(), flags))
        return RenameOutcome::Renamed;
    const DWORD error = GetLastError();
    if (error == ERROR_NOT_SAME_DEVICE)
        return RenameOutcome::OtherFileSystem;
    return isPassing(error) ? RenameOutcome::Held : RenameOutcome::Failed;
}

} // namespace

NativePath toNative(const QString &absolutePath)
{
    return NativePath(nativePath(absolutePath));
}

QString fromNative(const NativePath &path)
{
    QString text = QDir::fromNativeSeparators(QString::fromStdWString(path.native()));
    if (text.startsWith(QLatin1String("//?/UNC/")))
        return QLatin1Char('/') + text.mid(7);
    return text.startsWith(QLatin1String("//?/")) ? text.mid(4) : text;
}

EntryKind entryKind(const NativePath &path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return isGone(GetLastError()) ? EntryKind::Missing : EntryKind::File;
    return kindOf(path, attributes);
}

FolderListing listFolder(const NativePath &path)
{
    FolderListing listing;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((path.native() + L"\\*").c_str(), &found);
    DWORD error = search == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
    while (error == ERROR_SUCCESS) {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") {
            const NativePath entry(path.native() + L"\\" + name);
            listing.entries.push_back({entry, kindOf(entry, found.dwFileAttributes)});
        }
        error = FindNextFileW(search, &found) ? ERROR_SUCCESS : GetLastError();
    }
    if (search != INVALID_HANDLE_VALUE)
        FindClose(search);
    if (error != ERROR_NO_MORE_FILES && !isGone(error))
        listing.failure = messageOf(error);
    return listing;
}

RemovalAttempt removeEntry(const NativePath &path, EntryKind)
{
    LiftedProtection protection(path);
    // Junctions and links to folders are removed as folders; neither call follows them.
    const bool isRemoved =
        protection.isFolder() ? RemoveDirectoryW(path.c_str()) : DeleteFileW(path.c_str());
    const DWORD error = isRemoved ? ERROR_SUCCESS : GetLastError();
    if (!isRemoved && !isGone(error))
        return {false, isPassing(error), messageOf(error)};
    protection.forget();
    return {true, false, {}};
}

RenameOutcome renameEntry(const NativePath &from, const NativePath &to)
{
    return move(from, to, 0);
}

void openForRemoval(const NativePath &)
{
    // The write protection of a folder does not keep its entries here.
}

bool isSameEntry(const NativePath &a, const NativePath &b)
{
    const Handle first = openToLook(a, 0), second = openToLook(b, 0);
    BY_HANDLE_FILE_INFORMATION one{}, other{};
    return first.isValid() && second.isValid() && GetFileInformationByHandle(first.get(), &one) &&
           GetFileInformationByHandle(second.get(), &other) &&
           one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
           one.nFileIndexHigh == other.nFileIndexHigh && one.nFileIndexLow == other.nFileIndexLow;
}

// QFileInfo::canonicalFilePath() leaves junctions and the case of names as they are.
QString realPath(const QString &path)
{
    const Handle entry = openToLook(toNative(QDir().absoluteFilePath(path)), 0);
    std::wstring real(32768, L'\0'); // the longest path of the system
    const DWORD length =
        entry.isValid() ? GetFinalPathNameByHandleW(entry.get(), real.data(), DWORD(real.size()), 0)
                        : 0;
    if (length == 0 || length >= real.size())
        return path;
    real.resize(length);
    return fromNative(real);
}

bool isRootOrDevice(const QString &path)
{
    // "C:", "C:/" and "C:name"; "/"; "//server", "//server/share"; "//./..." and "//?/...".
    static const QRegularExpression forms(
        QStringLiteral("^([A-Za-z]:([^/].*)?/?|/|//[^/]*(/[^/]*)?/?|//[.?](/.*)?)$"));
    return forms.match(QDir::fromNativeSeparators(path)).hasMatch() ||
           QDir(QDir::cleanPath(QDir(path).absolutePath())).isRoot();
}

RenameOutcome replaceFile(const QString &from, const QString &to)
{
    const NativePath target = toNative(to);
    LiftedProtection protection(target);
    const RenameOutcome outcome =
        move(toNative(from), target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    if (outcome == RenameOutcome::Renamed)
        protection.forget();
    return outcome;
}

bool syncFile(const QString &path)
{
    const Handle file(CreateFileW(nativePath(path).c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
    if (!file.isValid() || FlushFileBuffers(file.get()))
        return true;
    const DWORD error = GetLastError();
    return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
}

QString comparableName(const QString &path)
{
    return path.toCaseFolded();
}

} // namespace platform
