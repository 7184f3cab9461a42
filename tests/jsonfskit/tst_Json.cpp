#include <QtTest>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"

namespace {

QJsonValue valueOf(const QByteArray &json)
{
    return QJsonDocument::fromJson("[" + json + "]").array().at(0);
}

/// "yes" if @p read accepts, "no" if it throws an Exception that names what was read.
template <typename Read>
QByteArray verdict(Read read)
{
    const QString name = QStringLiteral("the thing");
    try {
        read(name);
        return "yes";
    } catch (const Exception &e) {
        return e.cause().contains(name) ? "no" : "cause without the name";
    }
}

} // namespace

class tst_Json : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void typesAreStrict_data()
    {
        QTest::addColumn<QByteArray>("verdicts");
        QTest::newRow("{\"a\":1}") << QByteArray("object");
        QTest::newRow("[1]") << QByteArray("array");
        QTest::newRow("\"3\"") << QByteArray("string");
        QTest::newRow("-3.0") << QByteArray("integer");
        QTest::newRow("2147483647") << QByteArray("integer");
        QTest::newRow("-2147483648") << QByteArray("integer");
        QTest::newRow("2147483648") << QByteArray();
        QTest::newRow("1e300") << QByteArray();
        QTest::newRow("3.5") << QByteArray();
        QTest::newRow("true") << QByteArray();
        QTest::newRow("null") << QByteArray();
        QTest::newRow("") << QByteArray();
    }
    void typesAreStrict()
    {
        QFETCH(QByteArray, verdicts);
        const QJsonValue value = valueOf(QTest::currentDataTag());
        const auto expected = [&verdicts](const char *type) {
            return QByteArray(verdicts == type ? "yes" : "no");
        };
        QCOMPARE(verdict([&](const QString &w) { Json::requireObject(value, w); }),
                 expected("object"));
        QCOMPARE(verdict([&](const QString &w) { Json::requireArray(value, w); }),
                 expected("array"));
        QCOMPARE(verdict([&](const QString &w) { Json::requireString(value, w); }),
                 expected("string"));
        QCOMPARE(verdict([&](const QString &w) { Json::requireInteger(value, w); }),
                 expected("integer"));
    }

    void defaultsStandIn()
    {
        const QString name = QStringLiteral("name"), other = QStringLiteral("other");
        QCOMPARE(Json::ensureString(valueOf("\"x\""), other, name), QStringLiteral("x"));
        QCOMPARE(Json::ensureString(valueOf("\"\""), other, name), QString());
        QCOMPARE(Json::ensureString(valueOf("1"), other, name), other);
        QCOMPARE(Json::ensureString(QJsonValue::Undefined, other, name), other);
        QCOMPARE(Json::ensureInteger(valueOf("0"), 7, name), 0);
        QCOMPARE(Json::ensureInteger(valueOf("1.5"), 7, name), 7);
        QCOMPARE(Json::ensureInteger(valueOf("\"1\""), 7, name), 7);
    }

    void documents_data()
    {
        QTest::addColumn<bool>("isDocument");
        QTest::addColumn<bool>("isObject");
        QTest::newRow("{}") << true << true;
        QTest::newRow("[]") << true << false;
        QTest::newRow("{\"a\":") << false << false;
        QTest::newRow("<html>") << false << false;
        QTest::newRow("") << false << false;
        QTest::newRow("{} {}") << false << false;
    }
    void documents()
    {
        QFETCH(bool, isDocument);
        QFETCH(bool, isObject);
        const QByteArray text = QTest::currentDataTag();
        QCOMPARE(verdict([&](const QString &w) { Json::requireDocument(text, w); }),
                 QByteArray(isDocument ? "yes" : "no"));
        QCOMPARE(verdict([&](const QString &w) {
                     Json::requireObject(QJsonDocument::fromJson(text), w);
                 }),
                 QByteArray(isObject ? "yes" : "no"));
    }
};

QTEST_GUILESS_MAIN(tst_Json)
#include "tst_Json.moc"
