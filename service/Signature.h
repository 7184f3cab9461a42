#pragma once

#include "service/Exchange.h"

namespace Signature {

/// Checks "bid", "rand", "time" and "sign" of a signed request: the signature is the SHA-1, in
/// lower-case hex, of the shared key and the three values in this order, and the time is that of
/// now, give or take ten minutes. Throws Refusal.
void check(const Call &call);

} // namespace Signature
