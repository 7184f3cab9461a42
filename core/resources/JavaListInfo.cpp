#include "core/resources/JavaListInfo.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

#include "base/LazySingleton.h"
#include "core/foundation/Environment.h"
#include "core/resources/RecordList.h"
#include "support/coresupport/ServiceUrls.h"

JavaListInfo::JavaListInfo() : m_manager(Environment::GetInstance()->getShareNetworkAccessMgr()) {}

/// A reply in flight ends silently.
JavaListInfo::~JavaListInfo()
{
    delete m_reply;
}

JavaListInfo *JavaListInfo::GetInstance()
{
    return LazySingleton<JavaListInfo>::get();
}

void JavaListInfo::updateList()
{
    if (m_isUpdated || m_reply)
        return;
    m_reply = m_manager->get(QNetworkRequest(QUrl(QString::fromUtf8(g_java_list_url))));
    connect(m_reply, &QNetworkReply::finished, this, &JavaListInfo::onNetGetListFinished);
}

void JavaListInfo::onNetGetListFinished()
{
    if (!m_reply)
        return;
    const CachedAnswer::Kind kind{QStringLiteral("parseListInfo faied. json:"),
                                  QStringLiteral("netgetlistinfo failed with errno "),
                                  RecordList::cacheFile(ResTypeJava),
                                  CachedAnswer::Form::BinaryJson};
    if (RecordList::take(*m_reply, kind, m_runtimes,
                         [this](const QJsonObject &answer) { return parseListInfo(answer); }))
        m_isUpdated = true;
    m_reply->deleteLater();
    m_reply = nullptr;
    Q_EMIT updateListFinished(m_isUpdated);
}

bool JavaListInfo::parseListInfo(const QJsonObject &answer)
{
    const QJsonObject resource = answer[QLatin1String("resource")].toObject();
    return RecordList::append(answer, resource[QLatin1String("java")], m_runtimes);
}

QJsonObject JavaListInfo::javaInfo(uint id) const
{
    return RecordList::byId(m_runtimes, id);
}

QJsonObject JavaListInfo::javaInfoForSystem(bool is64Bit) const
{
    const QLatin1String word(is64Bit ? "x64" : "x86");
    return RecordList::firstOf(m_runtimes, [&](const QJsonObject &runtime) {
        return runtime[QLatin1String("name")].toString().contains(word);
    });
}
