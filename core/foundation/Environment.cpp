#include "core/foundation/Environment.h"

#include <chrono>

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QSettings>

#include "base/LazySingleton.h"
#include "core/foundation/MCSettings.h"
#include "core/foundation/NetworkPolicy.h"
#include "core/foundation/QNetworkCookieJarEx.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr std::chrono::milliseconds longestSilence = std::chrono::seconds(30);

} // namespace

Environment::Environment()
    : m_cookieJar(new QNetworkCookieJarEx(this)),
      m_sharedManager(std::make_shared<QNetworkAccessManager>())
{
    setUp(*m_sharedManager);
    // A pool thread that came first has no event loop for the replies.
    if (const auto *application = QCoreApplication::instance()) {
        m_sharedManager->moveToThread(application->thread());
        moveToThread(application->thread());
    }
}

/// Who still holds the shared manager keeps one that works, without the cookies.
Environment::~Environment()
{
    if (m_cookieJar)
        m_sharedManager->setCookieJar(new QNetworkCookieJar);
}

Environment *Environment::GetInstance()
{
    return LazySingleton<Environment>::get();
}

std::shared_ptr<MCSettings> Environment::settings()
{
    if (!m_settings)
        m_settings = std::make_shared<MCSettings>();
    return m_settings;
}

std::shared_ptr<QNetworkAccessManager> Environment::getShareNetworkAccessMgr()
{
    return m_sharedManager;
}

QNetworkAccessManager *Environment::createNetwork()
{
    auto *manager = new QNetworkAccessManager(this);
    setUp(*manager);
    return manager;
}

void Environment::setUp(QNetworkAccessManager &manager)
{
    NetworkPolicy::apply(manager);
    manager.setTransferTimeout(static_cast<int>(longestSilence.count()));
    if (!m_cookieJar)
        return;
    manager.setCookieJar(m_cookieJar);
    // setCookieJar() has made the jar a child of the manager, with which it would go.
    m_cookieJar->setParent(this);
}

QList<QNetworkCookie> Environment::GetAllCookies()
{
    if (m_cookieJar)
        return m_cookieJar->allCookies();
    Log::critical(QStringLiteral("cookie jar is null"));
    return {};
}

void Environment::clearAllCookies()
{
    if (m_cookieJar)
        m_cookieJar->setAllCookies({});
    else
        Log::critical(QStringLiteral("cookie jar is null"));
}

bool Environment::isDebugMode()
{
    return QSettings().value(QStringLiteral("Debug"), QVariant()).toUInt() == 1;
}
