#include "support/coresupport/ErrorReply.h"

ErrorReply::ErrorReply(NetworkError error, const QString &text, const QNetworkReply *original)
{
    if (original) {
        setRequest(original->request());
        setUrl(original->url());
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute,
                     original->attribute(QNetworkRequest::HttpStatusCodeAttribute));
        for (const RawHeaderPair &header : original->rawHeaderPairs())
            setRawHeader(header.first, header.second);
    }
    setOperation(QNetworkAccessManager::GetOperation);
    setError(error, text);
    open(QIODevice::ReadOnly);
    setFinished(true);
}

qint64 ErrorReply::readData(char *, qint64)
{
    return -1;
}
