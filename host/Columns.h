#pragma once

#include <QString>

/// Texts by the columns that they take on a terminal, where characters of East Asian scripts take
/// two.
namespace Columns {

int of(const QString &text);
/// @p text with blanks behind it, up to @p columns.
QString filledUp(const QString &text, int columns);
/// The beginning of @p text that fits into @p columns.
QString cutOff(const QString &text, int columns);
/// @p text without the blanks at its end.
QString withoutEnd(QString text);
/// @p text in lines of at most @p columns, the later ones behind @p indent blanks; what can't be
/// broken up stays longer.
QString wrapped(const QString &text, int columns, int indent);

} // namespace Columns
