#include <QProcess>
#include <QRandomGenerator>

#include "core/servers/MaskWordHelper.h"
#include "core/servers/TipsHelper.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

namespace {

QString masked(const QString &text)
{
    return MaskWordHelper::GetInstance()->stringMask(text);
}

} // namespace

class tst_WordsAndTips : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsTheInstalledListOrItsCopy()
    {
        const QString installed = QCoreApplication::applicationDirPath() + "/ComConfig/striCtn.ini";
        const auto encipher = [&](const QByteArray &list) {
            QTemporaryFile file;
            return file.open() && file.write(list) == list.size() && file.flush() &&
                   QProcess::execute("rivet-words", {file.fileName(), installed}) == 0;
        };
        QVERIFY(!encipher("\xff") && !encipher("\n") && !QFile::exists(installed));
        QVERIFY(encipher("\ufeffab\n\r\n脏话\r\nlong enough for more blocks"));
        const QByteArray good = FS::readFile(installed).value();
        QByteArray garbled = good;
        garbled[20] = garbled[20] ^ 1;
        const QByteArray copy = "ab\r\n脏话\r\nlong enough for more blocks\r\n";
        // The installed file, the copy, the text "xabyab脏话" and the copy afterwards; the log.
        const QByteArray rows[][5] = {
            {good, "x\r\n", "x**y****", copy, ""},
            {"", "\r\nx\r\n脏", "*abyab*话", "\r\nx\r\n脏\r\n", "read mask word cache is empty"},
            {good.left(17), "x\r\n", "*abyab脏话", "x\r\n", "mask word file is damaged"},
            {garbled, "x\r\n", "*abyab脏话", "x\r\n", "mask word file is damaged"},
            {"none", "x\r\n", "*abyab脏话", "x\r\n", "open mask word file failed"},
            {"none", "", "xabyab脏话", "", "open mask word file failed"}};
        for (const auto &[data, before, expected, after, line] : rows) {
            CoreRun run;
            QVERIFY(data == "none" ? QFile::remove(installed) || !QFile::exists(installed)
                                   : FS::writeFile(installed, data));
            QVERIFY(FS::writeFile(run.file("FilterSt.ini"), before));
            LogCapture log;
            QCOMPARE(masked("xabyab脏话").toUtf8(), expected);
            QCOMPARE(log.lines().join('|'), line);
            run.restart();
            QCOMPARE(FS::readFile(run.file("FilterSt.ini")).value(), after);
        }
    }

    void masksAsIfEachWordWereReplacedInTurn()
    {
        QRandomGenerator random(7);
        const auto text = [&](int most) {
            QString letters;
            for (int left = random.bounded(1, most + 1); left > 0; --left)
                letters += "ab*"[random.bounded(3)];
            return letters;
        };
        CoreRun run;
        LogCapture log;
        for (int round = 0; round < 40; ++round) {
            QStringList words;
            while (words.size() < 12)
                words << text(5);
            QVERIFY(FS::writeFile(run.file("FilterSt.ini"), words.join("\r\n").toUtf8()));
            for (int texts = 0; texts < 200; ++texts) {
                const QString given = text(40);
                QString expected = given;
                for (const QString &word : qAsConst(words))
                    expected.replace(word, QString(word.size(), '*'));
                QVERIFY2(masked(given) == expected, qPrintable(words.join(' ') + ": " + given));
            }
            run.core.reset();
            QVERIFY(QFile::remove(run.file("FilterSt.ini")));
            run.restart();
        }
    }

    void givesEveryTip()
    {
        CoreRun run;
        QSet<QString> tips;
        for (int tries = 0; tries < 2000; ++tries)
            tips += TipsHelper::GetInstance()->getRandTips();
        QVERIFY(tips.size() == 8 &&
                tips.contains("Tips.the room is too much, try the intelligent filter"));
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_WordsAndTips)
#include "tst_WordsAndTips.moc"
