#pragma once

#include <QNetworkCookieJar>

#include "base/RivetCoreExport.h"

/// A cookie jar that lets others look at all of its cookies. In memory only; thread and owner as
/// for any QNetworkCookieJar.
class RIVETCORE_EXPORT QNetworkCookieJarEx : public QNetworkCookieJar
{
    Q_OBJECT
public:
    explicit QNetworkCookieJarEx(QObject *parent = nullptr);

    using QNetworkCookieJar::allCookies;
    using QNetworkCookieJar::setAllCookies;
};
