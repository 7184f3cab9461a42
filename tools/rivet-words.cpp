#include <cstdio>
#include <cstdlib>
#include <optional>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include "support/coresupport/QTDes.h"
#include "support/jsonfskit/FS.h"

namespace {

int fail(const QString &problem)
{
    std::fprintf(stderr, "rivet-words: %s\n", qUtf8Printable(problem));
    return EXIT_FAILURE;
}

/// The lines of @p text that are not empty, whatever ends them; nothing if it is not UTF-8.
std::optional<QByteArrayList> wordsIn(QByteArray text)
{
    static const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");
    if (text.startsWith(byteOrderMark))
        text.remove(0, byteOrderMark.size());
    if (QString::fromUtf8(text).toUtf8() != text)
        return std::nullopt;
    QByteArrayList words;
    const QByteArrayList lines = text.replace('\r', '\n').split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty())
            words += line;
    }
    return words;
}

QByteArray plainFormOf(const QByteArrayList &words)
{
    QByteArray plain;
    for (const QByteArray &word : words)
        plain += word + QByteArrayLiteral("\r\n");
    return plain;
}

} // namespace

// Enciphers a list of words to be masked, for an installation.
int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Enciphers a list of words to be masked. An installation has it as ComConfig/striCtn.ini "
        "beside the host's program."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("list"),
                                 QStringLiteral("Text in UTF-8, a word on each line."));
    parser.addPositionalArgument(QStringLiteral("striCtn.ini"),
                                 QStringLiteral("The file to write."));
    parser.process(app);
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2)
        parser.showHelp(EXIT_FAILURE);

    const std::optional<QByteArray> list = FS::readFile(files[0]);
    if (!list)
        return fail(QLatin1String("can't read ") % files[0]);
    const std::optional<QByteArrayList> words = wordsIn(*list);
    if (!words)
        return fail(QLatin1String("no text in UTF-8: ") % files[0]);
    if (words->isEmpty())
        return fail(QLatin1String("no words in ") % files[0]);
    QByteArray enciphered;
    if (!QTDes::EncryptByteArray(plainFormOf(*words), enciphered))
        return fail(QStringLiteral("the cipher failed"));
    if (!FS::writeFile(files[1], enciphered))
        return fail(QLatin1String("can't write ") % files[1]);
    std::printf("%d words\n", words->size());
    return EXIT_SUCCESS;
}
