#include <QJsonArray>
#include <QtConcurrent>
#include <QtTest>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFiles.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

constexpr char md5OfX[] = "9dd4e461268c8034f5c8564e155c67a6";

QByteArray binaryOf(QByteArray json)
{
    return QJsonDocument::fromJson(json.replace('\'', '"')).toBinaryData();
}

} // namespace

class tst_DeployHistory : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_folder = m_dir->filePath("game");
        m_file = m_dir->filePath("deploy.cache");
        makeFiles(m_folder, {"a", "b/\u4e2d", "c", "empty=", "x.JAR", "y.json"});
        makeFiles(m_dir->path(), {"outside", "other/d"});
    }

    void recordsComeBack()
    {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(1500000000);
        {
            DepHistoryFlatFile history;
            history.init(m_file);
            history.init(m_dir->filePath("second"));
            history.insertRecord(m_folder + "/", 4294967303, {"a", "b/\u4e2d", "gone", "b"}, time,
                                 false);
            history.insertRecord(m_folder, 2, {"c"}, time, false);
            history.insertRecord(m_dir->filePath("other"), 7, {"d"}, time, true);
            QVERIFY(history.deleteRecord(m_folder, 2, true) &&
                    !history.deleteRecord(m_folder, 2, true));
        }
        const auto document = QJsonDocument::fromBinaryData(FS::readFile(m_file).value());
        QCOMPARE(document.array().size(), 2);
        for (const QJsonValue &folder : document.array()) {
            if (folder["deployPath"] != m_folder)
                continue;
            QCOMPARE(folder["deployItems"].toArray().size(), 1);
            const QJsonValue item = folder["deployItems"][0];
            QCOMPARE(item["resKey"], QJsonValue("4294967303"));
            QCOMPARE(item["deployTime"], QJsonValue(time.toString(Qt::TextDate)));
            const QString sum = QString(":%1|").arg(md5OfX);
            QVERIFY(QStringList({"a" + sum + "b/\u4e2d" + sum, "b/\u4e2d" + sum + "a" + sum})
                        .contains(item["deployFiles"].toString()));
        }
        DepHistoryFlatFile second;
        second.init(m_file);
        DeployRecordItem item;
        QVERIFY(second.queryRecord(m_folder + "/.", 4294967303, item));
        QCOMPARE(item.deployTime, time);
        QCOMPARE(item.deployFiles, (QHash<QString, QString>{{"a", md5OfX}, {"b/\u4e2d", md5OfX}}));
        QCOMPARE(second.getDeployResInDeployFolder(m_dir->filePath("other")), QList<quint64>{7});
        QVERIFY(!QFileInfo::exists(m_dir->filePath("second")));
    }

    void takesOnlySoundItems()
    {
        QString many;
        for (int i = 0; i < 100; ++i)
            many += "a:1|";
        const QPair<QString, bool> rows[] = {
            {"a:1|", true},
            {" a:1 | c:2", true},
            {"", false},
            {"a", false},
            {"a:1:2|", false},
            {"a:1|gone:1|", false},
            {"../outside:1|", false},
            {"b/../../outside:1|", false},
            {many + "gone:1", true},
        };
        for (const auto &[files, isSound] : rows) {
            const QByteArray json = "[7, {}, {'deployPath':'" + m_folder.toUtf8() +
                                    "','deployItems':[{'resKey':'0','deployFiles':'a:1'},{'resKey':"
                                    "'9','deployTime':'x',"
                                    "'deployFiles':'" +
                                    files.toUtf8() +
                                    "'}, 3]}, {'deployPath':'/gone','deployItems':"
                                    "[{'resKey':'8','deployFiles':'a:1'}]}]";
            QVERIFY(FS::writeFile(m_file, binaryOf(json)));
            DepHistoryFlatFile history;
            history.init(m_file);
            QVERIFY2(history.getDeployResInDeployFolder(m_folder).contains(9) == isSound,
                     qPrintable(files));
            QVERIFY(history.getDeployResInDeployFolder("/gone").isEmpty());
        }
    }

    void namesThatTheFormCanNotHoldClaimNoOtherFiles()
    {
        if (QSysInfo::productType() == "windows")
            QSKIP("there are no such names");
        makeFiles(m_folder, {"a:b", "a|b", "a:9|c"});
        {
            DepHistoryFlatFile history;
            history.init(m_file);
            const char *const names[] = {"a:b", "a|b", "a:9|c"};
            for (quint64 key = 1; key <= 3; ++key)
                history.insertRecord(m_folder, key, {names[key - 1], "c"}, {}, true);
            QCOMPARE(history.getDeployResInDeployFolder(m_folder).size(), 3);
        }
        DepHistoryFlatFile history;
        history.init(m_file);
        QVERIFY(history.getDeployResInDeployFolder(m_folder).isEmpty());
    }

    void damagedFilesReadAsEmptyAndStay()
    {
        DepHistoryFlatFile whole;
        whole.init(m_file);
        whole.insertRecord(m_folder, 7, {"a", "c"}, QDateTime::currentDateTime(), true);
        const QByteArray good = FS::readFile(m_file).value();
        QCOMPARE(QJsonDocument::fromBinaryData(good).array().size(), 1);
        QList<QByteArray> damaged{"{\"deployPath\":1}", QByteArray(good).replace(4, 1, "\2"),
                                  binaryOf("{'deployPath':'x'}")};
        for (int i = 0; i < good.size(); i += 3) {
            damaged << good.left(i) << good;
            damaged.last().data()[i] ^= char(1 << i % 8);
        }
        for (const QByteArray &data : qAsConst(damaged)) {
            const LogCapture log;
            QVERIFY(FS::writeFile(m_file, data));
            DepHistoryFlatFile history;
            history.init(m_file);
            QVERIFY(history.getDeployResInDeployFolder(m_folder).size() <= 1);
            if (data.size() < good.size())
                QVERIFY(history.getDeployResInDeployFolder(m_folder).isEmpty());
            QVERIFY(FS::readFile(m_file) == data);
        }
    }

    void twoSingletonsKeepTwoFiles()
    {
        for (int run = 1; run <= 2; ++run) {
            const RivetCoreAtExitManagerUtil core;
            const auto files = {m_file, m_dir->filePath("deploygame.cache")};
            auto *const ordinary = DeployResRecorder::GetInstance();
            auto *const games = DeployGameResRecorder::GetInstance();
            ordinary->init(*files.begin());
            games->init(files.begin()[1]);
            if (run == 1) { // written at the end of the program only
                ordinary->insertRecord(m_folder, 1, {"a", "empty"}, {}, false);
                games->insertRecord(m_folder, 2, {"a", "x.JAR", "y.json"}, {}, false);
                continue;
            }
            DeployRecordItem item;
            QVERIFY(ordinary->queryRecord(m_folder, 1, item) && item.deployFiles.size() == 2);
            QVERIFY(games->queryRecord(m_folder, 2, item));
            QCOMPARE(QSet<QString>::fromList(item.deployFiles.keys()),
                     (QSet<QString>{"x.JAR", "y.json"}));
            games->clearAllRecord();
        }
        DepHistoryFlatFile games;
        games.init(m_dir->filePath("deploygame.cache"));
        QVERIFY(games.getDeployResInDeployFolder(m_folder).isEmpty());
    }

    void threadsShareOne()
    {
        DepHistoryFlatFile history;
        history.init(m_file);
        history.insertRecord(m_folder, 1, {"a"}, {}, false);
        QVector<quint64> keys(30000);
        std::iota(keys.begin(), keys.end(), 2);
        QThreadPool::globalInstance()->setMaxThreadCount(16);
        QtConcurrent::blockingMap(keys, [&](quint64 key) {
            DeployRecordItem item;
            history.insertRecord(m_folder, key, {}, {}, key % 5000 == 0);
            if (!history.queryRecord(m_folder, key, item) || history.deleteRecord("x", key, true))
                qFatal("a record is gone");
        });
        QCOMPARE(history.getDeployResInDeployFolder(m_folder).size(), 30001);
        DepHistoryFlatFile saved;
        saved.init(m_file);
        QCOMPARE(saved.getDeployResInDeployFolder(m_folder), QList<quint64>{1});
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_folder, m_file;
};

QTEST_GUILESS_MAIN(tst_DeployHistory)
#include "tst_DeployHistory.moc"
