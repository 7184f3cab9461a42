#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "bench/Result.h"
#include "core/foundation/FSH.h"
#include "core/servers/MaskWordHelper.h"
#include "support/jsonfskit/FS.h"

namespace {

QString randomText(QRandomGenerator &random, int size, const QString &alphabet)
{
    QString text;
    while (text.size() < size)
        text += alphabet[random.bounded(alphabet.size())];
    return text;
}

QStringList wordsOf(QRandomGenerator &random, int count, const QString &alphabet, int shortest)
{
    QStringList words;
    while (words.size() < count)
        words += randomText(random, random.bounded(shortest, shortest + 10), alphabet);
    return words;
}

/// What the words have to do, one after another.
QString maskedInTurn(QString text, const QStringList &words)
{
    for (const QString &word : words)
        text.replace(word, QString(word.size(), QLatin1Char('*')));
    return text;
}

/// False if the result is not that of the words in turn.
bool run(const char *name, const QStringList &words, const QString &text)
{
    const QByteArray list = words.join(QStringLiteral("\r\n")).toUtf8();
    if (!FS::writeFile(FSH::localAppDataPath() % QLatin1String("/FilterSt.ini"), list))
        return false;
    const RivetCoreAtExitManagerUtil core;
    QElapsedTimer timer;
    timer.start();
    const MaskWordHelper *helper = MaskWordHelper::GetInstance();
    const double loadMs = double(timer.nsecsElapsed()) / 1e6;
    timer.start();
    const QString masked = helper->stringMask(text);
    const double maskMs = double(timer.nsecsElapsed()) / 1e6;
    timer.start();
    const bool isRight = masked == maskedInTurn(text, words);
    const Rival inTurn{"word by word", double(timer.nsecsElapsed()) / 1e6};
    printResult(QLatin1String(name), maskMs, "ms", "< 20 ms", inTurn);
    printResult(QStringLiteral("reading the list"), loadMs, "ms");
    if (!isRight)
        std::fprintf(stderr, "%s: not as word by word\n", name);
    return isRight;
}

} // namespace

// How long masking takes: rivet-bench-mask [words] [characters]
int main(int argc, char **argv)
{
    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", folder.path().toUtf8());
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QCoreApplication app(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 20'000;
    const int size = argc > 2 ? std::atoi(argv[2]) : 10'000;
    QRandomGenerator random(7);

    const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz ");
    const QString text = randomText(random, size, letters);
    QStringList pieces, nested;
    while (pieces.size() < count)
        pieces += text.mid(random.bounded(size - 20), random.bounded(4, 20));
    while (nested.size() < count)
        nested += text.mid(nested.size() / 200 * 20, nested.size() % 200 + 1);
    const QStringList few = wordsOf(random, count, QStringLiteral("ab*"), 4);
    bool isRight = run("words of letters", wordsOf(random, count, letters, 3), text);
    isRight = run("pieces of the text", pieces, text) && isRight;
    isRight = run("words inside words", nested, text) && isRight;
    isRight =
        run("two letters and asterisks", few, randomText(random, size, few[0] + few[1])) && isRight;
    isRight = run("one letter", wordsOf(random, count, QStringLiteral("a"), 1),
                  QString(size, QLatin1Char('a'))) &&
              isRight;
    return isRight ? EXIT_SUCCESS : EXIT_FAILURE;
}
