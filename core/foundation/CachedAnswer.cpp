#include "core/foundation/CachedAnswer.h"

#include <optional>

#include <QJsonDocument>
#include <QNetworkReply>

#include "core/foundation/BinaryJson.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace CachedAnswer {

namespace {

void keep(const Kind &kind, const QByteArray &body, const QJsonObject &answer)
{
    const bool isKept = kind.cacheForm == Form::BinaryJson
                            ? BinaryJson::writeFile(kind.cacheFile, answer)
                            : FS::writeFile(kind.cacheFile, body);
    Q_UNUSED(isKept) // the next good answer is kept again
}

std::optional<QJsonObject> objectIn(const QByteArray &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isObject() ? std::optional<QJsonObject>(document.object()) : std::nullopt;
}

std::optional<QJsonObject> keptAnswer(const Kind &kind)
{
    if (kind.cacheForm == Form::BinaryJson)
        return BinaryJson::readFile(kind.cacheFile);
    return objectIn(FS::readFile(kind.cacheFile).value_or(QByteArray()));
}

bool takeBody(const Kind &kind, const QByteArray &body, const Parser &parse)
{
    const std::optional<QJsonObject> answer = objectIn(body);
    const Verdict verdict = answer ? parse(*answer) : Verdict::Refused;
    if (verdict == Verdict::Refused)
        Log::critical(kind.unreadableLine % QString::fromUtf8(body));
    if (verdict == Verdict::Good)
        keep(kind, body, *answer);
    return verdict != Verdict::Refused;
}

} // namespace

QByteArray filteredBody(QNetworkReply &reply)
{
    QByteArray body = reply.readAll();
    CCommonFunction::FilterJsonData(body);
    return body;
}

bool take(QNetworkReply &reply, const Kind &kind, const Parser &parse)
{
    if (reply.error() == QNetworkReply::NoError)
        return takeBody(kind, filteredBody(reply), parse);
    Log::critical(kind.unreachableLine % QString::number(reply.error()));
    const std::optional<QJsonObject> answer = keptAnswer(kind);
    return answer && parse(*answer) != Verdict::Refused;
}

} // namespace CachedAnswer
