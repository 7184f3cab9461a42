#include "service/Exchange.h"

#include <QJsonDocument>
#include <QUrl>

Call Call::fromTarget(const QByteArray &target)
{
    const int mark = target.indexOf('?');
    Call call;
    const QByteArray path = mark < 0 ? target : target.left(mark);
    call.path = QString::fromUtf8(QByteArray::fromPercentEncoding(path));
    if (mark >= 0)
        call.query = QUrlQuery(QString::fromUtf8(target.mid(mark + 1)));
    return call;
}

QString Call::text(const QString &key) const
{
    const QString value = query.queryItemValue(key, QUrl::FullyDecoded);
    if (value.isEmpty())
        throw Refusal{Refusal::BadRequest, QStringLiteral("\"%1\" is missing").arg(key)};
    return value;
}

quint32 Call::number(const QString &key) const
{
    bool isNumber = false;
    const quint32 value = text(key).toUInt(&isNumber);
    if (!isNumber)
        throw Refusal{Refusal::BadRequest, QStringLiteral("\"%1\" is no number").arg(key)};
    return value;
}

Answer Answer::json(const QJsonObject &object, int status)
{
    Answer answer;
    answer.status = status;
    answer.body = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return answer;
}
