#include <QProcess>
#include <QRandomGenerator>

#include "core/servers/MaskWordHelper.h"
#include "core/servers/TipsHelper.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

class tst_WordsAndTips : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsTheInstalledListOrItsCopy()
    {
        const QString installed = QCoreApplication::applicationDirPath() + "/ComConfig/striCtn.ini";
        const QString list = installed + ".txt";
        QVERIFY(FS::writeFile(list, "\ufeffab\n\r\n脏话\r\nlong enough for blocks"));
        QCOMPARE(QProcess::execute("rivet-words", {list, installed}), 0);
        const QByteArray good = FS::readFile(installed).value(), cut = good.left(17);
        const QByteArray garbled = QByteArray(good).replace(20, 1, "~");
        // The installed file, the copy, and what they mask; the copy afterwards.
        const QByteArray rows[][4] = {
            {good, "x\r\n", "x**y****", "ab\r\n脏话\r\nlong enough for blocks\r\n"},
            {"", "\r\nx\r\n脏", "*abyab*话", "\r\nx\r\n脏\r\n"},
            {cut, "x\r\n", "*abyab脏话", "x\r\n"},
            {garbled, "x\r\n", "*abyab脏话", "x\r\n"},
            {"none", "x\r\n", "*abyab脏话", "x\r\n"}};
        for (const auto &[data, before, masked, after] : rows) {
            CoreRun run;
            QVERIFY(data == "none" ? QFile::remove(installed) : FS::writeFile(installed, data));
            QVERIFY(FS::writeFile(run.file("FilterSt.ini"), before));
            QCOMPARE(MaskWordHelper::GetInstance()->stringMask("xabyab脏话"), masked);
            run.restart();
            QCOMPARE(FS::readFile(run.file("FilterSt.ini")), after);
        }
    }

    void masksAsIfEachWordWereReplacedInTurn()
    {
        QRandomGenerator random(7);
        const auto text = [&](int most) {
            const QString digits = QString::number(random.generate64(), 3);
            return digits.right(random.bounded(1, most + 1)).replace('2', '*');
        };
        for (int round = 0; round < 40; ++round) {
            CoreRun run;
            QStringList words;
            while (words.size() < 12)
                words << text(5);
            QVERIFY(FS::writeFile(run.file("FilterSt.ini"), words.join("\r\n").toUtf8()));
            for (int texts = 0; texts < 200; ++texts) {
                const QString given = text(40);
                QString expected = given;
                for (const QString &word : qAsConst(words))
                    expected.replace(word, QString(word.size(), '*'));
                QCOMPARE(MaskWordHelper::GetInstance()->stringMask(given), expected);
            }
            QVERIFY(TipsHelper::GetInstance()->getRandTips().startsWith("Tips."));
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_WordsAndTips)
#include "tst_WordsAndTips.moc"
