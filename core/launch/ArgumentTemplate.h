#pragma once

#include <optional>

#include <QByteArray>
#include <QStringList>
#include <QVector>

/// The argument template that a game client's deployment brings along: one argument on each line,
/// blanks and all, with placeholders such as "%UserName%". It is named like a batch file, but no
/// shell runs it.
namespace ArgumentTemplate {

struct Replacement
{
    QByteArray placeholder;
    QByteArray value;
};

/// The arguments of the file @p path. The replacements are made one after another, on bytes; the
/// line is then taken as UTF-8. An empty line is an empty argument. Nothing if the file can't be
/// read.
[[nodiscard]] std::optional<QStringList> read(const QString &path,
                                              const QVector<Replacement> &replacements);

} // namespace ArgumentTemplate
