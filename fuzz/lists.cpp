#include "fuzz/Service.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>

#include "core/foundation/Environment.h"
#include "core/resources/GameClientListInfo.h"
#include "core/resources/JavaListInfo.h"
#include "core/resources/ResObj.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "core/servers/OnlineSrvInfoReq.h"
#include "core/servers/RivetSettingInfo.h"
#include "core/store/MyPropListInfo.h"
#include "core/store/RivetStoreListInfo.h"
#include "core/store/VipWelfareInfo.h"
#include "support/coresupport/HttpRequestTask.h"

namespace {

/// What a list holds, in words, and whether it took the answer for a good one.
struct Content
{
    bool isGood;
    QStringList words;
};

QStringList wordsOf(const QList<QJsonObject> &objects)
{
    QStringList words;
    for (const QJsonObject &object : objects)
        words << QJsonDocument(object).toJson();
    return words;
}

Content gameClients()
{
    auto *list = GameClientListInfo::GetInstance();
    list->updateList();
    fuzz::spin();
    list->gameClientInfo("1.8");
    return {list->isListUpdated(),
            wordsOf(list->gameClients()) + wordsOf({list->gameClientInfo(1)})};
}

Content javas()
{
    auto *list = JavaListInfo::GetInstance();
    list->updateList();
    fuzz::spin();
    list->javaInfoForSystem(true);
    return {list->isListUpdated(), wordsOf(list->javas()) + wordsOf({list->javaInfo(1)})};
}

Content instances()
{
    auto *list = MyMcGameInstMgr::GetInstance();
    HttpRequestTask request(g_my_server_instance_list_url, list, 0, 0, nullptr);
    request.SetNetworkAccessManager(Environment::GetInstance()->getShareNetworkAccessMgr());
    request.Start();
    fuzz::spin();
    list->getGameInstIdList("1.7-1.8");
    QStringList words;
    for (const unsigned id : list->getGameInstIdList())
        words << list->getGameInstName(id) + wordsOf({list->getGameInstanceInfo(id)}).join("");
    std::sort(words.begin(), words.end());
    return {true, words};
}

Content onlineServers()
{
    OnlineSrvInfoReq list;
    list.startRequest();
    fuzz::spin();
    QStringList words;
    for (const tagOnlineSrvInfo &server : list.getOnlineSrvInfoList()) {
        fuzz::require(!server.addresses.isEmpty(), "a server that is listed has an address");
        words << server.name + server.ver + server.addresses.first().host +
                     QString::number(server.saves.size()) +
                     wordsOf({list.getSrvObject(unsigned(server.id))}).join("");
    }
    return {list.isUpdated(), words};
}

Content storeProps()
{
    auto *list = RivetStoreListInfo::GetInstance();
    list->UpdateList();
    fuzz::spin();
    QStringList words(QString::number(list->GetPrice(11, 1)));
    for (const StoreProp &prop : list->getStorePropList())
        words << prop.name + prop.detail + QString::number(prop.normList.size());
    return {list->IsListUpdated(), words};
}

Content vipLevels()
{
    auto *list = VipWelfareInfo::GetInstance();
    list->UpdateList();
    fuzz::spin();
    const VipWelfare level = list->GetVipWelfare(2);
    return {list->IsListUpdated(),
            {QString::number(level.price), QString::number(level.welfareList.size())}};
}

Content settings()
{
    auto *info = RivetSettingInfo::GetInstance();
    info->updateInfo();
    fuzz::spin();
    QStringList words(info->getrivetButtonInfoByName("a") ? "a" : "");
    for (const auto &contact : info->customerServiceInfoList())
        words << contact->name + contact->url;
    return {info->isInfoUpdated(), words};
}

Content ownProps()
{
    RivetStoreListInfo::GetInstance()->UpdateList();
    auto *list = MyPropListInfo::GetInstance();
    list->UpdateList();
    fuzz::spin();
    list->ChangePropUserStatus(11, true);
    return {false, {}}; // not kept on disk
}

Content record()
{
    ResObj resource(7, ResTypeMods, nullptr);
    resource.updateTask()->updateResInfoFromNet();
    fuzz::spin();
    return {false, {}}; // read from disk by the host's wish only
}

} // namespace

/// Replies with lists, the first letter telling which, and their copies on disk.
void fuzz::takeInput(const QByteArray &input)
{
    static const QHash<char, Content (*)()> lists{
        {'g', gameClients},   {'j', javas},      {'i', instances},
        {'o', onlineServers}, {'s', storeProps}, {'v', vipLevels},
        {'t', settings},      {'p', ownProps},   {'r', record}};
    const auto list = lists.value(input.isEmpty() ? '\0' : input.front());
    if (!list)
        return;
    Service service(input.mid(1));
    const Content fresh = list();
    service.restartWithout();
    const Content kept = list();
    require(!fresh.isGood || kept.words == fresh.words,
            "a good answer counts again without network");
}
