#include "fuzz/Fuzz.h"

#include <QFileInfo>
#include <QJsonDocument>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/config/GameResConfig.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/foundation/BinaryJson.h"

namespace {

/// Reads both configurations out of the file and writes each anew. The order inside is open, so
/// the sizes tell whether something was lost.
QVector<qint64> saveConfigs(const QString &games, const QString &maps)
{
    {
        const RivetCoreAtExitManagerUtil core;
        GameResConfig::GetInstance()->initialize(games);
        OnlineMapResConfig::GetInstance()->initialize(maps);
    }
    return {QFileInfo(games).size(), QFileInfo(maps).size()};
}

} // namespace

/// Files in Qt's binary form: its reader, and the configurations of resources.
void fuzz::takeInput(const QByteArray &input)
{
    const QJsonObject object = objectIn(input);
    const QByteArray bytes = BinaryJson::bytesOf(object);
    QJsonDocument(object).toJson();
    const auto copy = BinaryJson::parse(bytes);
    require(copy && BinaryJson::bytesOf(*copy) == bytes, "an object is read back as written");

    putFile("games", BinaryJson::parse(input) ? input : bytes);
    putFile("maps", bytes);
    const auto sizes = saveConfigs(path("games"), path("maps"));
    require(saveConfigs(path("games"), path("maps")) == sizes, "nothing is lost in a second save");
}
