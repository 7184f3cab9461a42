#include <QJsonDocument>
#include <QSignalSpy>
#include <QtConcurrent>
#include <QtTest>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/config/DemoConfig.h"
#include "core/config/GRC.h"
#include "core/config/GameResConfig.h"
#include "core/config/OMRC.h"
#include "core/config/OnlineMapResConfig.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFiles.h"

// The files hold this form.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

QString text(QList<uint> ids)
{
    QStringList texts;
    std::sort(ids.begin(), ids.end());
    for (const uint id : ids)
        texts << QString::number(id);
    return texts.join(' ');
}

const quint64 mod = 1ULL << 32 | 7, pack = 3ULL << 32 | 7, other = 1ULL << 32 | 8;

} // namespace

class tst_GameResConfig : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_file = m_dir->filePath("deep/game.config");
        open();
    }
    void cleanup() { m_core.reset(); }

    void keepsItsTables()
    {
        m_config->setGameInstanceConfig(1, {mod, pack}, false);
        m_config->setResourceConfig(other, {1, 2}, false);
        m_config->updateGameInstConfigFromRemote(1, {mod, other}, true);
        m_config->setIgnoredResourceConfig(mod, {1, 3}, false);
        m_config->setIgnoredRemoteGameInstCfg(1, {other}, false);
        m_config->unSetIgnoredRemoteGameInstCfg(1, {other}, false);
        QVERIFY(!QFile::exists(m_file));
        for (int run = 0; run < 2; ++run) {
            QCOMPARE(text(GRC::GetCurCustomResList(1, ResTypeMods)), "7 8");
            QCOMPARE(text(GRC::GetCurCustomResList(1, ResTypeResourcePacks)), "7");
            QCOMPARE(text(GRC::GetRemoteDefaultResList(1, ResTypeMods)), "7 8");
            QCOMPARE(text(GRC::GetCurDefaultResList(1, ResTypeMods)), "8");
            QCOMPARE(text(GRC::GetCurCustomInstList(other)), "1 2");
            QCOMPARE(text(GRC::GetRemoteDefaultInstList(mod)), "1");
            QCOMPARE(text(GRC::GetCurDefaultInstList(mod)), "");
            open(); // saved at the end of the process
        }
        m_config->updateGameInstConfigFromRemote(1, {other}, false);
        m_config->updateGameInstConfigFromRemote(1, {mod, other}, false);
        QCOMPARE(text(GRC::GetCurDefaultResList(1, ResTypeMods)), "7 8");

        m_config->unSetResourceConfig(other, {1, 2, 5}, false);
        m_config->removeOneResFormConfig(7, ResTypeMods);
        QCOMPARE(m_config->getCustomGameInstCfgList(1), QSet<quint64>{pack});
        m_config->unSetGameInstanceConfig(1, {pack}, false);
        m_config->unSetIgnoredResourceConfig(mod, {3}, false);
        m_config->setResourceConfig(mod, {4, 5}, false);
        m_config->clearCustomConfig(4);
        QVERIFY(m_config->getCustomGameInstCfgList(4).isEmpty());
        const LogCapture log;
        open();
        // Of the owners those that were cleared or lost their defaults are written with nothing.
        QCOMPARE(log.lines().filter("resource id list is empty and continue !").size(), 2);
        m_config->clearCustomConfig(GameResConfig::allInstances);
        m_config->clearDefalutConfig(GameResConfig::allInstances);
        m_config->clearUnSetDefaultConfig(GameResConfig::allInstances);
        QVERIFY(m_config->getResourceConfigList(mod).isEmpty() &&
                m_config->getRemoteDefaultConfigList(other).isEmpty());
    }

    void refusesZeros()
    {
        const LogCapture log;
        m_config->setGameInstanceConfig(0, {mod}, true);
        m_config->unSetResourceConfig(0, {1}, true);
        QCOMPARE(log.lines().join('|'), "invalid game instance id !|invalid resource id!");
        QVERIFY(!QFile::exists(m_file));
        m_config->setGameInstanceConfig(1, {0, mod}, true);
        m_config->setResourceConfig(other, {0, 1}, true);
        QCOMPARE(log.lines().mid(2).join('|'), "invalid resource id !|invalid game instance id!");
        QCOMPARE(m_config->getCustomGameInstCfgList(1), QSet<quint64>({mod, other}));
        QVERIFY(!m_config->initialize(""));
        m_config->setGameInstanceConfig(1, {mod}, true);
        QCOMPARE(log.lines().mid(4).join('|'), "game resource config file should not be empty !|"
                                               "config file path not set!");
    }

    void aDamagedFileIsSetAside()
    {
        const QString folder = m_dir->filePath("folder");
        QVERIFY(QDir().mkdir(folder) && !m_config->initialize(folder));
        m_config->setGameInstanceConfig(2, {pack}, true);
        QVERIFY(QFileInfo(folder).isFile() && QFileInfo(folder + ".damaged").isDir());
        QVERIFY(FS::writeFile(folder, "damaged") && m_config->initialize(folder));
        QVERIFY(QFile::remove(folder)); // by the user
        m_config->setGameInstanceConfig(2, {pack}, true);
        QVERIFY(QFileInfo(folder).isFile());
        QVERIFY(FS::writeFile(m_file, "damaged"));
        QVERIFY(m_config->initialize(m_file));
        QVERIFY(FS::readFile(m_file) == QByteArray("damaged"));
        for (const quint64 key : {mod, other})
            m_config->setGameInstanceConfig(1, {key}, true);
        QVERIFY(FS::readFile(m_file + ".damaged") == QByteArray("damaged"));
        open();
        QCOMPARE(text(GRC::GetCurCustomResList(1, ResTypeMods)), "7 8");

        const auto entry = [](const char *owner, const QJsonValue &list) {
            return QJsonObject{{"instId", owner}, {"resList", list}};
        };
        const auto key = [](const char *id) { return QJsonObject{{"resId", id}}; };
        const QJsonArray entries{3, entry("3000000000", QJsonArray{key("7")}), entry("2", "x"),
                                 entry("3", QJsonArray{key("7x"), 5, key("4294967303")})};
        const LogCapture log;
        QVERIFY(
            FS::writeFile(m_file, QJsonDocument(QJsonObject{{"config", entries}}).toBinaryData()));
        QVERIFY(m_config->initialize(m_file));
        QCOMPARE(text(GRC::GetCurCustomInstList(mod)), "3");
        QCOMPARE(log.lines().filter("read failed and continue !").size(), 4);
    }

    void manyThreadsMeet()
    {
        QThreadPool pool;
        pool.setMaxThreadCount(8);
        QSemaphore begin;
        QList<QFuture<void>> futures;
        for (uint thread = 1; thread <= 8; ++thread) {
            futures << QtConcurrent::run(&pool, [this, &begin, thread] {
                begin.acquire();
                for (uint i = 0; i < 15'000; ++i) {
                    m_config->setGameInstanceConfig(1, {thread, 1000 * i + 100 + thread},
                                                    i == 7500);
                    m_config->unSetGameInstanceConfig(1, {1000 * i + 100 + thread}, false);
                }
            });
        }
        begin.release(8);
        for (QFuture<void> &future : futures)
            future.waitForFinished();
        open();
        QCOMPARE(m_config->getCustomGameInstCfgList(1).size(), 8);
    }

    void mapsHaveResourcesLikewise()
    {
        const QString file = m_dir->filePath("maps/map.config");
        auto *maps = OnlineMapResConfig::GetInstance();
        QVERIFY(!maps->initialize("") && maps->initialize(file));
        maps->setCustomMapResConfig("", {mod}, false);
        maps->setCustomMapResConfig("a", {0, mod, pack}, true);
        QVERIFY(!QFile::exists(file) && QDir(m_dir->path()).mkdir("maps"));
        maps->updateMapConfigFromRemote("a", {mod, other}, true);
        maps->setIgnoredRemoteMapCfg("a", {mod, pack, other}, false);
        maps->unSetIgnoredRemoteMapCfg("a", {other}, true);
        maps->SetSrvDefaultResConfig("a", {pack}); // saved at the end of the process
        for (int run = 0; run < 2; ++run) {
            QCOMPARE(OMRC::GetMapResCfgList("a").count(mod), 1);
            QCOMPARE(text(OMRC::GetCurCustomResList("a", ResTypeResourcePacks)), "7");
            QCOMPARE(text(OMRC::GetCurDefaultResList("a", ResTypeMods)), "8");
            QCOMPARE(maps->GetSrvDefaultResConfig("a"), QSet<quint64>{pack});
            open();
            maps = OnlineMapResConfig::GetInstance();
            maps->SetSrvDefaultResConfig("new", {mod});
            QVERIFY(maps->initialize(file) && !maps->GetSrvDefaultResConfig("new").isEmpty());
        }
        for (const char *map : {"a", ""})
            maps->clearDefalutConfig(map), maps->clearUnSetDefaultConfig(map);
        maps->removeOneResFormConfig(7, ResTypeMods);
        QCOMPARE(OMRC::GetMapResCfgList("a"), QList<quint64>{pack});
    }

    void configurationObjectsLoadOnce()
    {
        DemoConfig demo;
        QSignalSpy spy(&demo, &ConfigAbstract::loadFinished);
        QVERIFY(demo.load() && demo.save() && !demo.isLoaded());
        demo.setLoaded();
        demo.setLoaded();
        QVERIFY(demo.isLoaded() && spy.size() == 1);
    }

private:
    /// Ends the core, if it runs, and begins another on the same file.
    void open()
    {
        m_core.reset();
        m_core = std::make_unique<RivetCoreAtExitManagerUtil>();
        m_config = GameResConfig::GetInstance();
        QVERIFY(m_config->initialize(m_file));
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_file;
    std::unique_ptr<RivetCoreAtExitManagerUtil> m_core;
    GameResConfig *m_config = nullptr;
};

QTEST_GUILESS_MAIN(tst_GameResConfig)
#include "tst_GameResConfig.moc"
