#pragma once

#include <QNetworkReply>

/// A finished reply without a body that shows an error: for what Qt has no reply of its own for.
class ErrorReply : public QNetworkReply
{
    Q_OBJECT
public:
    /// @p original gives request, status and headers; it may be null.
    ErrorReply(NetworkError error, const QString &text, const QNetworkReply *original);

    void abort() override {}

protected:
    qint64 readData(char *data, qint64 maxSize) override;
};
