#include "core/resources/ResInfoJson.h"

#include <algorithm>

#include <QStringList>

#include "core/foundation/JsonNumber.h"
#include "core/resources/ResInfo.h"

namespace {

/// A token that holds the word sets the type of the ids behind it. The first match counts.
struct Section
{
    const char *word;
    ResType type;
};

constexpr Section sections[] = {
    {"game", ResTypeGame},      {"mods", ResTypeMods},  {"resource", ResTypeResourcePacks},
    {"shader", ResTypeShaders}, {"save", ResTypeSaves},
};

const Section *sectionIn(const QString &token)
{
    const auto *found =
        std::find_if(std::begin(sections), std::end(sections), [&](const Section &section) {
            return token.contains(QLatin1String(section.word));
        });
    return found == std::end(sections) ? nullptr : found;
}

const Section *sectionOf(ResType type)
{
    const auto *found = std::find_if(std::begin(sections), std::end(sections),
                                     [&](const Section &section) { return section.type == type; });
    return found == std::end(sections) ? nullptr : found;
}

/// A reader takes ids for signed numbers, so one above the middle is written as a negative.
QString idText(quint64 key)
{
    return QString::number(static_cast<qint32>(ResourceKey::idOf(key))) % QLatin1Char(';');
}

QString versionText(const VersionObj &versions)
{
    switch (versions.kind) {
    case 0:
        return versions.version;
    case 1:
        return versions.lowVersion % QLatin1Char('-') % versions.highVersion;
    default:
        return {};
    }
}

VersionObj versionsIn(const QString &text)
{
    const int dash = text.indexOf(QLatin1Char('-'));
    if (dash >= 0)
        return {{}, text.left(dash), text.mid(dash + 1), 1};
    return {text, {}, {}, text.isEmpty() ? 1U : 0U};
}

bool isPicture(ResType type)
{
    return type == ResTypeSkins || type == ResTypeCloaks;
}

bool readVersion(const QJsonObject &object, ResInfo &info)
{
    if (info.resType() != ResTypeGame) {
        info.setVersionObj(versionsIn(object[QLatin1String("mcver")].toString()));
        return true;
    }
    info.setResVersion(object[QLatin1String("ver")].toString());
    return !info.resVersion().isEmpty();
}

bool readSource(const QJsonObject &object, ResInfo &info)
{
    if (isPicture(info.resType())) {
        info.setDownloadUrl(object[QLatin1String("picOri")].toString());
        info.setThemeId(JsonNumber::toUInt(object[QLatin1String("themeId")]));
        return true;
    }
    info.setDownloadUrl(object[QLatin1String("url")].toString());
    return !info.downloadUrl().isEmpty();
}

} // namespace

namespace ResInfoJson {

QString writeDepends(ResType ownType, const QList<quint64> &keys)
{
    QString bare;
    QString text;
    const Section *current = nullptr;
    for (const quint64 key : keys) {
        const Section *section = sectionOf(ResourceKey::typeOf(key));
        if (!section) {
            // A type without a word can be told only where it is the record's own.
            if (ResourceKey::typeOf(key) == ownType)
                bare += idText(key);
            continue;
        }
        if (section != current)
            text += QLatin1String(section->word) % QLatin1Char(';');
        current = section;
        text += idText(key);
    }
    return bare % text;
}

void readDepends(ResType ownType, const QString &text, QList<quint64> &out)
{
    ResType type = ownType == ResTypeShaders ? ResTypeMods : ownType;
    const QStringList tokens = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &token : tokens) {
        if (const Section *section = sectionIn(token))
            type = section->type;
        else
            out += ResourceKey::pack(static_cast<quint32>(token.toInt()), type);
    }
}

QJsonObject write(const ResInfo &info)
{
    if (info.resId() == 0 || info.resType() == 0)
        return {};
    QJsonObject object{
        {QStringLiteral("id"), QString::number(info.resId())},
        {QStringLiteral("type"), QString::number(info.resType())},
        {QStringLiteral("name"), info.name()},
        {QStringLiteral("url"), info.downloadUrl()},
        {QStringLiteral("description"), info.desc()},
        {QStringLiteral("pic"), info.descPic()},
        {QStringLiteral("dependsOnList"), writeDepends(info.resType(), info.dependsOnList())},
        {QStringLiteral("themeId"), QString::number(info.themeId())},
    };
    if (info.resType() == ResTypeGame)
        object.insert(QStringLiteral("ver"), info.resVersion());
    else
        object.insert(QStringLiteral("mcver"), versionText(info.versionObj()));
    return object;
}

quint64 keyIn(const QJsonObject &object)
{
    return ResourceKey::pack(JsonNumber::toUInt(object[QLatin1String("id")]),
                             ResType(JsonNumber::toUInt(object[QLatin1String("type")])));
}

bool read(const QJsonObject &object, ResInfo &info)
{
    const quint64 key = keyIn(object);
    if (ResourceKey::idOf(key) == 0)
        return false;
    info.setResId(ResourceKey::idOf(key));
    if (ResourceKey::typeOf(key) == 0)
        return false;
    info.setResType(ResourceKey::typeOf(key));
    if (!readVersion(object, info))
        return false;

    QList<quint64> depends;
    readDepends(info.resType(), object[QLatin1String("dependsOnList")].toString(), depends);
    info.setDependsOnList(depends);

    info.setName(object[QLatin1String("name")].toString());
    if (info.name().isEmpty() || !readSource(object, info))
        return false;
    info.setDesc(object[QLatin1String("description")].toString());
    info.setDescPic(object[QLatin1String("pic")].toString());
    return true;
}

} // namespace ResInfoJson
