#include "service/Signature.h"

#include <QCryptographicHash>
#include <QDateTime>

void Signature::check(const Call &call)
{
    const QString signedText = QLatin1String("Q7K3XeLpmmTzb5") % call.text(QStringLiteral("bid")) %
                               call.text(QStringLiteral("rand")) %
                               call.text(QStringLiteral("time"));
    const QByteArray expected =
        QCryptographicHash::hash(signedText.toUtf8(), QCryptographicHash::Sha1).toHex();
    if (call.text(QStringLiteral("sign")).toUtf8() != expected)
        throw Refusal{Refusal::WrongSignature, QStringLiteral("wrong signature")};
    constexpr qint64 toleranceSeconds = 600;
    const qint64 age =
        QDateTime::currentSecsSinceEpoch() - qint64(call.number(QStringLiteral("time")));
    if (qAbs(age) > toleranceSeconds)
        throw Refusal{Refusal::WrongSignature, QStringLiteral("the request is too old")};
}
