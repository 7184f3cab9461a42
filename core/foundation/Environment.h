#pragma once

#include <memory>

#include <QList>
#include <QNetworkCookie>
#include <QObject>
#include <QPointer>

#include "base/RivetCoreExport.h"

class MCSettings;
class QNetworkAccessManager;
class QNetworkCookieJarEx;
template <typename Type>
class LazySingleton;

/// What there is once in a process: the settings, the cookies and the shared network manager.
///
/// A singleton until the at-exit manager runs. GetInstance() is safe from any thread, and the
/// object and its managers live on the application's thread whoever asks first; all else is for
/// that thread only.
///
/// Its managers follow redirects that do not lower the security of the scheme, end a request after
/// 30 s without any byte, and take every certificate: errors of it are logged and ignored.
class RIVETCORE_EXPORT Environment : public QObject
{
    Q_OBJECT
public:
    ~Environment() override;

    static Environment *GetInstance();

    /// Opened on the first call, and not validated: that is for the host to do at start.
    std::shared_ptr<MCSettings> settings();

    /// The manager of all request classes of the core, so that the cookies of a login go along
    /// with each of their requests.
    std::shared_ptr<QNetworkAccessManager> getShareNetworkAccessMgr();

    /// A further manager on the same cookies, owned by this object. The caller may delete it.
    QNetworkAccessManager *createNetwork();

    /// Every cookie, of whatever site.
    QList<QNetworkCookie> GetAllCookies();

    /// True if the application's default settings hold 1 under "Debug".
    Q_INVOKABLE bool isDebugMode();

public Q_SLOTS:
    void clearAllCookies();

private:
    friend class LazySingleton<Environment>;
    Environment();

    void setUp(QNetworkAccessManager &manager);

    // The order counts: the manager goes before the settings.
    std::shared_ptr<MCSettings> m_settings;
    QPointer<QNetworkCookieJarEx> m_cookieJar; ///< owned as a child
    std::shared_ptr<QNetworkAccessManager> m_sharedManager;
};
