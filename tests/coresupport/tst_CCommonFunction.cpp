#include <QJsonDocument>
#include <QRandomGenerator>
#include <QtTest>

#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/Exception.h"

namespace {

/// Bytes that lean to what the readers look for.
QByteArray randomBytes(QRandomGenerator &random)
{
    static const QByteArray liked("\xEF\xBB\xBF\0\t\n {}()[]\"-.,;|0129", 25);
    QByteArray bytes;
    for (int i = random.bounded(40); i > 0; --i) {
        bytes += random.bounded(4) ? liked.at(random.bounded(liked.size()))
                                   : static_cast<char>(random.bounded(256));
    }
    return bytes;
}

} // namespace

class tst_CCommonFunction : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void filtersReplies_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("filtered");
        QTest::newRow("clean") << QByteArray("{\"a\":1}") << QByteArray("{\"a\":1}");
        QTest::newRow("byte order mark")
            << QByteArray("\xEF\xBB\xBF{\"a\":1}") << QByteArray("{\"a\":1}");
        QTest::newRow("mark behind blanks")
            << QByteArray("\r\n\xEF\xBB\xBF {}") << QByteArray("{}");
        QTest::newRow("surrounding white space") << QByteArray(" \r\n{}\t\n") << QByteArray("{}");
        QTest::newRow("NUL bytes") << QByteArray("{\"a\0\":\0"
                                                 "1}\0\0",
                                                 11)
                                   << QByteArray("{\"a\":1}");
        QTest::newRow("line end in a string")
            << QByteArray("{\"a\":\"x\ny\x01\"}") << QByteArray("{\"a\":\"x y \"}");
        QTest::newRow("wrapped") << QByteArray("({\"a\":1})") << QByteArray("({\"a\":1})");
        QTest::newRow("a mark inside stays")
            << QByteArray("\"\xEF\xBB\xBF\"") << QByteArray("\"\xEF\xBB\xBF\"");
        QTest::newRow("nothing left") << QByteArray("\xEF\xBB\xBF \0 \n", 7) << QByteArray();
    }
    void filtersReplies()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, filtered);
        QCOMPARE(CCommonFunction::FilterJsonData(reply), !filtered.isEmpty());
        QCOMPARE(reply, filtered);
    }

    void findsTheMiddle_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("middle");
        QTest::newRow("plain") << QByteArray("f({1})") << QByteArray("{1}");
        QTest::newRow("first begin, next end") << QByteArray(")(a(b)c)") << QByteArray("a(b");
        QTest::newRow("no begin") << QByteArray("a)") << QByteArray();
        QTest::newRow("end only in front") << QByteArray(")(a") << QByteArray();
    }
    void findsTheMiddle()
    {
        QFETCH(QByteArray, data);
        QTEST(CCommonFunction::GetMidByteArray(QStringLiteral("("), QStringLiteral(")"), data),
              "middle");
    }

    void comparesVersionSets_data()
    {
        QTest::addColumn<QString>("these");
        QTest::addColumn<QString>("others");
        QTest::addColumn<bool>("inside");
        const auto row = [](const char *these, const char *others, bool inside) {
            QTest::addRow("'%s' in '%s'", these, others)
                << QString::fromLatin1(these) << QString::fromLatin1(others) << inside;
        };
        row("1.7.10", "1.7.10", true);
        row("1.7.10", "1.7.2", false);
        row("1.7.10", "1.7.2-1.8", true);
        row("1.8.0", "1.8", true);
        row("1.10", "1.2-1.9", false);
        row("1.8-1.9", "1.7-1.10", true);
        row("1.8-1.11", "1.7-1.10", false);
        row("1.8-1.12", "1.7-1.10,1.10-1.13", false);
        row("1.8;1.12", "1.7-1.10|1.12", true);
        row("1.8;1.11", "1.7-1.10|1.12", false);
        row(" 1.8 , 1.9 ;", "1.8 - 1.9", true);
        row("", "1.8", false);
        row("", "", false);
        row("1.8", "", false);
        row("18446744073709551615", "1-18446744073709551615", true);
    }
    void comparesVersionSets()
    {
        QFETCH(QString, these);
        QFETCH(QString, others);
        QTEST(CCommonFunction::IsThisVerSetInOtherVerSet(these, others), "inside");
    }

    void throwsOnMalformedVersions_data()
    {
        QTest::addColumn<QString>("member");
        for (const char *member : {"1.x", "1..2", "1.", "-1.8", "1.8-", "1-2-3", "1.9-1.8", "v1.8",
                                   "+1", "18446744073709551616", "\xD9\xA1"})
            QTest::newRow(member) << QString::fromUtf8(member);
    }
    void throwsOnMalformedVersions()
    {
        QFETCH(QString, member);
        const QString good = QStringLiteral("1.8");
        QVERIFY_EXCEPTION_THROWN(CCommonFunction::IsThisVerSetInOtherVerSet(member, good),
                                 Exception);
        QVERIFY_EXCEPTION_THROWN(
            CCommonFunction::IsThisVerSetInOtherVerSet(good, good + QLatin1Char(',') + member),
            Exception);
    }

    void survivesAnyBytes()
    {
        QRandomGenerator random(20260722);
        int sets = 0;
        for (int i = 0; i < 5000; ++i) {
            const QByteArray input = randomBytes(random);
            QByteArray once = input;
            const bool isLeft = CCommonFunction::FilterJsonData(once);
            QByteArray twice = once;
            QCOMPARE(CCommonFunction::FilterJsonData(twice), isLeft);
            QCOMPARE(twice, once);

            const QByteArray middle =
                CCommonFunction::GetMidByteArray(QStringLiteral("("), QStringLiteral(")"), input);
            QVERIFY(!middle.contains(')') && input.contains(middle));

            const QString text = QString::fromUtf8(input);
            try {
                const bool sameSet = CCommonFunction::IsThisVerSetInOtherVerSet(text, text);
                const bool isBlank =
                    QString(text).remove(QRegularExpression(QStringLiteral("[,;|\\s]"))).isEmpty();
                QCOMPARE(sameSet, !isBlank);
                ++sets;
            } catch (const Exception &e) {
                QVERIFY(!e.cause().isEmpty());
            }
        }
        QVERIFY(sets > 10);
    }
};

QTEST_GUILESS_MAIN(tst_CCommonFunction)
#include "tst_CCommonFunction.moc"
