#include <QtTest>

#include "support/coresupport/ServiceUrls.h"
#include "tests/support/LogCapture.h"

class tst_ServiceUrls : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void theHostChoosesTheService()
    {
        const char *const before = g_resInfo_url;
        QCOMPARE(before, "https://service.rivet.example/resources/info?id=%1");
        QVERIFY(ServiceUrls::setBaseAddress("http://127.0.0.1:8080/api/"));
        QCOMPARE(ServiceUrls::baseAddress(), "http://127.0.0.1:8080/api");
        QCOMPARE(QString::fromLatin1(g_rivet_login_url).arg("u", "m", "c"),
                 "http://127.0.0.1:8080/api/account/login?user=u&password=m&channel=c");
        QCOMPARE(before, "https://service.rivet.example/resources/info?id=%1");

        const LogCapture log;
        for (const char *address :
             {"", "rivet.example", "ftp://rivet.example", "http://", "http://h/?q", "http://h/#f",
              "http://h/%2F", "http://h h", "http://u:p@h",
              "http://h/stra\xC3\x9F"
              "e"})
            QVERIFY2(!ServiceUrls::setBaseAddress(QString::fromUtf8(address)), address);
        QCOMPARE(ServiceUrls::baseAddress(), "http://127.0.0.1:8080/api");
        QCOMPARE(log.lines().size(), 10);
    }

    void theEnvironmentGoesFirst()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("RIVET_SERVICE_URL", "http://[::1]:81");
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), {"print"});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardOutput().trimmed(),
                 QByteArray("http://[::1]:81/servers/lan"));
    }
};

int main(int argc, char **argv)
{
    // Run again by the test itself, under another environment.
    if (argc == 2 && qstrcmp(argv[1], "print") == 0) {
        ServiceUrls::setBaseAddress("http://host.example");
        return std::puts(g_lan_server_list_url) < 0;
    }
    QCoreApplication application(argc, argv);
    tst_ServiceUrls test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ServiceUrls.moc"
