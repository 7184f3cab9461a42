#include "core/config/GameResConfig.h"

#include "base/LazySingleton.h"
#include "core/config/ResourceConfigStore.h"

using Store = ResourceConfigStore<unsigned int>;
using Table = Store::Table;

namespace {

Store::Kind kind()
{
    Store::Kind kind;
    kind.ownerName = QStringLiteral("instId");
    kind.ownerIn = [](const QString &text) { return static_cast<unsigned int>(text.toInt()); };
    kind.textOf = [](const unsigned int &instId) { return QString::number(instId); };
    kind.everyOwner = GameResConfig::allInstances;
    kind.makesFolder = true;
    kind.noPathLine = QStringLiteral("game resource config file should not be empty !");
    kind.unreadableLine = QStringLiteral("Couldn't open game resource config file.");
    kind.emptyEntryLine = QStringLiteral("resource id list is empty and continue !");
    kind.loadedLine = QStringLiteral("load game instance config of resource finished.");
    return kind;
}

} // namespace

struct GameResConfig::Private : Store
{
    Private() : Store(kind()) {}

    void applyToInstance(Change change, Table &table, unsigned int instId,
                         const QSet<quint64> &keys, bool save);
    void applyToResource(Change change, Table &table, quint64 key,
                         const QSet<unsigned int> &instIds, bool save);
};

void GameResConfig::Private::applyToInstance(Change change, Table &table, unsigned int instId,
                                             const QSet<quint64> &keys, bool save)
{
    apply(change, table, instId, keys, save, QStringLiteral("invalid game instance id !"));
}

void GameResConfig::Private::applyToResource(Change change, Table &table, quint64 key,
                                             const QSet<unsigned int> &instIds, bool save)
{
    if (key == 0) {
        Log::critical(QStringLiteral("invalid resource id!"));
        return;
    }
    {
        const QMutexLocker lock(&mutex());
        for (const unsigned int instId : instIds) {
            if (instId == 0)
                Log::critical(QStringLiteral("invalid game instance id!"));
            else
                (table.*change)(instId, {key});
        }
    }
    if (save)
        this->save();
}

GameResConfig::GameResConfig() : d(std::make_unique<Private>()) {}

GameResConfig::~GameResConfig()
{
    d->save();
}

GameResConfig *GameResConfig::GetInstance()
{
    return LazySingleton<GameResConfig>::get();
}

bool GameResConfig::initialize(const QString &path)
{
    return d->initialize(path);
}

void GameResConfig::setGameInstanceConfig(unsigned int instId, const QSet<quint64> &keys, bool save)
{
    d->applyToInstance(&Table::add, d->custom, instId, keys, save);
}

void GameResConfig::setResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save)
{
    d->applyToResource(&Table::add, d->custom, key, instIds, save);
}

void GameResConfig::unSetGameInstanceConfig(unsigned int instId, const QSet<quint64> &keys,
                                            bool save)
{
    d->applyToInstance(&Table::remove, d->custom, instId, keys, save);
}

void GameResConfig::unSetResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save)
{
    d->applyToResource(&Table::remove, d->custom, key, instIds, save);
}

void GameResConfig::setIgnoredRemoteGameInstCfg(unsigned int instId, const QSet<quint64> &keys,
                                                bool save)
{
    d->applyToInstance(&Table::add, d->ignored, instId, keys, save);
}

void GameResConfig::setIgnoredResourceConfig(quint64 key, const QSet<unsigned int> &instIds,
                                             bool save)
{
    d->applyToResource(&Table::add, d->ignored, key, instIds, save);
}

void GameResConfig::unSetIgnoredRemoteGameInstCfg(unsigned int instId, const QSet<quint64> &keys,
                                                  bool save)
{
    d->applyToInstance(&Table::remove, d->ignored, instId, keys, save);
}

void GameResConfig::unSetIgnoredResourceConfig(quint64 key, const QSet<unsigned int> &instIds,
                                               bool save)
{
    d->applyToResource(&Table::remove, d->ignored, key, instIds, save);
}

void GameResConfig::updateGameInstConfigFromRemote(unsigned int instId, const QSet<quint64> &keys,
                                                   bool)
{
    d->updateFromRemote(instId, keys);
}

QSet<quint64> GameResConfig::getCustomGameInstCfgList(unsigned int instId) const
{
    return d->ask(&Table::keysOf, d->custom, instId);
}

QSet<quint64> GameResConfig::getRemoteDefaultGameInstCfgList(unsigned int instId) const
{
    return d->ask(&Table::keysOf, d->remoteDefault, instId);
}

QSet<quint64> GameResConfig::getIgnoredRemoteDefaultGameInstCfgList(unsigned int instId) const
{
    return d->ask(&Table::keysOf, d->ignored, instId);
}

QSet<unsigned int> GameResConfig::getResourceConfigList(quint64 key) const
{
    return d->ask(&Table::ownersOf, d->custom, key);
}

QSet<unsigned int> GameResConfig::getRemoteDefaultConfigList(quint64 key) const
{
    return d->ask(&Table::ownersOf, d->remoteDefault, key);
}

QSet<unsigned int> GameResConfig::getIgnoredRemoteDefaultCfgList(quint64 key) const
{
    return d->ask(&Table::ownersOf, d->ignored, key);
}

void GameResConfig::clearCustomConfig(unsigned int instId)
{
    d->clear(d->custom, instId);
}

void GameResConfig::clearDefalutConfig(unsigned int instId)
{
    d->clear(d->remoteDefault, instId);
}

void GameResConfig::clearUnSetDefaultConfig(unsigned int instId)
{
    d->clear(d->ignored, instId);
}

void GameResConfig::removeOneResFormConfig(unsigned int id, unsigned int type)
{
    d->removeOneResource(id, type);
}
