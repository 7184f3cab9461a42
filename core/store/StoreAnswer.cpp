#include "core/store/StoreAnswer.h"

#include <QJsonDocument>
#include <QStringBuilder>

#include "core/foundation/ServiceAnswer.h"
#include "support/coresupport/FilePersistent.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace StoreAnswer {

std::optional<QJsonArray> listIn(const QByteArray &data, const QString &what)
{
    const QJsonObject answer = QJsonDocument::fromJson(data).object();
    if (ServiceAnswer::code(answer) != 0) {
        Log::warning(QStringLiteral("code is 0 on parse store list!"));
        return std::nullopt;
    }
    return Json::requireArray(answer[QLatin1String("data")], what);
}

bool takeInto(FilePersistent &list, QNetworkReply &reply,
              const std::function<bool(const QByteArray &)> &parse)
{
    const std::optional<QByteArray> body = ServiceAnswer::bodyOf(reply);
    if (body && parse(*body)) {
        const bool isKept = list.Save(*body);
        Q_UNUSED(isKept) // the next good answer is kept again
        return true;
    }
    if (body)
        Log::warning(QStringLiteral("parse store list info failed"));
    list.Load();
    return false;
}

bool takeGranted(const QJsonObject &answer, const std::function<void()> &apply)
{
    const auto reader = [&] {
        if (ServiceAnswer::code(answer) == 0) {
            apply();
            return true;
        }
        Log::warning(QLatin1String("buy failed! error : ") %
                     Json::requireString(answer[QLatin1String("msg")], QStringLiteral("errMsg")));
        return false;
    };
    return ServiceAnswer::read({QLatin1String("parse buy info failed, error: "),
                                QLatin1String("throw unknown exception on parse buy info!")},
                               reader);
}

} // namespace StoreAnswer
