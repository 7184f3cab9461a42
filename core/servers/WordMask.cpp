#include "core/servers/WordMask.h"

#include <algorithm>

#include <QSet>

namespace {

constexpr QChar mask = QLatin1Char('*');

QStringView longestPartWithoutMask(QStringView text)
{
    QStringView longest;
    for (auto begin = text.begin(); begin != text.end();) {
        const auto end = std::find(begin, text.end(), mask);
        if (end - begin > longest.size())
            longest = QStringView(begin, end);
        begin = std::find_if(end, text.end(), [](QChar c) { return c != mask; });
    }
    return longest;
}

bool isBelow(QStringView a, QStringView b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

} // namespace

WordMask::WordMask(const QStringList &words)
{
    QSet<QString> known;
    for (const QString &word : words) {
        const QStringView key = longestPartWithoutMask(word);
        // Masking a word of asterisks changes nothing, nor does a word the second time, unless the
        // asterisks that it left are part of it.
        if (key.isEmpty() || (key.size() == word.size() && known.contains(word)))
            continue;
        known += word;
        m_words.push_back({word, key, 0});
        m_keys.push_back(key);
    }
    std::sort(m_keys.begin(), m_keys.end(), isBelow);
    m_keys.erase(std::unique(m_keys.begin(), m_keys.end()), m_keys.end());
    for (Word &word : m_words) {
        const auto key = std::lower_bound(m_keys.begin(), m_keys.end(), word.key, isBelow);
        word.keyIndex = static_cast<size_t>(key - m_keys.begin());
    }
    for (size_t key = 0; key < m_keys.size(); ++key) {
        Range &range = m_rangeOfFirst[m_keys[key].front()];
        range = {range.end == 0 ? key : range.begin, key + 1};
    }
}

QString WordMask::masked(QString text) const
{
    const auto standsAt = [&text](int position, QStringView part) {
        return QStringView(text).mid(position).startsWith(part);
    };
    std::vector<Positions> positions = positionsOfKeys(text);
    for (const Word &word : m_words) {
        Positions &keyPositions = positions[word.keyIndex];
        const int keyOffset = static_cast<int>(word.key.begin() - word.text.cbegin());
        int next = 0; // what one word masks does not overlap
        size_t kept = 0;
        for (const int keyPosition : keyPositions) {
            if (!standsAt(keyPosition, word.key))
                continue; // masked, for all other words, too
            keyPositions[kept++] = keyPosition;
            const int position = keyPosition - keyOffset;
            if (position < next || !standsAt(position, word.text))
                continue;
            next = position + word.text.size();
            std::fill(text.begin() + position, text.begin() + next, mask);
        }
        keyPositions.resize(kept);
    }
    return text;
}

std::vector<WordMask::Positions> WordMask::positionsOfKeys(QStringView text) const
{
    std::vector<Positions> positions(m_keys.size());
    for (int position = 0; position < text.size(); ++position) {
        visitKeysAtStartOf(text.mid(position),
                           [&](size_t key) { positions[key].push_back(position); });
    }
    return positions;
}

/// Narrows the range of keys that agree with @p text by one character after the other.
template <typename Visitor>
void WordMask::visitKeysAtStartOf(QStringView text, const Visitor &visit) const
{
    const Range range = m_rangeOfFirst.value(text.front());
    auto first = m_keys.begin() + range.begin, last = m_keys.begin() + range.end;
    for (int depth = 1; last - first > 1; ++depth) {
        // The others of the range are longer.
        if (first->size() == depth)
            visit(static_cast<size_t>(first++ - m_keys.begin()));
        if (depth == text.size())
            return;
        const QChar c = text[depth];
        first = std::lower_bound(first, last, c,
                                 [depth](QStringView key, QChar x) { return key[depth] < x; });
        last = std::upper_bound(first, last, c,
                                [depth](QChar x, QStringView key) { return x < key[depth]; });
    }
    if (last - first == 1 && text.startsWith(*first))
        visit(static_cast<size_t>(first - m_keys.begin()));
}
