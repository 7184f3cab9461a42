#include <QRandomGenerator>
#include <QtTest>

#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/Exception.h"

namespace {

/// "yes", "no" or "throws".
QByteArray isIn(const QString &these, const QString &others)
{
    try {
        return CCommonFunction::IsThisVerSetInOtherVerSet(these, others) ? "yes" : "no";
    } catch (const Exception &e) {
        return e.cause().isEmpty() ? "throws without a cause" : "throws";
    }
}

QByteArray middleOf(const QByteArray &data)
{
    return CCommonFunction::GetMidByteArray("(", ")", data);
}

/// Bytes that lean to what the readers look for.
QByteArray randomBytes(QRandomGenerator &random)
{
    static const auto liked = QByteArrayLiteral("\xEF\xBB\xBF\0\t\n {}()[]\"-.,;|0129");
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
    void filtersReplies()
    {
        const QPair<QByteArray, QByteArray> rows[] = {
            {"{\"a\":1}", "{\"a\":1}"},
            {"\xEF\xBB\xBF{\"a\":1}", "{\"a\":1}"},
            {"\r\n\xEF\xBB\xBF {}\t\n", "{}"},
            {QByteArray("{\0}\0", 4), "{}"},
            {"{\"a\":\"x\ny\x01\"}", "{\"a\":\"x y \"}"},
            {"({\"a\":1})", "({\"a\":1})"},
            {"\"\xEF\xBB\xBF\"", "\"\xEF\xBB\xBF\""},
            {QByteArray("\xEF\xBB\xBF \0 \n", 7), ""},
        };
        for (const auto &row : rows) {
            QByteArray reply = row.first;
            QCOMPARE(CCommonFunction::FilterJsonData(reply), !row.second.isEmpty());
            QCOMPARE(reply, row.second);
        }
    }

    void findsTheMiddle()
    {
        QCOMPARE(middleOf("f({1})"), QByteArray("{1}"));
        QCOMPARE(middleOf(")(a(b)c)"), QByteArray("a(b"));
        QCOMPARE(middleOf("a)") + middleOf(")(a"), QByteArray());
    }

    void comparesVersionSets()
    {
        const QString rows =
            "1.7.10 in 1.7.10: yes\n1.7.10 in 1.7.2: no\n1.7.10 in 1.7.2-1.8: yes\n"
            "1.8.0 in 1.8: yes\n1.10 in 1.2-1.9: no\n1.8-1.9 in 1.7-1.10: yes\n"
            "1.8-1.11 in 1.7-1.10: no\n1.8-1.12 in 1.7-1.10,1.10-1.13: no\n"
            "1.8;1.12 in 1.7-1.10|1.12: yes\n1.8;1.11 in 1.7-1.10|1.12: no\n"
            " 1.8 , 1.9 ; in 1.8 - 1.9: yes\n in 1.8: no\n in : no\n1.8 in : no\n"
            "1.x in 1: throws\n1 in 1,1..2: throws\n1. in 1: throws\n-1.8 in 1: throws\n"
            "1 in 1.8-: throws\n1-2-3 in 1: throws\n1 in 1.9-1.8: throws\nv1 in 1: throws\n"
            "+1 in 1: throws\n\u0661 in 1: throws\n18446744073709551616 in 1: throws";
        for (const QString &row : rows.split('\n')) {
            const QRegularExpression form("^(.*) in (.*): (.*)$");
            const QStringList parts = form.match(row).capturedTexts();
            QCOMPARE(row + isIn(parts[1], parts[2]), row + parts[3]);
        }
    }

    void survivesAnyBytes()
    {
        QRandomGenerator random(20260722);
        int sets = 0;
        for (int i = 0; i < 5000; ++i) {
            const QByteArray input = randomBytes(random);
            QByteArray once = input, twice;
            const bool isLeft = CCommonFunction::FilterJsonData(once);
            twice = once;
            QCOMPARE(CCommonFunction::FilterJsonData(twice), isLeft);
            QCOMPARE(twice, once);
            QVERIFY(!middleOf(input).contains(')') && input.contains(middleOf(input)));

            const QString text = QString::fromUtf8(input);
            const QRegularExpression separators("[,;|\\s]");
            const QByteArray answer = isIn(text, text);
            QVERIFY(answer == "throws" ||
                    (answer == "no") == QString(text).remove(separators).isEmpty());
            sets += answer == "yes";
        }
        QVERIFY(sets > 10);
    }
};

QTEST_GUILESS_MAIN(tst_CCommonFunction)
#include "tst_CCommonFunction.moc"
