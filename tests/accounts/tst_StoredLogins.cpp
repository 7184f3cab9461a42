#include <QJsonDocument>
#include <QProcess>

#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserSLInfoPersistent.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "support/coresupport/QTAes.h"
#include "tests/support/CoreRun.h"
#include "tests/support/FakeMachine.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations" // the binary form

namespace {

RivetUserLoginInfoHelper *helper()
{
    return RivetUserLoginInfoHelper::GetInstance();
}

std::shared_ptr<RivetUserSecurityLoginInfo> record(const QString &name)
{
    return helper()->GetRivetUserList()->users.value(name);
}

void logIn(const QString &name, const QByteArray &digest)
{
    auto info = std::make_shared<RivetUserSecurityLoginInfo>();
    info->passwordmd5 = digest.leftJustified(16, '.', true);
    info->autoLogin = true;
    helper()->UpdateLoginInfo(name, info);
    helper()->ApplyUpdatedLoginInfo(name);
}

QString u(std::initializer_list<ushort> units)
{
    return QString(reinterpret_cast<const QChar *>(units.begin()), int(units.size()));
}

/// A name each, and the folder that it gets; empty where that depends on the system.
const QPair<QString, QString> names[] = {
    {"bob", "bob"},
    {"x@y.z", "x@y.z"},
    {"שלום", "שלום"},
    {"😀", "😀"},
    {".", "%2E"},
    {"..", ".%2E"},
    {"../../evil", "..%2F..%2Fevil"},
    {"..\\evil", "..%5Cevil"},
    {"/abs", "%2Fabs"},
    {"C:\\x", "C%3A%5Cx"},
    {"CON", "%43ON"},
    {"nul.txt", "%6Eul.txt"},
    {"com1 ", "%63om1%20"},
    {"Users.dat", "%55sers.dat"},
    {"users.dat.pending", "%75sers.dat.pending"},
    {"x", "x"},
    {"x.", "x%2E"},
    {"x ", "x%20"},
    {" x", " x"},
    {"x%2E", "x%252E"},
    {"a*?\"<>|\t", "a%2A%3F%22%3C%3E%7C%09"},
    {u({'n', 0, 0x9f}), "n%00%C2%9F"},
    {u({0x202e, 'g', 'n', 'p'}), u({0x202e, 'g', 'n', 'p'})},
    {u({0xe9}), u({0xe9})},
    {u({'e', 0x301}), u({'e', 0x301})},
    {u({0xfeff, 'b'}), "%-"},
    {u({0xd800}), "%-"},
    {u({0xd801}), "%-"},
    {QString(244, 'w'), QString(244, 'w')},
    {QString(300, 'n'), "%-"},
    {QString(299, 'n') + 'm', "%-"},
    {QString(100, 0x4e00), "%-"},
    {"Bob", ""},
    {"BOB", ""},
};

} // namespace

