#include "support/archivekit/EntryNames.h"

#include <algorithm>

#include <QTextCodec>

#include "support/jsonfskit/FileNames.h"

namespace archivekit {

namespace {

/// What bytes from 0x80 on mean in the code page of the first personal computers.
constexpr char16_t upperHalfOfCp437[] = u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒ"
                                        u"áíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
                                        u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                        u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00a0";
static_assert(sizeof(upperHalfOfCp437) == 129 * sizeof(char16_t));

// In bytes of UTF-8: the limit of the usual file systems.
constexpr int longestComponent = 255;
// A path of many thousand folders costs memory and stack long before it gets to the disk.
constexpr int longestPath = 1024;

std::optional<QString> decodeBy(const char *codecName, const QByteArray &raw)
{
    const QTextCodec *codec = QTextCodec::codecForName(codecName);
    if (!codec)
        return std::nullopt;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString name = codec->toUnicode(raw.constData(), raw.size(), &state);
    const bool isClean = state.invalidChars == 0 && state.remainingChars == 0 &&
                         !name.contains(QChar(QChar::ReplacementCharacter));
    return isClean ? std::optional<QString>(name) : std::nullopt;
}

/// Whether all bytes from 0x80 on stand in the pairs of GBK. Codecs take some single ones too,
/// which are letters of CP437.
bool isInPairs(const QByteArray &raw)
{
    for (int i = 0; i < raw.size(); ++i) {
        const auto lead = static_cast<uchar>(raw.at(i));
        if (lead < 0x80)
            continue;
        const auto trail = static_cast<uchar>(++i < raw.size() ? raw.at(i) : 0);
        if (lead == 0x80 || lead == 0xff || trail < 0x40 || trail == 0x7f || trail == 0xff)
            return false;
    }
    return true;
}

QString decodeCp437(const QByteArray &raw)
{
    QString name;
    name.reserve(raw.size());
    for (const char byte : raw) {
        const auto code = static_cast<uchar>(byte);
        name += QChar(code < 0x80 ? char16_t(code) : upperHalfOfCp437[code - 0x80]);
    }
    return name;
}

bool isForbidden(QChar character)
{
    return character < QChar(0x20) || character == QChar(0x7f) ||
           QLatin1String("<>\"|?*").contains(character) ||
           character == QChar(QChar::ReplacementCharacter);
}

NameFault faultOfComponent(const QString &component)
{
    if (component.isEmpty())
        return NameFault::EmptyComponent;
    if (component == QLatin1String(".."))
        return NameFault::ClimbsOut;
    // Windows drops these, so that two names would meet.
    if (component.endsWith(QLatin1Char('.')) || component.endsWith(QLatin1Char(' ')))
        return NameFault::TrailingDotOrBlank;
    if (component.toUtf8().size() > longestComponent)
        return NameFault::LongComponent;
    return FS::isDeviceName(component) ? NameFault::DeviceName : NameFault::None;
}

} // namespace

std::optional<QString> decodeName(const QByteArray &raw, NameCharset charset)
{
    std::optional<QString> name = decodeBy("UTF-8", raw);
    if (name || charset == NameCharset::Utf8)
        return name;
    if (isInPairs(raw))
        name = decodeBy("GBK", raw);
    return name ? name : decodeCp437(raw);
}

NameFault faultOf(const QString &path)
{
    if (path.isEmpty())
        return NameFault::Empty;
    if (path.size() > longestPath)
        return NameFault::LongComponent;
    if (path.startsWith(QLatin1Char('/')))
        return NameFault::Absolute;
    if (path.contains(QLatin1Char('\\')))
        return NameFault::Backslash;
    if (path.contains(QLatin1Char(':')))
        return NameFault::Colon;
    if (std::any_of(path.begin(), path.end(), isForbidden))
        return NameFault::ForbiddenCharacter;
    for (const QString &component : path.split(QLatin1Char('/'))) {
        const NameFault fault = faultOfComponent(component);
        if (fault != NameFault::None)
            return fault;
    }
    return NameFault::None;
}

QString textOf(NameFault fault)
{
    switch (fault) {
    case NameFault::None:
        break;
    case NameFault::Empty:
        return QStringLiteral("the name is empty");
    case NameFault::Absolute:
        return QStringLiteral("the name is an absolute path");
    case NameFault::ClimbsOut:
        return QStringLiteral("the name climbs out of the folder");
    case NameFault::Backslash:
        return QStringLiteral("the name holds a backslash");
    case NameFault::Colon:
        return QStringLiteral("the name holds a colon");
    case NameFault::ForbiddenCharacter:
        return QStringLiteral("the name holds a character that file names can not have");
    case NameFault::EmptyComponent:
        return QStringLiteral("a part of the name is empty");
    case NameFault::LongComponent:
        return QStringLiteral("a part of the name is too long");
    case NameFault::TrailingDotOrBlank:
        return QStringLiteral("a part of the name ends with a dot or a blank");
    case NameFault::DeviceName:
        return QStringLiteral("a part of the name is the name of a device");
    }
    return {};
}

QString printable(QString name)
{
    for (QChar &character : name) {
        if (character < QChar(0x20) || character == QChar(0x7f))
            character = QChar(QChar::ReplacementCharacter);
    }
    return name;
}

} // namespace archivekit
