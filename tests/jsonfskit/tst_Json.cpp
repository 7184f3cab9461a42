#include <QtTest>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"

namespace {

const QString name = "the thing";

/// @p type if @p read accepts; empty if it throws an Exception that names what was read.
template <typename Read>
QByteArray accepts(const char *type, Read read)
{
    try {
        read();
        return type;
    } catch (const Exception &e) {
        return e.cause().contains(name) ? "" : "a cause without the name";
    }
}

} // namespace

class tst_Json : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void typesAreStrict()
    {
        const QByteArray rows = "{\"a\":1}=object [1]=array \"3\"=string -3.0=integer "
                                "2147483647=integer -2147483648=integer 2147483648= -2147483649= "
                                "1e300= 3.5= true= null= =";
        for (const QByteArray &row : rows.split(' ')) {
            const QByteArray json = row.left(row.indexOf('='));
            const QJsonValue value = QJsonDocument::fromJson("[" + json + "]").array().at(0);
            const QByteArray accepted =
                accepts("object", [&] { Json::requireObject(value, name); }) +
                accepts("array", [&] { Json::requireArray(value, name); }) +
                accepts("string", [&] { Json::requireString(value, name); }) +
                accepts("integer", [&] { Json::requireInteger(value, name); });
            QCOMPARE(json + '=' + accepted, row);
            const bool isNumber = accepted == "integer", isText = accepted == "string";
            QCOMPARE(Json::ensureInteger(value, 7, name), isNumber ? value.toInt() : 7);
            QCOMPARE(Json::ensureString(value, name, name), isText ? value.toString() : name);
        }
    }

    void documents()
    {
        QVERIFY(Json::requireDocument("[]", name).isArray());
        for (const char *broken : {"{\"a\":", "<html>", "", "{} {}"})
            QVERIFY_EXCEPTION_THROWN(Json::requireDocument(broken, name), Exception);
        QVERIFY_EXCEPTION_THROWN(Json::requireObject(QJsonDocument(QJsonArray()), name), Exception);
    }
};

QTEST_GUILESS_MAIN(tst_Json)
#include "tst_Json.moc"
