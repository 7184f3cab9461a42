#include <QProcess>

#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "support/coresupport/QTAes.h"
#include "tests/support/CoreRun.h"
#include "tests/support/TestFiles.h"

namespace {

const QDir::Filters folderFilter = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;

struct Logins : CoreRun
{
    using CoreRun::CoreRun;
    static RivetUserLoginInfoHelper &helper() { return *RivetUserLoginInfoHelper::GetInstance(); }
    static void logIn(const QString &name, int digest)
    {
        auto info = std::make_shared<RivetUserSecurityLoginInfo>();
        info->passwordmd5 = QByteArray::number(digest).rightJustified(16, '0');
        info->autoLogin = true;
        helper().UpdateLoginInfo(name, info);
        helper().ApplyUpdatedLoginInfo(name);
    }
    /// What is stored for @p name: the number, 0 without a record, -1 if nobody knows the name.
    static int digest(const QString &name)
    {
        const auto users = helper().GetRivetUserList()->users;
        return users.value(name) ? users[name]->passwordmd5.toInt() : users.contains(name) - 1;
    }
    /// The same of some users behind the last one, after the next start.
    QString stored(const char *names)
    {
        restart();
        QString text = helper().GetRivetUserList()->lastLoginUser;
        for (const QString &name : QString(names).split(' '))
            text += ' ' + QString::number(digest(name));
        return text;
    }
    QStringList folders() const { return QDir(file("users")).entryList(folderFilter); }
};

const bool isWindows = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows;

} // namespace

class tst_StoredLogins : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void namesStayApartBelowTheirFolder()
    {
        // A name and its folder each; "%-" begins a digest.
        QString text = "bob=bob#x@y.z=x@y.z#שלום=שלום#😀=😀#.=%2E#..=%2E%2E#x=x#x.=x%2E#"
                       "../../evil=..%2F..%2Fevil#..\\evil=..%5Cevil#/abs=%2Fabs#C:=C%3A#"
                       "CON=%43ON#nul.txt=%6Eul.txt#com1 =%63om1%20#Users.dat=%55sers.dat#"
                       "users.dat.pending=%75sers.dat.pending#x =x%20# x= x#x%2E=x%252E#"
                       "\u0080=%C2%80#a*?\"<>|\t=a%2A%3F%22%3C%3E%7C%09#\u202egnp=\u202egnp#"
                       "é=é#e\u0301=e\u0301#BOB=#Bob=#~1m=%-#~1n=%-#~2=%-#~3=%-#~4b=%-#~5=~5";
        text.replace("~1", QString(299, 'n')).replace("~5", QString(244, 'w'));
        text.replace("~2", QChar(0xd800)).replace("~3", QChar(0xd801)).replace("~4", QChar(0xfeff));
        const QStringList rows = text.split('#');
        Logins run;
        makeFiles(run.root, {"evil", "oriel/rivet/evil"});
        for (int i = 0; i < rows.size(); ++i)
            run.logIn(rows[i].section('=', 0, 0), i + 1);
        run.logIn("", 99);
        run.restart();
        for (int i = 0; i < rows.size(); ++i) {
            const QString name = rows[i].section('=', 0, 0), folder = rows[i].section('=', 1);
            QVERIFY2(run.digest(name) == i + 1, qPrintable(name));
            QStringList gone = run.folders();
            QCOMPARE(gone.size(), rows.size() - i);
            run.helper().RemoveAccount(name);
            for (const QString &other : run.folders())
                gone.removeOne(other);
            QVERIFY2(gone.size() == 1 && gone[0].startsWith(folder), qPrintable(gone.join(' ')));
        }
        run.restart();
        const QString left = treeOf(run.root).remove("oriel/rivet").section('=', 0, 0);
        QCOMPARE(left, "evil oriel  /evil /users /users/users.dat");
    }

    void whatIsSaved()
    {
        Logins run;
        const LogCapture log;
        makeFiles(run.file("users"), {"bad"});
        for (const char *name : {"a", "bad", "b"})
            run.logIn(name, 1);
        QCOMPARE(run.stored("a b bad"), "b 1 1 0");
        QVERIFY(log.has(QtCriticalMsg, "open file " + run.file("users/bad/bad.dat") + " failed"));
        run.restart();
        for (const char *name : {"b", "b", "gone"})
            run.logIn(name, 3);
        run.helper().RemoveAccount("gone");
        run.helper().UpdateLoginInfo("a", std::make_shared<RivetUserSecurityLoginInfo>());
        QCOMPARE(run.stored("a b bad gone"), "gone 1 3 0 -1");
        const QVariantList infos = run.helper().getHistoricalLoginUserList()["userInfos"].toList();
        QVERIFY(infos.contains(QVariantMap{{"userName", "bad"}, {"loginInfo", QVariantMap()}}));
        run.helper().UpdateAutoLoginInfo("bad", true);
        run.helper().RemoveAccount("a");
        QCOMPARE(run.stored("a b"), "gone -1 3");

        for (const char *path : {"users", "users/users.dat", "users/b", "users/b/b.dat"})
            QVERIFY2(isWindows || !(QFile::permissions(run.file(path)) & 0x77), path);
        const QString file = run.file("users/b/b.dat");
        QByteArray plain, sealed;
        QVERIFY(QTAes::DecryptByteArrayByCpuid(FS::readFile(file).value(), plain));
        const QByteArray digest = QByteArray("30").repeated(15) + "33";
        QCOMPARE(QByteArray(plain).remove(20, 8).toHex(), "10000000" + digest + "0000000001000000");
        QTAes::EncryptByteArrayByCpuid(plain.replace(0, 1, "\x0c"), sealed);
        QVERIFY(FS::writeFile(file, sealed));
        QCOMPARE(run.stored("b"), "gone 0");

        QVERIFY(QFile::remove(run.file("users/users.dat")));
        makeFiles(run.file("users/users.dat"), {"in the way"});
        run.logIn("new", 5);
        QCOMPARE(run.stored("new"), " -1");
        QVERIFY(log.has(QtWarningMsg, "open users data file failed!!"));
        QVERIFY(FS::readFile(file) == sealed && run.folders().join(' ') == "b users.dat");
    }

    /// Saves again and again in a process of its own, until somebody kills it.
    void killedWhileItSaves()
    {
        constexpr int killCount = 15;
        const QString folder = qEnvironmentVariable("RIVET_TEST_SAVES");
        Logins run(folder);
        for (int round = 1; !folder.isEmpty(); ++round) {
            for (int user = 0; user < 5; ++user)
                run.logIn(QString::number((round + user) % 5), round);
            run.restart();
            puts("saved"), fflush(stdout);
        }
        qputenv("RIVET_TEST_SAVES", run.root.toLocal8Bit());
        for (int kill = 0; kill < killCount; ++kill) {
            QProcess saver;
            saver.start(QCoreApplication::applicationFilePath(), {"killedWhileItSaves"});
            for (QByteArray said; said.count("saved") < 2 && saver.waitForReadyRead();)
                said += saver.readAll();
            QElapsedTimer clock; // each kill falls into another part of a save
            for (clock.start(); clock.nsecsElapsed() < kill * 400'000;)
                QThread::yieldCurrentThread();
            saver.kill();
            QVERIFY(saver.waitForFinished());
            run.restart();
            const int round = run.digest("0");
            const QString all = QString(" %1").arg(round).repeated(5);
            QCOMPARE(run.stored("0 1 2 3 4"), QString::number((round + 4) % 5) + all);
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_StoredLogins)
#include "tst_StoredLogins.moc"
