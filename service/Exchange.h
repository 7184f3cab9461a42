#pragma once

#include <memory>

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrlQuery>

/// The service says no: becomes an answer with the keys "code" and "msg". Thrown by value from a
/// route, never leaves the dispatcher.
struct Refusal
{
    /// Apart from the codes that mean something to a reader (-1, 0, 1, 2, 3 and 5).
    enum Code {
        BadRequest = 11,
        UnknownAccount,
        WrongPassword,
        WrongSignature,
        WrongVerification,
        NameTaken,
        NotEnoughMoney,
        UnknownProp,
        NotOwned,
        UnknownResource,
        BrokenData,
    };
    int code;
    QString message;
};

/// One request, as the routes see it.
struct Call
{
    QString path;
    QUrlQuery query;
    QHash<QByteArray, QByteArray> headers; ///< names in lower case

    /// Takes a request target apart. A "+" in the query stays one.
    static Call fromTarget(const QByteArray &target);

    /// A value of the query, decoded. Throws Refusal if it is missing or empty.
    QString text(const QString &key) const;
    /// The same for a whole number of 32 bits.
    quint32 number(const QString &key) const;
};

/// What the service says to a request: the body, or a part of a file.
struct Answer
{
    static Answer json(const QJsonObject &object, int status = 200);

    int status = 200;
    QByteArray contentType = QByteArrayLiteral("application/json; charset=utf-8");
    QByteArray body;
    QList<QPair<QByteArray, QByteArray>> headers;
    std::shared_ptr<QFile> file; ///< open; goes before the body
    qint64 offset = 0;           ///< of the first byte of the file that is sent
    qint64 lengthBytes = 0;      ///< how many of them
};
