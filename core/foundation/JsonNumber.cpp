#include "core/foundation/JsonNumber.h"

#include <cmath>
#include <limits>

#include "support/jsonfskit/Json.h"

namespace JsonNumber {

quint32 toUInt(const QJsonValue &value)
{
    if (value.isString())
        return value.toString().toUInt();
    const double number = value.toDouble(0);
    const bool fits = number >= 0 && number <= double(std::numeric_limits<quint32>::max());
    return fits && std::trunc(number) == number ? static_cast<quint32>(number) : 0;
}

quint64 wholePart(double number)
{
    constexpr double limit = 18446744073709551616.0; // 2^64
    return number >= 0 && number < limit ? static_cast<quint64>(number) : 0;
}

bool isZero(const QJsonValue &value)
{
    if (value.isString())
        return value.toString() == QLatin1String("0");
    return Json::ensureInteger(value, 1, QStringLiteral("code")) == 0;
}

} // namespace JsonNumber
