#pragma once

#include <vector>

#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>

/// Masks words in texts, as if each word in turn were looked for in the whole text and replaced by
/// asterisks wherever it stands. What earlier words have masked, later ones see.
///
/// It finds all words in one pass over the text. What can be found that way is the part of a word
/// that masking never makes, its longest part without an asterisk: where that does not stand in the
/// text as it was given, the word never does. The few words that are left are then taken in turn.
/// Any thread; it does not change once it is made.
class WordMask
{
public:
    WordMask() = default;
    explicit WordMask(const QStringList &words);

    /// @p text with the words masked; as long as it was.
    QString masked(QString text) const;

private:
    using Positions = std::vector<int>;

    /// Where each key stands in @p text, from left to right.
    std::vector<Positions> positionsOfKeys(QStringView text) const;
    template <typename Visitor>
    void visitKeysAtStartOf(QStringView text, const Visitor &visit) const;

    struct Word
    {
        QString text;
        QStringView key; ///< a part of the text
        size_t keyIndex;
    };
    struct Range
    {
        size_t begin = 0, end = 0; ///< of the keys
    };
    std::vector<Word> m_words;       ///< in the order of the list
    std::vector<QStringView> m_keys; ///< sorted by their code units, each once
    QHash<QChar, Range> m_rangeOfFirst;
};
