#include "core/accounts/RivetUserRegister.h"
#include "tests/support/Await.h"
#include "tests/support/CoreRun.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"

class tst_RivetUserRegister : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void checksTheCodeAndAsksForTheAccount()
    {
        // The name, password and code; what the two services answer; how it ends; requests.
        const char *rows[][5] = {
            {" p c", "0", "0", "-username should not empty", "0"},
            {"a  c", "0", "0", "-password should not empty", "0"},
            {"a p ", "0", "0", "-verify code should not empty", "0"},
            {"a %3 c", "{\"code\":0}", "{\"code\":\"0\"}", "+", "name=a&"},
            {"a@b@c p c", "{\"code\":\"0\"}", "{\"code\":0}", "+", "name=a@b@&"},
            {"@ p c", "{\"code\":\"0\"}", "{\"code\":0}", "+", "name=@&"},
            {"a p c", "{\"code\":\"abc\",\"msg\":\"m\"}", "", "-m", "1"},
            {"a p c", "{\"code\":0}", "{\"msg\":\"late\"}", "-late", "2"},
            {"a p c", "{\"code\":1}", "", "-", "1"},
            {"a p c", "{}", "", "-internal error", "1"},
            {"a p c", "{\"code\":0}", "x", "-internal error", "2"},
            {"a p c", "{\"code\":0}", "404", "-network error", "2"},
        };
        for (const auto &[input, verified, registered, outcome, requests] : rows) {
            CoreRun run;
            run.server.play("/account/verify", verified, "");
            run.server.play("/account/register", registered,
                            QByteArray(registered) == "404" ? "status=404" : "");
            const QStringList words = QString(input).split(' ');
            QStringList ends;
            note(ends);
            QMetaObject::invokeMethod(RivetUserRegister::GetInstance(), "registerAccount",
                                      Q_ARG(QString, words[0]), Q_ARG(QString, words[1]),
                                      Q_ARG(QString, words[2]));
            QVERIFY(await([&] { return !ends.isEmpty(); }));
            QCOMPARE(ends.join('|'), words[0] + outcome);
            const QStringList paths = run.asked("/account");
            if (QByteArray(requests).size() == 1)
                QCOMPARE(paths.size(), QByteArray(requests).toInt());
            else
                QVERIFY2(paths.value(1).contains(requests), qPrintable(paths.join(' ')));
        }
    }

    void twoCallsRunSideBySide()
    {
        CoreRun run;
        run.server.play("/account/verify", "{\"code\":0}", "trickle=1 pause=9 then");
        run.server.play("/account/register", "{\"code\":0}", "");
        QStringList ends;
        note(ends);
        RivetUserRegister::GetInstance()->registerAccount("slow", "p", "1");
        RivetUserRegister::GetInstance()->registerAccount("quick", "%1&p", "2");
        QVERIFY(await([&] { return ends.size() == 2; }));
        QCOMPARE(ends.join('|'), "quick+|slow+");
        QCOMPARE(run.asked("/account/register").first(),
                 "/account/register?user=quick&password=%251&p&name=quick&type=1");

        const LogCapture log;
        auto *object = RivetUserRegister::GetInstance();
        QMetaObject::invokeMethod(object, "onVerifyCodeFinished");
        QMetaObject::invokeMethod(object, "onRegisterAccountFinished");
        QCOMPARE(log.lines().join('|'), "not expected error|not expected error.");
    }

private:
    static void note(QStringList &ends)
    {
        using Register = RivetUserRegister;
        auto *object = Register::GetInstance();
        connect(object, &Register::registerSuccess, object,
                [&ends](const QString &name) { ends << name + "+"; });
        connect(object, &Register::registerFailed, object,
                [&ends](const QString &name, const QString &text) { ends << name + "-" + text; });
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RivetUserRegister)
#include "tst_RivetUserRegister.moc"
