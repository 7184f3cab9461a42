#pragma once

#include <QString>
#include <QVector>

/// A set of dotted version numbers, read from text such as "1.7.10;1.8-1.12.2".
///
/// The text is a list split at ",", ";" or "|" of single versions and of ranges "low-high" with
/// both ends included. Missing parts of a number count as 0, so "1.8" and "1.8.0" are the same.
class VersionSet
{
public:
    /// Blank members are passed over.
    /// @throws Exception on a member that is neither a version nor a range from low to high.
    explicit VersionSet(const QString &text);

    /// True if each member of this set lies in one member of @p other; an empty set lies in
    /// nothing.
    bool isWithin(const VersionSet &other) const;

private:
    /// The parts of a dotted number, most significant first, without trailing zeros.
    using Version = QVector<quint64>;
    struct Range
    {
        Version low, high;
    };

    static Version readVersion(const QString &text, const QString &member);
    static Range readRange(const QString &member);
    static bool isBelow(const Version &a, const Version &b);

    QVector<Range> m_ranges;
};
