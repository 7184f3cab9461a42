#include "fuzz/Fuzz.h"

#include <optional>

#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/Exception.h"

namespace {

/// Nothing if one of the sets is malformed.
std::optional<bool> isWithin(const QString &these, const QString &others)
{
    try {
        return CCommonFunction::IsThisVerSetInOtherVerSet(these, others);
    } catch (const Exception &) {
        return std::nullopt;
    }
}

} // namespace

/// Sets of versions: three lines.
void fuzz::takeInput(const QByteArray &input)
{
    const QStringList lines = QString::fromUtf8(input).split('\n');
    const QString a = lines.value(0), b = lines.value(1), c = lines.value(2);
    const auto ab = isWithin(a, b), bc = isWithin(b, c), aa = isWithin(a, a);
    if (!ab || !bc)
        return;
    require(aa.has_value(), "a set is well-formed wherever it stands");
    require(*aa || !isWithin(a, "0-99999").value_or(false), "a set lies in itself");
    require(!*ab || isWithin(a, b + ',' + c) == true, "a set lies in a larger one");
    require(!(*ab && *bc) || isWithin(a, c) == true,
            "what lies in a set lies in what that lies in");
}
