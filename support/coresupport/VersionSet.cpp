#include "support/coresupport/VersionSet.h"

#include <algorithm>

#include <QStringList>

#include "support/jsonfskit/Exception.h"

VersionSet::VersionSet(const QString &text)
{
    QString list = text;
    list.replace(QLatin1Char(';'), QLatin1Char(',')).replace(QLatin1Char('|'), QLatin1Char(','));
    const QStringList members = list.split(QLatin1Char(','));
    for (const QString &member : members) {
        if (!member.trimmed().isEmpty())
            m_ranges.append(readRange(member.trimmed()));
    }
}

bool VersionSet::isWithin(const VersionSet &other) const
{
    const auto liesInOther = [&other](const Range &inner) {
        return std::any_of(other.m_ranges.begin(), other.m_ranges.end(), [&](const Range &outer) {
            return !isBelow(inner.low, outer.low) && !isBelow(outer.high, inner.high);
        });
    };
    return !m_ranges.isEmpty() && std::all_of(m_ranges.begin(), m_ranges.end(), liesInOther);
}

VersionSet::Version VersionSet::readVersion(const QString &text, const QString &member)
{
    Version version;
    const QStringList parts = text.trimmed().split(QLatin1Char('.'));
    for (const QString &part : parts) {
        const bool isNumber = !part.isEmpty() && std::all_of(part.begin(), part.end(), [](QChar c) {
            return c >= QLatin1Char('0') && c <= QLatin1Char('9');
        });
        bool fits = false;
        version.append(part.toULongLong(&fits));
        if (!isNumber || !fits)
            throw Exception(QLatin1String("no version or range of versions: ") % member);
    }
    while (!version.isEmpty() && version.last() == 0)
        version.removeLast();
    return version;
}

VersionSet::Range VersionSet::readRange(const QString &member)
{
    const QStringList ends = member.split(QLatin1Char('-'));
    Range range{readVersion(ends.first(), member), readVersion(ends.last(), member)};
    if (ends.size() > 2 || isBelow(range.high, range.low))
        throw Exception(QLatin1String("no range of versions from low to high: ") % member);
    return range;
}

bool VersionSet::isBelow(const Version &a, const Version &b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}
