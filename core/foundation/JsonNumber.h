#pragma once

#include <QJsonValue>

/// Numbers of the service, which sends some of them as decimal strings. Any thread.
namespace JsonNumber {

/// An id or a type: a decimal string or a whole number; 0 if @p value is neither or does not fit.
quint32 toUInt(const QJsonValue &value);

/// The whole part of a number that arrives as a double; 0 if it is negative or does not fit.
quint64 wholePart(double number);

/// True for the number 0 and for the string "0", which is how a service says success.
bool isZero(const QJsonValue &value);

} // namespace JsonNumber
