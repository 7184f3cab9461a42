#include "platform/VersionStrings.h"

#include <windows.h>

#include <QByteArray>
#include <QDir>

namespace platform {

namespace {

/// The version resource of a program; empty if there is none.
QByteArray readResource(const QString &executable)
{
    const std::wstring file = QDir::toNativeSeparators(executable).toStdWString();
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), &ignored);
    QByteArray resource(static_cast<int>(size), '\0');
    if (size == 0 || !GetFileVersionInfoW(file.c_str(), 0, size, resource.data()))
        return {};
    return resource;
}

/// One entry of the table of languages, as it lies in the resource.
struct Translation
{
    WORD language;
    WORD codePage;
};

} // namespace

QString versionString(const QString &executable, const QString &name)
{
    const QByteArray resource = readResource(executable);
    void *found = nullptr;
    UINT length = 0;
    if (resource.isEmpty() ||
        !VerQueryValueW(resource.constData(), L"\\VarFileInfo\\Translation", &found, &length) ||
        length < sizeof(Translation))
        return {};

    const auto *first = static_cast<const Translation *>(found);
    const QString block = QStringLiteral("\\StringFileInfo\\%1%2\\")
                              .arg(first->language, 4, 16, QLatin1Char('0'))
                              .arg(first->codePage, 4, 16, QLatin1Char('0'));
    const std::wstring query = QString(block % name).toStdWString();
    if (!VerQueryValueW(resource.constData(), query.c_str(), &found, &length) || length == 0)
        return {};
    // The length counts the terminating zero where there is one.
    const QString value =
        QString::fromWCharArray(static_cast<const wchar_t *>(found), static_cast<int>(length));
    return value.left(value.indexOf(QChar::Null));
}

} // namespace platform