class tst_StoredLogins : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void namesStayApartBelowTheirFolder()
    {
        CoreRun run;
        makeFiles(run.folder.path(), {"evil", "oriel/rivet/evil"});
        int count = 0;
        for (const auto &[name, folder] : names)
            logIn(name, QByteArray::number(++count));
        logIn("", "nobody");
        run.restart();

        QStringList left = foldersIn(run);
        QCOMPARE(left.size(), count);
        for (const auto &[name, folder] : names) {
            QVERIFY2(record(name), qPrintable(name));
            QCOMPARE(record(name)->passwordmd5,
                     QByteArray::number(count - left.size() + 1).leftJustified(16, '.'));
            helper()->RemoveAccount(name);
            QStringList before = left;
            left = foldersIn(run);
            for (const QString &other : left)
                before.removeOne(other);
            QCOMPARE(before.size(), 1);
            if (!folder.isEmpty())
                QVERIFY2(folder == "%-" ? before[0].startsWith("%-") : before[0] == folder,
                         qPrintable(before[0]));
        }
        helper()->RemoveAccount("");
        run.restart();
        QCOMPARE(treeOf(run.folder.path()).section('=', 0, 0),
                 "evil oriel oriel/rivet oriel/rivet/evil oriel/rivet/users "
                 "oriel/rivet/users/users.dat");
    }

    void filesHaveTheirForm()
    {
        CoreRun run;
        logIn("bob", QByteArray::fromHex("5ebe2294ecd0e0f08eab7690d2a6ee69"));
        record("bob")->lastLoginTime = 0x1122334455;
        run.restart();
        for (const char *name : {"users", "users/users.dat", "users/bob", "users/bob/bob.dat"})
            QVERIFY2(isWindows() || !(QFile::permissions(run.file(name)) & 0x77), name);
        QCOMPARE(directoryIn(run), R"({"lastLogin":"bob","users":["bob"]})");

        QByteArray plain, sealed = FS::readFile(run.file("users/bob/bob.dat")).value();
        QVERIFY(QTAes::DecryptByteArrayByCpuid(sealed, plain));
        const QByteArray fields = "5ebe2294ecd0e0f08eab7690d2a6ee69554433221100000000000000";
        QCOMPARE(plain.toHex(), "10000000" + fields + "01000000");
        // A length of the digest and what stands behind it; can it be read?
        const QPair<QByteArray, bool> rows[] = {{"10000000" + fields + "00000000", true},
                                                {"10000000" + fields, false},
                                                {"0c000000" + fields + "01000000", false},
                                                {"ffffffff" + fields + "01000000", false},
                                                {"", false}};
        for (const auto &[hex, isGood] : rows) {
            QTAes::EncryptByteArrayByCpuid(QByteArray::fromHex(hex), sealed);
            QVERIFY(FS::writeFile(run.file("users/bob/bob.dat"), sealed));
            run.restart();
            QVERIFY2(bool(record("bob")) == isGood, hex);
        }
        helper()->UpdateAutoLoginInfo("bob", true);
        run.restart();
        const QVariantMap list = helper()->getHistoricalLoginUserList();
        QCOMPARE(QJsonDocument::fromVariant(list).toJson(QJsonDocument::Compact),
                 R"({"lastLoginUser":"bob","userInfos":[{"loginInfo":{},"userName":"bob"}]})");
        QVERIFY2(FS::readFile(run.file("users/bob/bob.dat")) == sealed, "still there");
    }

    void whatIsSaved()
    {
        CoreRun run;
        logIn("a", "1");
        logIn("b", "2");
        run.restart();
        logIn("c", "3");
        logIn("c", "4");
        logIn("gone", "5");
        helper()->UpdateLoginInfo("b", std::make_shared<RivetUserSecurityLoginInfo>());
        helper()->RemoveAccount("gone");
        helper()->UpdateAutoLoginInfo("nobody", true);
        run.restart();
        QVERIFY(helper()->GetRivetUserList()->users.size() == 3 && record("b") && record("a"));
        QCOMPARE(record("c")->passwordmd5.left(2), "4.");
        {
            const FakeMachine other;
            run.restart();
            QVERIFY2(helper()->GetRivetUserList()->users.size() == 3 && !record("a"), "a copy");
        }
        run.restart();
        helper()->RemoveAccount("a");
        QCOMPARE(treeOf(run.file("users")).count("a.dat"), 0);
        run.restart();
        QVERIFY(!record("a") && helper()->GetRivetUserList()->lastLoginUser == "gone");
        for (const char *name : {"b", "c"})
            helper()->RemoveAccount(name);
        run.restart();
        QCOMPARE(directoryIn(run), R"({"lastLogin":"gone","users":[]})");
        QCOMPARE(helper()->GetRivetUserList()->lastLoginUser, "");
    }

    void saysWhatItCanNotSave()
    {
        CoreRun run;
        const LogCapture log;
        makeFiles(run.file("users"), {"bad"});
        logIn("bad", "1");
        logIn("good", "2");
        run.restart();
        QCOMPARE(log.lines().join('|'), "open file " + run.file("users/bad/bad.dat") + " failed");
        QVERIFY(record("good") && !record("bad"));
        QVERIFY(QFile::remove(run.file("users/users.dat")));
        makeFiles(run.file("users/users.dat"), {"in the way"});
        logIn("new", "3");
        run.restart();
        QVERIFY(log.has(QtWarningMsg, "open users data file failed!!"));
        QCOMPARE(treeOf(run.file("users")).count("new"), 0);
        QVERIFY(!treeOf(run.file("users")).contains("pending"));
    }

    /// Saves again and again until somebody kills it.
    void killedWhileItSaves()
    {
        const QString folder = qEnvironmentVariable("RIVET_TEST_SAVES");
        CoreRun run(folder);
        for (int round = 1; !folder.isEmpty(); ++round) {
            for (int user = 0; user < 5; ++user)
                logIn(QString::number((round + user) % 5), QByteArray::number(round));
            run.restart();
            puts("saved");
            fflush(stdout);
        }

        for (int kill = 0; kill < killCount; ++kill) {
            QProcess saver;
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert("RIVET_TEST_SAVES", run.folder.path());
            saver.setProcessEnvironment(environment);
            saver.start(QCoreApplication::applicationFilePath(), {"killedWhileItSaves"});
            // The first saves tell how long one takes; each kill comes at another part of a later
            // one.
            QElapsedTimer clock;
            QByteArray said;
            for (int saves : {1, 3}) {
                while (said.count("saved") < saves && saver.waitForReadyRead())
                    said += saver.readAll();
                if (saves == 1)
                    clock.start();
            }
            const qint64 killAt = clock.nsecsElapsed() / 2 * (2 * killCount + kill) / killCount;
            while (clock.nsecsElapsed() < killAt) {
            }
            saver.kill();
            QVERIFY(saver.waitForFinished());
            run.restart();
            const auto list = helper()->GetRivetUserList();
            QCOMPARE(list->users.size(), 5);
            const QByteArray round = record("0") ? record("0")->passwordmd5 : "";
            for (int user = 0; user < 5; ++user)
                QVERIFY(record(QString::number(user)) &&
                        record(QString::number(user))->passwordmd5 == round);
            const int last = (QByteArray(round).replace('.', "").toInt() + 4) % 5;
            QCOMPARE(list->lastLoginUser, QString::number(last));
        }
    }

private:
    static constexpr int killCount = 20;

    static QStringList foldersIn(const CoreRun &run)
    {
        return QDir(run.file("users")).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    static QByteArray directoryIn(const CoreRun &run)
    {
        const QByteArray bytes = FS::readFile(run.file("users/users.dat")).value_or("");
        return QJsonDocument::fromBinaryData(bytes).toJson(QJsonDocument::Compact);
    }

    static bool isWindows()
    {
        return QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows;
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_StoredLogins)
#include "tst_StoredLogins.moc"
