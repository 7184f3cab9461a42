#include "core/foundation/QNetworkCookieJarEx.h"

QNetworkCookieJarEx::QNetworkCookieJarEx(QObject *parent) : QNetworkCookieJar(parent) {}
