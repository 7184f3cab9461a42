#include "fuzz/Fuzz.h"

#include <algorithm>
#include <optional>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/foundation/FSH.h"
#include "core/launch/ArgumentTemplate.h"
#include "core/launch/GameOptions.h"
#include "core/servers/MaskWordHelper.h"
#include "core/servers/WordMask.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/FS.h"

namespace {

void filter(const QByteArray &input)
{
    QByteArray once = input;
    const bool isLeft = CCommonFunction::FilterJsonData(once);
    QByteArray twice = once;
    fuzz::require(CCommonFunction::FilterJsonData(twice) == isLeft && twice == once,
                  "what is filtered stays as it is");
    fuzz::require(std::all_of(once.begin(), once.end(), [](char c) { return uchar(c) >= 0x20; }),
                  "no control character is left");
    const QByteArray mid = CCommonFunction::GetMidByteArray("(", ")", input);
    fuzz::require(!mid.contains(')') && input.contains(mid), "the middle has no end in it");
}

void readTemplate(const QByteArray &input)
{
    fuzz::putFile("arguments", input);
    const auto arguments = ArgumentTemplate::read(fuzz::path("arguments"), {{"%a%", "name"}});
    const int lines = input.count('\n') + (input.isEmpty() || input.endsWith('\n') ? 0 : 1);
    fuzz::require(arguments && arguments->size() == lines, "each line is an argument");
    fuzz::require(!arguments->join('\n').contains("%a%"), "each placeholder is replaced");
}

void changeOptions(const QByteArray &input)
{
    for (const auto update : {GameOptions::updateOptions, GameOptions::updateShaderOptions}) {
        fuzz::putFile("options", input);
        fuzz::require(update(fuzz::path("options"), "pack.zip"), "options can be changed");
        const auto once = FS::readFile(fuzz::path("options"));
        fuzz::require(once && once->contains("pack.zip"), "the pack is named");
        if (input.startsWith("\xEF\xBB\xBF"))
            continue; // the change takes one away, and what stood behind it comes to the front
        fuzz::require(update(fuzz::path("options"), "pack.zip") &&
                          FS::readFile(fuzz::path("options")) == once,
                      "options that are right stay as they are");
    }
}

/// The first line is the text.
void maskWords(const QString &input)
{
    const QStringList words = input.split('\n').mid(1);
    QString text = input.section('\n', 0, 0), expected = text;
    for (const QString &word : words) {
        if (!word.isEmpty())
            expected.replace(word, QString(word.size(), '*'));
    }
    fuzz::require(WordMask(words).masked(text) == expected, "words are masked in turn");
}

/// The words that a process finds are written again at its end.
std::optional<QByteArray> writeWordsAgain(const QString &file)
{
    {
        const RivetCoreAtExitManagerUtil core;
        MaskWordHelper::GetInstance()->stringMask("a word");
    }
    return FS::readFile(file);
}

void keepWords(const QByteArray &input)
{
    const QString file = FSH::localAppDataPath() + "/FilterSt.ini";
    fuzz::require(FS::writeFile(file, input), "a list of words can be written");
    const auto once = writeWordsAgain(file);
    const auto twice = writeWordsAgain(file);
    fuzz::require(once && twice && twice->size() <= once->size(), "a list of words does not grow");
}

} // namespace

/// Texts that need not be well-formed: replies before they are parsed, lists of arguments, options
/// of the game, masked words.
void fuzz::takeInput(const QByteArray &input)
{
    filter(input);
    readTemplate(input);
    changeOptions(input);
    maskWords(QString::fromUtf8(input));
    keepWords(input);
}
