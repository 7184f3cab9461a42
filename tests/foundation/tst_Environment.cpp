#include <memory>

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSettings>
#include <QtConcurrent>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/foundation/Environment.h"
#include "core/foundation/QNetworkCookieJarEx.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"

struct FakeReply : QNetworkReply
{
    void abort() override {}
    qint64 readData(char *, qint64) override { return -1; }
    void ignoreSslErrors() override { ++ignored; }
    int ignored = 0;
};

static bool addCookie(QNetworkAccessManager &manager, const char *name)
{
    const QUrl url("http://127.0.0.1/");
    return manager.cookieJar()->setCookiesFromUrl({QNetworkCookie(name, "1")}, url);
}

class tst_Environment : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void managersShareCookiesAndTakeEveryCertificate()
    {
        auto core = std::make_unique<RivetCoreAtExitManagerUtil>();
        // The first to ask is a thread of the pool.
        Environment *environment = QtConcurrent::run(&Environment::GetInstance).result();
        const auto shared = environment->getShareNetworkAccessMgr();
        QVERIFY(environment->thread() == thread() && shared->thread() == thread());
        QNetworkAccessManager *other = environment->createNetwork();
        QCOMPARE(other->redirectPolicy(), QNetworkRequest::NoLessSafeRedirectPolicy);
        FakeReply reply;
        const LogCapture log;
        Q_EMIT other->sslErrors(nullptr, {QSslError()});
        Q_EMIT other->sslErrors(&reply, {QSslError(QSslError::SelfSignedCertificate)});
        QVERIFY(reply.ignored == 1 && log.lines()[1].startsWith("ssl error: The certificate"));

        QVERIFY(addCookie(*shared, "login") && addCookie(*other, "second"));
        delete other;
        QCOMPARE(environment->GetAllCookies().size(), 2);
        environment->clearAllCookies();
        QVERIFY(addCookie(*shared, "login") && environment->GetAllCookies().size() == 1);
        core.reset();
        QVERIFY2(addCookie(*shared, "late"), "whoever still holds it");

        core = std::make_unique<RivetCoreAtExitManagerUtil>();
        environment = Environment::GetInstance();
        QVERIFY(!environment->isDebugMode() && environment->GetAllCookies().isEmpty());
        QSettings().setValue("Debug", 1);
        QVERIFY(environment->isDebugMode());
        delete environment->findChild<QNetworkCookieJarEx *>();
        environment->clearAllCookies();
        QVERIFY(environment->GetAllCookies().isEmpty());
        QCOMPARE(log.lines().mid(2).join('|'), "cookie jar is null|cookie jar is null");
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Environment)
#include "tst_Environment.moc"
