#include "core/launch/GameOptions.h"

#include <algorithm>
#include <optional>

#include <QByteArrayList>
#include <QDir>
#include <QFile>

#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace GameOptions {

namespace {

constexpr char lineEnd[] = "\r\n";
constexpr char packsKey[] = "resourcePacks:[";
constexpr char languageKey[] = "lang:";
constexpr char shaderKey[] = "shaderPack=";

QByteArray packsLine(const QString &pack)
{
    return packsKey + QByteArray("\"") + pack.toUtf8() + "\"]" + lineEnd;
}

QByteArray languageLine()
{
    return languageKey + QByteArray("zh_CN") + lineEnd;
}

QByteArray shaderLine(const QString &pack)
{
    return shaderKey + pack.toUtf8() + lineEnd;
}

/// The lines of @p text, each with the line end that it has.
QByteArrayList splitLines(const QByteArray &text)
{
    QByteArrayList lines;
    for (int begin = 0, end = 0; begin < text.size(); begin = end) {
        const int feed = text.indexOf('\n', begin);
        end = feed < 0 ? text.size() : feed + 1;
        lines << text.mid(begin, end - begin);
    }
    return lines;
}

void addLine(QByteArrayList &lines, const QByteArray &line)
{
    if (!lines.isEmpty() && !lines.last().endsWith('\n'))
        lines.last() += lineEnd;
    lines << line;
}

/// Puts @p line in the place of each line that begins with @p key; behind the last where none does.
void setLine(QByteArrayList &lines, const char *key, const QByteArray &line)
{
    bool seen = false;
    for (QByteArray &old : lines) {
        if (!old.startsWith(key))
            continue;
        old = line;
        seen = true;
    }
    if (!seen)
        addLine(lines, line);
}

QByteArray freshOptions(const QString &pack)
{
    const QByteArray text = QByteArray("gamma:1.0") + lineEnd + languageLine();
    return pack.isEmpty() ? text : text + packsLine(pack);
}

QByteArray editedOptions(const QByteArray &old, const QString &pack)
{
    QByteArrayList lines = splitLines(old);
    setLine(lines, packsKey, packsLine(pack));
    if (std::none_of(lines.cbegin(), lines.cend(),
                     [](const QByteArray &line) { return line.startsWith(languageKey); }))
        addLine(lines, languageLine());
    return lines.join();
}

QByteArray freshShaderOptions(const QString &pack)
{
    return pack.isEmpty() ? QByteArray() : QString::fromUtf8(shaderLine(pack)).toLocal8Bit();
}

QByteArray editedShaderOptions(const QByteArray &old, const QString &pack)
{
    QByteArrayList lines = splitLines(old);
    setLine(lines, shaderKey, shaderLine(pack));
    const QByteArray text = lines.join();
    // With the size: the form without ends at a NUL byte.
    return QString::fromUtf8(text.constData(), text.size()).toLocal8Bit();
}

bool update(const QString &file, const QString &pack, QByteArray (*fresh)(const QString &),
            QByteArray (*edited)(const QByteArray &, const QString &))
{
    QByteArray text;
    if (QFile::exists(file)) {
        const std::optional<QByteArray> old = FS::readFile(file);
        if (!old) {
            Log::warning(QLatin1String("option file could not be read: ") + file);
            return false;
        }
        text = edited(*old, pack);
    } else {
        text = fresh(pack);
    }
    if (!FS::writeFile(file, text))
        Log::warning(QLatin1String("option file could not be written: ") + file);
    return true;
}

} // namespace

QString firstPack(const QString &folder)
{
    const QStringList packs{QStringLiteral("*.zip"), QStringLiteral("*.7z")};
    return QDir(folder).entryList(packs, QDir::Files, QDir::Unsorted).value(0);
}

bool updateOptions(const QString &file, const QString &pack)
{
    return update(file, pack, freshOptions, editedOptions);
}

bool updateShaderOptions(const QString &file, const QString &pack)
{
    return update(file, pack, freshShaderOptions, editedShaderOptions);
}

} // namespace GameOptions
