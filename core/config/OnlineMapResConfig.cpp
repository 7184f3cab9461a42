#include "core/config/OnlineMapResConfig.h"

#include "base/LazySingleton.h"
#include "core/config/ResourceConfigStore.h"

using Store = ResourceConfigStore<QString>;
using Table = Store::Table;

namespace {

Store::Kind kind()
{
    Store::Kind kind;
    kind.ownerName = QStringLiteral("mapName");
    kind.ownerIn = kind.textOf = [](const QString &mapName) { return mapName; };
    kind.noPathLine = QStringLiteral("map resource config file should not be empty !");
    kind.unreadableLine = QStringLiteral("Couldn't open save file.");
    kind.loadedLine = QStringLiteral("load map resource config of resource finished.");
    return kind;
}

} // namespace

struct OnlineMapResConfig::Private : Store
{
    Private() : Store(kind()) { addPlace({"srvDefResCfg", serverDefault, BeforeLoad::Kept}); }

    void add(Table &table, const QString &mapName, const QSet<quint64> &keys, bool save)
    {
        apply(&Table::add, table, mapName, keys, save, QStringLiteral("invalid map name !"));
    }
    void remove(Table &table, const QString &mapName, const QSet<quint64> &keys, bool save)
    {
        apply(&Table::remove, table, mapName, keys, save,
              QStringLiteral("invalid game instance id !"));
    }

    void setServerDefault(const QString &mapName, const QSet<quint64> &keys)
    {
        const QMutexLocker lock(&mutex());
        serverDefault.replace(mapName, keys);
    }

    Table serverDefault;
};

OnlineMapResConfig::OnlineMapResConfig() : d(std::make_unique<Private>()) {}

OnlineMapResConfig::~OnlineMapResConfig()
{
    d->save();
}

OnlineMapResConfig *OnlineMapResConfig::GetInstance()
{
    return LazySingleton<OnlineMapResConfig>::get();
}

bool OnlineMapResConfig::initialize(const QString &path)
{
    return d->initialize(path);
}

void OnlineMapResConfig::setCustomMapResConfig(const QString &mapName, const QSet<quint64> &keys,
                                               bool save)
{
    d->add(d->custom, mapName, keys, save);
}

void OnlineMapResConfig::unSetCustomMapResConfig(const QString &mapName, const QSet<quint64> &keys,
                                                 bool save)
{
    d->remove(d->custom, mapName, keys, save);
}

void OnlineMapResConfig::setIgnoredRemoteMapCfg(const QString &mapName, const QSet<quint64> &keys,
                                                bool save)
{
    d->add(d->ignored, mapName, keys, save);
}

void OnlineMapResConfig::unSetIgnoredRemoteMapCfg(const QString &mapName, const QSet<quint64> &keys,
                                                  bool save)
{
    d->remove(d->ignored, mapName, keys, save);
}

void OnlineMapResConfig::updateMapConfigFromRemote(const QString &mapName,
                                                   const QSet<quint64> &keys, bool)
{
    d->updateFromRemote(mapName, keys);
}

void OnlineMapResConfig::SetSrvDefaultResConfig(const QString &mapName, const QSet<quint64> &keys)
{
    d->setServerDefault(mapName, keys);
}

QSet<quint64> OnlineMapResConfig::GetSrvDefaultResConfig(const QString &mapName) const
{
    return d->ask(&Table::keysOf, d->serverDefault, mapName);
}

QSet<quint64> OnlineMapResConfig::getCustomMapCfgList(const QString &mapName) const
{
    return d->ask(&Table::keysOf, d->custom, mapName);
}

QSet<quint64> OnlineMapResConfig::getRemoteDefaultMapCfgList(const QString &mapName) const
{
    return d->ask(&Table::keysOf, d->remoteDefault, mapName);
}

QSet<quint64> OnlineMapResConfig::getIgnoredRemoteDefaultMapCfgList(const QString &mapName) const
{
    return d->ask(&Table::keysOf, d->ignored, mapName);
}

void OnlineMapResConfig::clearCustomConfig(const QString &mapName)
{
    d->clear(d->custom, mapName);
}

void OnlineMapResConfig::clearDefalutConfig(const QString &mapName)
{
    d->clear(d->remoteDefault, mapName);
}

void OnlineMapResConfig::clearUnSetDefaultConfig(const QString &mapName)
{
    d->clear(d->ignored, mapName);
}

void OnlineMapResConfig::removeOneResFormConfig(unsigned int id, unsigned int type)
{
    d->removeOneResource(id, type);
}
