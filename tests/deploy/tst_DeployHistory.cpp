#include <QJsonArray>
#include <QtConcurrent>
#include <QtTest>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFiles.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

class tst_DeployHistory : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_folder = m_dir->filePath("game");
        m_file = m_dir->filePath("deploy.cache");
        makeFiles(m_folder, {"a", "b/\u4e2d", "c", "x.JAR", "y.json"});
        makeFiles(m_dir->path(), {"outside", "other/d"});
    }

    void recordsComeBack()
    {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(1500000000);
        const QString other = m_dir->filePath("other"), sum = "9dd4e461268c8034f5c8564e155c67a6";
        {
            DepHistoryFlatFile history;
            history.init(m_file);
            history.init(m_dir->filePath("second"));
            history.insertRecord(m_folder + "/", 4294967303, {"b/\u4e2d", "no", "b"}, time, false);
            history.insertRecord(m_folder, 2, {"c"}, time, false);
            history.insertRecord(other, 7, {"d"}, time, true);
            QVERIFY(history.deleteRecord(m_folder, 2, true));
        }
        const auto folders = QJsonDocument::fromBinaryData(FS::readFile(m_file).value()).array();
        QCOMPARE(folders.size(), 2);
        const QJsonValue item = folders[folders[0]["deployPath"] == other]["deployItems"][0];
        const QJsonObject expected{{"resKey", "4294967303"},
                                   {"deployTime", time.toString(Qt::TextDate)},
                                   {"deployFiles", "b/\u4e2d:" + sum + '|'}};
        QCOMPARE(item.toObject(), expected);
        DeployRecordItem record;
        QVERIFY(load().queryRecord(m_folder + "/.", 4294967303, record));
        QCOMPARE(record.deployTime, time);
        QCOMPARE(record.deployFiles, (QHash<QString, QString>{{"b/\u4e2d", sum}}));
        QVERIFY(keys().size() == 1 && !QFileInfo::exists(m_dir->filePath("second")));
    }

    void takesOnlySoundItems()
    {
        const QPair<QString, bool> rows[] = {
            {" a:1 | c:2", true},
            {"", false},
            {"a", false},
            {"a:1:2|", false},
            {"a:1|no:1|", false},
            {"../outside:1|", false},
            {"a:1|b/../../outside:1|", false},
            {QString("a:1|").repeated(100) + "no:1", true},
        };
        for (const auto &[files, isSound] : rows) {
            QString json = "[7, {}, {'deployPath':'%1','deployItems':[{'resKey':'0','deployFiles':"
                           "'a:1'},{'resKey':'9','deployFiles':'%2'},3]},{'deployPath':'/gone',"
                           "'deployItems':[{'resKey':'8','deployFiles':'a:1'}]}]";
            json = json.arg(m_folder, files).replace('\'', '"');
            write(QJsonDocument::fromJson(json.toUtf8()).toBinaryData());
            QCOMPARE(keys(), isSound ? QList<quint64>{9} : QList<quint64>{});
            QVERIFY(load().getDeployResInDeployFolder("/gone").isEmpty());
        }
    }

    void namesThatTheFormCanNotHoldClaimNoOtherFiles()
    {
        if (QSysInfo::productType() == "windows")
            QSKIP("there are no such names");
        for (const QString name : {"a:b", "a|b", "a:9|c"}) {
            makeFiles(m_folder, {name});
            load().insertRecord(m_folder, 1, {name, "c"}, {}, true);
            QCOMPARE(keys(), QList<quint64>{});
        }
    }

    void damagedFilesReadAsEmptyAndStay()
    {
        load().insertRecord(m_folder, 7, {"a", "c"}, {}, true);
        QCOMPARE(keys(), QList<quint64>{7});
        const QByteArray good = FS::readFile(m_file).value();
        QList<QByteArray> damaged{"{\"deployPath\":1}", QByteArray(good).replace(4, 1, "\2")};
        for (int i = 0; i < good.size(); i += 3) {
            damaged << good.left(i) << good;
            damaged.last().data()[i] ^= char(1 << i % 8);
        }
        const LogCapture log;
        for (const QByteArray &data : qAsConst(damaged)) {
            write(data);
            DepHistoryFlatFile history;
            history.init(m_file);
            const int left = history.getDeployResInDeployFolder(m_folder).size();
            QVERIFY(left == 0 || (left == 1 && data.size() == good.size()));
            QVERIFY(FS::readFile(m_file) == data);
        }
    }

    void singletonsWriteAtTheEndOfTheProgram()
    {
        {
            const RivetCoreAtExitManagerUtil core;
            DeployGameResRecorder::GetInstance()->init(m_file);
            DeployResRecorder::GetInstance()->init(m_dir->filePath("ordinary"));
            const QStringList files{"a", "x.JAR", "y.json"};
            DeployGameResRecorder::GetInstance()->insertRecord(m_folder, 1, files, {}, false);
            DeployResRecorder::GetInstance()->insertRecord(m_folder, 2, files, {}, false);
            DeployResRecorder::GetInstance()->clearAllRecord();
        }
        QVERIFY(!FS::readFile(m_dir->filePath("ordinary"))->contains("resKey"));
        DeployRecordItem item;
        QVERIFY(load().queryRecord(m_folder, 1, item) && !item.deployFiles.contains("a"));
        QCOMPARE(item.deployFiles.size(), 2);
    }

    void threadsShareOne()
    {
        DepHistoryFlatFile history;
        history.init(m_file);
        history.insertRecord(m_folder, 1, {"a"}, {}, false);
        QVector<quint64> many(30000);
        std::iota(many.begin(), many.end(), 2);
        QThreadPool::globalInstance()->setMaxThreadCount(16);
        QtConcurrent::blockingMap(many, [&](quint64 key) {
            DeployRecordItem item;
            history.insertRecord(m_folder, key, {}, {}, key % 5000 == 0);
            if (!history.queryRecord(m_folder, key, item) || history.deleteRecord("x", key, true))
                qFatal("a record is gone");
        });
        QCOMPARE(history.getDeployResInDeployFolder(m_folder).size(), 30001);
        QCOMPARE(keys(), QList<quint64>{1}); // those without files are not read back
    }

private:
    void write(const QByteArray &data) const { QVERIFY(FS::writeFile(m_file, data)); }
    DepHistoryFlatFile load() const
    {
        DepHistoryFlatFile history;
        history.init(m_file);
        return history;
    }
    QList<quint64> keys() const { return load().getDeployResInDeployFolder(m_folder); }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_folder, m_file;
};

QTEST_GUILESS_MAIN(tst_DeployHistory)
#include "tst_DeployHistory.moc"
