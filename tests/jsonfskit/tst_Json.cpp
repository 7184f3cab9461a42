#include <QtTest>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"

namespace {

const QString name = QStringLiteral("the thing");

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

    void defaultsStandIn()
    {
        const QString other = QStringLiteral("other");
        QCOMPARE(Json::ensureString(valueOf("\"\""), other, name), QString());
        QCOMPARE(Json::ensureString(valueOf("1"), other, name), other);
        QCOMPARE(Json::ensureString(QJsonValue::Undefined, other, name), other);
        QCOMPARE(Json::ensureInteger(valueOf("0"), 7, name), 0);
        QCOMPARE(Json::ensureInteger(valueOf("1.5"), 7, name), 7);
    }

    void documents()
    {
        const QPair<const char *, const char *> rows[] = {
            {"{}", "document object"},
            {"[]", "document"},
            {"{\"a\":", ""},
            {"<html>", ""},
            {"", ""},
            {"{} {}", ""},
        };
        for (const auto &row : rows) {
            const QByteArray accepted =
                accepts("document", [&] { Json::requireDocument(row.first, name); }) +
                accepts(" object",
                        [&] { Json::requireObject(QJsonDocument::fromJson(row.first), name); });
            QVERIFY2(accepted == row.second, row.first);
        }
    }
};

QTEST_GUILESS_MAIN(tst_Json)
#include "tst_Json.moc"
