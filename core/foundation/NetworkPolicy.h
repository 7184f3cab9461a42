#pragma once

class QNetworkAccessManager;

/// What every network manager of the core does alike.
namespace NetworkPolicy {

/// Makes @p manager follow redirects that do not lower the security of the scheme, and take every
/// certificate: errors of it are logged and ignored.
void apply(QNetworkAccessManager &manager);

} // namespace NetworkPolicy
