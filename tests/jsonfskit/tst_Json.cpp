#include <QtTest>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"

namespace {

const QString name = "the thing";

QJsonValue valueOf(const char *json)
{
    return QJsonDocument::fromJson(QByteArray("[") + json + "]").array().at(0);
}

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
        const QPair<const char *, const char *> rows[] = {
            {"{\"a\":1}", "object"},
            {"[1]", "array"},
            {"\"3\"", "string"},
            {"-3.0", "integer"},
            {"2147483647", "integer"},
            {"-2147483648", "integer"},
            {"2147483648", ""},
            {"1e300", ""},
            {"3.5", ""},
            {"true", ""},
            {"null", ""},
            {"", ""},
        };
        for (const auto &row : rows) {
            const QJsonValue value = valueOf(row.first);
            const QByteArray accepted =
                accepts("object", [&] { Json::requireObject(value, name); }) +
                accepts("array", [&] { Json::requireArray(value, name); }) +
                accepts("string", [&] { Json::requireString(value, name); }) +
                accepts("integer", [&] { Json::requireInteger(value, name); });
            QVERIFY2(accepted == row.second, row.first);
        }
    }

    void defaultsAndDocuments()
    {
        QCOMPARE(Json::ensureString(valueOf("\"\""), name, name), QString());
        QCOMPARE(Json::ensureString(valueOf("1"), name, name), name);
        QCOMPARE(Json::ensureInteger(valueOf("0"), 7, name), 0);
        QCOMPARE(Json::ensureInteger(valueOf("1.5"), 7, name), 7);

        QVERIFY(Json::requireDocument("[]", name).isArray());
        for (const char *broken : {"{\"a\":", "<html>", "", "{} {}"})
            QVERIFY_EXCEPTION_THROWN(Json::requireDocument(broken, name), Exception);
        QVERIFY_EXCEPTION_THROWN(Json::requireObject(QJsonDocument(QJsonArray()), name), Exception);
    }
};

QTEST_GUILESS_MAIN(tst_Json)
#include "tst_Json.moc"
