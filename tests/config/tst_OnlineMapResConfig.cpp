#include <QtTest>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/config/OMRC.h"
#include "core/config/OnlineMapResConfig.h"
#include "tests/support/LogCapture.h"

class tst_OnlineMapResConfig : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void keepsWhatBelongsToMaps()
    {
        const QTemporaryDir dir;
        const quint64 mod = 1ULL << 32 | 7, pack = 3ULL << 32 | 7, other = 1ULL << 32 | 8;
        const QString file = dir.filePath("deep/map.config");
        auto core = std::make_unique<RivetCoreAtExitManagerUtil>();
        auto *config = OnlineMapResConfig::GetInstance();
        const LogCapture log;
        QVERIFY(!config->initialize("") && config->initialize(file));
        config->setCustomMapResConfig("", {mod}, true);
        config->unSetCustomMapResConfig("", {mod}, true);
        config->setCustomMapResConfig("a", {0, mod, pack}, true);
        QCOMPARE(log.lines().join('|'),
                 "map resource config file should not be empty !|invalid map name !|invalid game "
                 "instance id !|invalid resource id !|Couldn't open save file.");
        QVERIFY(!QFileInfo::exists(dir.filePath("deep")) && QDir(dir.path()).mkdir("deep"));
        config->updateMapConfigFromRemote("a", {mod, other}, true);
        config->SetSrvDefaultResConfig("a", {pack});
        config->setCustomMapResConfig("b", {other}, false);
        config->clearCustomConfig("b");
        QVERIFY(!QFile::exists(file));
        config->setIgnoredRemoteMapCfg("a", {mod, pack, other}, true);
        config->unSetIgnoredRemoteMapCfg("a", {other}, true);
        for (int run = 0; run < 2; ++run) {
            QList<quint64> keys = OMRC::GetMapResCfgList("a");
            std::sort(keys.begin(), keys.end());
            QCOMPARE(keys, QList<quint64>({mod, other}));
            QCOMPARE(OMRC::GetCurCustomResList("a", ResTypeResourcePacks), QList<uint>{7});
            QCOMPARE(OMRC::GetRemoteDefaultResList("a", ResTypeMods).size(), 2);
            QCOMPARE(OMRC::GetCurDefaultResList("a", ResTypeMods), QList<uint>{8});
            QCOMPARE(config->GetSrvDefaultResConfig("a"), QSet<quint64>{pack});
            core.reset();
            core = std::make_unique<RivetCoreAtExitManagerUtil>();
            config = OnlineMapResConfig::GetInstance();
            config->SetSrvDefaultResConfig("new", {mod});
            QVERIFY(config->initialize(file));
            QCOMPARE(log.lines().mid(5).size(), run + 1); // what was cleared goes without a word
        }
        QCOMPARE(config->GetSrvDefaultResConfig("new"), QSet<quint64>{mod});
        config->updateMapConfigFromRemote("a", {other}, false);
        config->removeOneResFormConfig(7, ResTypeMods);
        QVERIFY(config->getIgnoredRemoteDefaultMapCfgList("a").isEmpty());
        QCOMPARE(config->getCustomMapCfgList("a"), QSet<quint64>{pack});
        config->clearCustomConfig("");
        config->clearDefalutConfig("a");
        QVERIFY(OMRC::GetMapResCfgList("a").isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_OnlineMapResConfig)
#include "tst_OnlineMapResConfig.moc"
