#include "fuzz/Service.h"

#include <QFileInfo>
#include <QJsonDocument>

#include "core/config/GameResConfig.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/foundation/BinaryJson.h"
#include "core/foundation/FSH.h"
#include "core/resources/GameClientListInfo.h"
#include "core/resources/RecordList.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "support/jsonfskit/FS.h"

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

/// Reads @p bytes as what lists have kept.
void readKeptLists(const QByteArray &bytes)
{
    fuzz::Service service({});
    const bool isKept = FS::writeFile(FSH::localAppDataPath() + "/myMcGamelist.cache", bytes) &&
                        FS::writeFile(RecordList::cacheFile(ResTypeGame), bytes);
    fuzz::require(isKept, "a kept answer can be written");
    service.restartWithout();
    MyMcGameInstMgr::GetInstance()->getGameInstIdList("1.7-1.8");
    GameClientListInfo::GetInstance()->updateList();
    fuzz::spin();
    GameClientListInfo::GetInstance()->gameClientInfo(1);
}

} // namespace

/// Files in Qt's binary form: its reader, the configurations of resources, kept answers.
void fuzz::takeInput(const QByteArray &input)
{
    const QJsonObject object = objectIn(input);
    if (object.isEmpty())
        return; // Qt makes no bytes of it
    const QByteArray bytes = BinaryJson::bytesOf(object);
    QJsonDocument(object).toJson();
    const auto copy = BinaryJson::parse(bytes);
    require(copy && BinaryJson::bytesOf(*copy) == bytes, "an object is read back as written");

    const QByteArray file = BinaryJson::parse(input) ? input : bytes;
    putFile("games", file);
    putFile("maps", file);
    saveConfigs(path("games"), path("maps")); // what the host would never write goes
    const auto sizes = saveConfigs(path("games"), path("maps"));
    require(saveConfigs(path("games"), path("maps")) == sizes, "nothing is lost in a later save");
    readKeptLists(file);
}
