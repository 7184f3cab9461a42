#include <QSettings>

#include "core/foundation/MCSettings.h"
#include "platform/FixedDrives.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

struct FakeDrives : platform::FixedDrives
{
    QVector<platform::FixedDrive> table() const override { return drives; }
    QVector<platform::FixedDrive> drives;
};

class tst_MCSettings : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { platform::FixedDrives::replace(&m_drives); }

    void settlesTheDataPath()
    {
        // Files there are, gigabytes free on the drives, DataPath, ChangedDataDir, result; %2 is
        // the folder of the program's data.
        for (const char *row :
             {"x|C50 D20 E80|||%1/E/rivet_game", "E|C50 D20 E80|||%1/C/rivet_game",
              "C E|C50 D20 E80|||%2", "x|C50 D50|||%1/C/rivet_game", "x|C0|||%2",
              "x|C1|%1/data||%1/data", "f|C1|%1/f|%1/f|%1/C/rivet_game",
              "x|C1|%1/data|%1/new|%1/new", "f|C1|%1/data|%1/f/new|%1/data",
              "x ../rivet_game|C1|||%1/C/rivet_game", "x ../rivet_game/a|C1|||./rivet_game",
              "x|C1|./rivet_game/a||./rivet_game/a", "x||||%2", "D/proc|D1|||%2"}) {
            const QStringList cells = QString(row).replace("%1", m_world).split('|');
            QVERIFY(FS::removeTree(m_world) && FS::removeTree(m_appDir.filePath("rivet_game")));
            makeFiles(m_world, cells[0].split(' '));
            const QString unwritable = m_world + "/D/rivet_game";
            if (cells[0] == "D/proc" &&
                !(QFile::link("/proc/self", unwritable) && QFileInfo(unwritable).isDir()))
                QSKIP("no folder here that nobody can write, in one that we can");
            m_drives.drives.clear();
            for (const QString &drive : cells[1].split(' ', Qt::SkipEmptyParts))
                m_drives.drives.append(
                    {m_world + '/' + drive.left(1) + '/', drive.mid(1).toULongLong() << 30});
            QSettings store;
            store.setValue("DataPath", cells[2]);
            store.setValue("ChangedDataDir", cells[3]);
            MCSettings().validateSettingValues();
            const QString end = cells[4] == "%2" ? "/tests/sandboxrivet_game" : cells[4];
            QVERIFY2(store.value("DataPath").toString().endsWith(end), row);
            QVERIFY2(!treeOf(m_world).contains("temp") && !store.contains("ChangedDataDir"), row);
        }
    }

    void setsDefaultsOnceAndTheChannelAlways()
    {
        QSettings store;
        store.setValue("notifyupdate", false);
        for (const char *row : {"channel=shop|oriel", "[OPTION]\nchannel=|oriel",
                                "[OPTION]\nchannel=shop 7|shop 7"}) {
            store.setValue("channel", "mine");
            const QStringList cells = QString(row).split('|');
            QVERIFY(FS::writeFile(m_appDir.filePath("config.ini"), cells[0].toLatin1()));
            MCSettings().validateSettingValues();
            QCOMPARE(store.value("channel").toString(), cells[1]);
        }
        const QByteArray saved = FS::readFile(store.fileName()).value();
        for (const char *line : {"notifyupdate=false", "minimizeOnClose=true",
                                 "JavaParam=", "ShowTrayBalloonMsg=true", "channel=shop 7"})
            QVERIFY2(saved.contains(line), line);
    }

private:
    const QDir m_appDir{QCoreApplication::applicationDirPath()};
    const QString m_world = m_appDir.filePath("world");
    FakeDrives m_drives;
};

RIVET_SANDBOXED_TEST_MAIN(tst_MCSettings)
#include "tst_MCSettings.moc"
