#include <QSettings>

#include "core/foundation/MCSettings.h"
#include "platform/FixedDrives.h"
#include "support/jsonfskit/FS.h"
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
    void cleanupTestCase() { platform::FixedDrives::replace(nullptr); }

    void settlesTheDataPath()
    {
        // Files there are, gigabytes free on the drives, DataPath, ChangedDataDir, end of the
        // result.
        for (const char *row :
             {"x|C50 D20 E80|||%1/E/rivet_game", "E|C50 D20 E80|||%1/C/rivet_game",
              "C E|C50 D20 E80|||/tests/sandboxrivet_game", "x|C50 D50|||%1/C/rivet_game",
              "C|C50 D50|||/tests/sandboxrivet_game", "x|C0|||/tests/sandboxrivet_game",
              "x||||/tests/sandboxrivet_game", "x|C1|%1/data||%1/data",
              "f|C1|%1/f||%1/C/rivet_game", "f|C1|%1/f|%1/f|%1/C/rivet_game",
              "x|C1|%1/data|%1/new|%1/new", "f|C1|%1/data|%1/f/new|%1/data",
              "x ../rivet_game|C1|||%1/C/rivet_game", "x ../rivet_game/a|C1|||./rivet_game",
              "x|C1|./rivet_game/a||./rivet_game/a"}) {
            const QStringList cells = QString(row).replace("%1", m_world).split('|');
            QVERIFY(FS::removeTree(m_world) && FS::removeTree(m_appDir.filePath("rivet_game")));
            makeFiles(m_world, cells[0].split(' '));
            QVERIFY2(validated(cells[1], cells[2], cells[3]).endsWith(cells[4]), row);
            QVERIFY2(!treeOf(m_world).contains("temp"), row);
            QVERIFY2(!QSettings().contains("ChangedDataDir"), row);
        }
        QVERIFY(QDir().mkpath(m_world + "/D"));
        if (!QFile::link("/proc/self", m_world + "/D/rivet_game") ||
            !QFileInfo(m_world + "/D/rivet_game").isDir())
            QSKIP("no folder here that nobody can write, in one that we can");
        QVERIFY(FS::removeTree(m_appDir.filePath("rivet_game")));
        QVERIFY(validated("D1", {}, {}).endsWith("/tests/sandboxrivet_game"));
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
    /// The DataPath that a start settles on.
    QString validated(const QString &drives, const QString &stored, const QString &changed)
    {
        m_drives.drives.clear();
        for (const QString &drive : drives.split(' ')) {
            const QString root = m_world + '/' + drive.left(1) + '/';
            if (!drive.isEmpty())
                m_drives.drives.append({root, drive.mid(1).toULongLong() << 30});
        }
        QSettings store;
        store.setValue("DataPath", stored);
        store.setValue("ChangedDataDir", changed);
        MCSettings().validateSettingValues();
        return store.value("DataPath").toString();
    }

    const QDir m_appDir{QCoreApplication::applicationDirPath()};
    const QString m_world = m_appDir.filePath("world");
    FakeDrives m_drives;
};

RIVET_SANDBOXED_TEST_MAIN(tst_MCSettings)
#include "tst_MCSettings.moc"
