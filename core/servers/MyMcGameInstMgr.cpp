#include "core/servers/MyMcGameInstMgr.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QPointer>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/foundation/BinaryJson.h"
#include "core/foundation/CachedAnswer.h"
#include "core/foundation/FSH.h"
#include "core/foundation/JsonNumber.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Log.h"

namespace {

const QLatin1String codeKey("code");
const QLatin1String dataKey("data");

bool isVersionIn(const QJsonObject &instance, const QString &verSet)
{
    try {
        return CCommonFunction::IsThisVerSetInOtherVerSet(instance[QLatin1String("ver")].toString(),
                                                          verSet);
    } catch (...) {
        Log::warning(QStringLiteral("resource version format is wrong, ignored"));
        return false;
    }
}

} // namespace

MyMcGameInstMgr::MyMcGameInstMgr()
{
    FilePersistent::SetSavePathFile(FSH::localAppDataPath() % QLatin1String("/myMcGamelist.cache"));
    FilePersistent::Load();
    m_listed.clear();
}

MyMcGameInstMgr::~MyMcGameInstMgr()
{
    FilePersistent::Save();
}

MyMcGameInstMgr *MyMcGameInstMgr::GetInstance()
{
    return LazySingleton<MyMcGameInstMgr>::get();
}

void MyMcGameInstMgr::updateList()
{
    if (RivetLoginHost::GetInstance()->status() != RivetLoginHost::LoginStatusLoggedIn) {
        Log::critical(QStringLiteral("user have not login"));
        return;
    }
    const QString bid = QString::number(RivetUserProfile::GetInstance()->getBid());
    const QString url = QString::fromLatin1(g_my_server_instance_list_url).arg(bid);
    m_request = ServiceRequest::start(url, this, std::chrono::seconds(20));
}

void MyMcGameInstMgr::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (!reply) {
        Log::critical(QStringLiteral("http request task pointer is null"));
        Q_EMIT updateFinished(false);
        return;
    }
    const QPointer<MyMcGameInstMgr> self(this); // a slot may end the core
    Q_EMIT updateFinished(takeAnswer(*reply));
    if (self)
        Save();
}

bool MyMcGameInstMgr::takeAnswer(QNetworkReply &reply)
{
    if (reply.error() != QNetworkReply::NoError) {
        Log::critical(QLatin1String("failed with errno ") % QString::number(reply.error()));
        return false;
    }
    const QByteArray json = CCommonFunction::GetMidByteArray(
        QStringLiteral("("), QStringLiteral(")"), CachedAnswer::filteredBody(reply));
    if (ParseData(json))
        return true;
    Log::warning(QLatin1String("parse game instance list info failed. json:") %
                 QString::fromUtf8(json) %
                 QLatin1String("(maybe because your game instance is empty)"));
    return false;
}

bool MyMcGameInstMgr::ParseData(const QByteArray &data)
{
    const std::optional<QJsonObject> cached = BinaryJson::parse(data);
    const QJsonObject answer = cached ? *cached : QJsonDocument::fromJson(data).object();
    const QJsonValue code = answer[codeKey];
    if (code.isUndefined() || code.isNull()) {
        Log::critical(QStringLiteral("unexpected data format!"));
        return false;
    }
    if (!JsonNumber::isZero(code))
        return false;
    const QJsonArray elements = answer[dataKey].toArray();
    for (const QJsonValue &element : elements) {
        const QJsonObject instance = element.toObject();
        const quint32 id = JsonNumber::toUInt(instance[QLatin1String("id")]);
        if (id == 0)
            continue;
        m_instances[id] = instance;
        m_listed += id;
    }
    return true;
}

// The cache is read back at the next start. What came from it and has not been listed since would
// otherwise live on for ever.
bool MyMcGameInstMgr::BuildData(QByteArray &out)
{
    QJsonArray elements;
    for (auto entry = m_instances.cbegin(); entry != m_instances.cend(); ++entry) {
        if (m_listed.isEmpty() || m_listed.contains(entry.key()))
            elements += *entry;
    }
    out = BinaryJson::bytesOf({{codeKey, 0}, {dataKey, elements}});
    return true;
}

QList<unsigned int> MyMcGameInstMgr::getGameInstIdList() const
{
    return m_instances.keys();
}

QList<unsigned int> MyMcGameInstMgr::getGameInstIdList(const QString &verSet) const
{
    QList<unsigned int> ids;
    for (auto entry = m_instances.cbegin(); entry != m_instances.cend(); ++entry) {
        if (isVersionIn(*entry, verSet))
            ids += entry.key();
    }
    return ids;
}

QString MyMcGameInstMgr::getGameInstName(unsigned int id) const
{
    return getGameInstanceInfo(id)[QLatin1String("name")].toString();
}

QJsonObject MyMcGameInstMgr::getGameInstanceInfo(unsigned int id) const
{
    return m_instances.value(id);
}
