#include "core/config/GameResConfig.h"

#include <QMutex>
#include <QMutexLocker>

#include "base/LazySingleton.h"
#include "core/config/OwnedResources.h"
#include "core/config/ResourceConfigFile.h"
#include "support/jsonfskit/FS.h"

using OwnedResourceLists::validKeys;
using Table = OwnedResources<unsigned int>;

struct GameResConfig::Private
{
    void read(const QJsonObject &object);
    QJsonObject toJson() const;

    using Change = void (Table::*)(const unsigned int &instId, const QSet<quint64> &keys);
    /// Both return false if the call comes to nothing, so that nothing is saved.
    bool changeInstance(Change change, Table &table, unsigned int instId,
                        const QSet<quint64> &keys);
    bool changeResource(Change change, Table &table, quint64 key,
                        const QSet<unsigned int> &instIds);
    void clear(Table &table, unsigned int instId);

    template <typename Result, typename Argument>
    Result ask(Result (Table::*question)(Argument) const, const Table &table,
               std::decay_t<Argument> argument) const
    {
        const QMutexLocker lock(&mutex);
        return (table.*question)(argument);
    }

    struct Place
    {
        const char *jsonKey;
        Table Private::*table;
    };
    static const Place places[3];

    Table custom;
    Table remoteDefault;
    Table ignored;
    ResourceConfigFile file;
    mutable QMutex mutex; ///< guards all of the above
};

const GameResConfig::Private::Place GameResConfig::Private::places[3] = {
    {"config", &Private::custom},
    {"defaultCfg", &Private::remoteDefault},
    {"unsetDefaultCfg", &Private::ignored},
};

void GameResConfig::Private::read(const QJsonObject &object)
{
    for (const Place &place : places) {
        (this->*place.table).clearAll();
        (this->*place.table)
            .fromJson(
                object[QLatin1String(place.jsonKey)].toArray(), QStringLiteral("instId"),
                [](const QString &text) { return static_cast<unsigned int>(text.toInt()); },
                QStringLiteral("resource id list is empty and continue !"));
    }
}

QJsonObject GameResConfig::Private::toJson() const
{
    QJsonObject object;
    for (const Place &place : places) {
        object.insert(
            QLatin1String(place.jsonKey),
            (this->*place.table).toJson(QStringLiteral("instId"), [](const unsigned int &instId) {
                return QString::number(instId);
            }));
    }
    return object;
}

bool GameResConfig::Private::changeInstance(Change change, Table &table, unsigned int instId,
                                            const QSet<quint64> &keys)
{
    if (instId == 0) {
        Log::critical(QStringLiteral("invalid game instance id !"));
        return false;
    }
    const QMutexLocker lock(&mutex);
    (table.*change)(instId, validKeys(keys, QStringLiteral("invalid resource id !")));
    return true;
}

bool GameResConfig::Private::changeResource(Change change, Table &table, quint64 key,
                                            const QSet<unsigned int> &instIds)
{
    if (key == 0) {
        Log::critical(QStringLiteral("invalid resource id!"));
        return false;
    }
    const QMutexLocker lock(&mutex);
    for (const unsigned int instId : instIds) {
        if (instId == 0)
            Log::critical(QStringLiteral("invalid game instance id!"));
        else
            (table.*change)(instId, {key});
    }
    return true;
}

void GameResConfig::Private::clear(Table &table, unsigned int instId)
{
    const QMutexLocker lock(&mutex);
    if (instId == allInstances)
        table.clearAll();
    else
        table.clear(instId);
}

GameResConfig::GameResConfig() : d(std::make_unique<Private>()) {}

GameResConfig::~GameResConfig()
{
    save();
}

GameResConfig *GameResConfig::GetInstance()
{
    return LazySingleton<GameResConfig>::get();
}

bool GameResConfig::initialize(const QString &path)
{
    {
        const QMutexLocker lock(&d->mutex);
        d->file = {};
        d->file.path = path;
    }
    if (!path.isEmpty())
        return load();
    Log::critical(QStringLiteral("game resource config file should not be empty !"));
    return false;
}

bool GameResConfig::load()
{
    const QMutexLocker lock(&d->mutex);
    if (!d->file.hasPath())
        return false;
    QJsonObject object;
    switch (d->file.read(object)) {
    case ResourceConfigFile::Outcome::Missing:
        return true;
    case ResourceConfigFile::Outcome::Unreadable:
        Log::warning(QStringLiteral("Couldn't open game resource config file."));
        return false;
    case ResourceConfigFile::Outcome::Read:
        break;
    }
    d->read(object);
    Log::debug(QStringLiteral("load game instance config of resource finished."));
    return true;
}

bool GameResConfig::save()
{
    const QMutexLocker lock(&d->mutex);
    if (!d->file.hasPath())
        return false;
    const QJsonObject object = d->toJson();
    if (!FS::ensureFilePathExists(d->file.path)) {
        Log::warning(QLatin1String("Couldn't create mid dir for file:") % d->file.path);
        return false;
    }
    if (d->file.write(object))
        return true;
    Log::warning(QStringLiteral("Couldn't open save file."));
    return false;
}

void GameResConfig::setGameInstanceConfig(unsigned int instId, const QSet<quint64> &keys, bool save)
{
    if (d->changeInstance(&Table::add, d->custom, instId, keys) && save)
        this->save();
}

void GameResConfig::setResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save)
{
    if (d->changeResource(&Table::add, d->custom, key, instIds) && save)
        this->save();
}

void GameResConfig::unSetGameInstanceConfig(unsigned int instId, const QSet<quint64> &keys,
                                            bool save)
{
    if (d->changeInstance(&Table::remove, d->custom, instId, keys) && save)
        this->save();
}

void GameResConfig::unSetResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save)
{
    if (d->changeResource(&Table::remove, d->custom, key, instIds) && save)
        this->save();
}

void GameResConfig::setIgnoredRemoteGameInstCfg(unsigned int instId, const QSet<quint64> &keys,
                                                bool save)
{
    if (d->changeInstance(&Table::add, d->ignored, instId, keys) && save)
        this->save();
}

void GameResConfig::setIgnoredResourceConfig(quint64 key, const QSet<unsigned int> &instIds,
                                             bool save)
{
    if (d->changeResource(&Table::add, d->ignored, key, instIds) && save)
        this->save();
}

void GameResConfig::unSetIgnoredRemoteGameInstCfg(unsigned int instId, const QSet<quint64> &keys,
                                                  bool save)
{
    if (d->changeInstance(&Table::remove, d->ignored, instId, keys) && save)
        this->save();
}

void GameResConfig::unSetIgnoredResourceConfig(quint64 key, const QSet<unsigned int> &instIds,
                                               bool save)
{
    if (d->changeResource(&Table::remove, d->ignored, key, instIds) && save)
        this->save();
}

void GameResConfig::updateGameInstConfigFromRemote(unsigned int instId, const QSet<quint64> &keys,
                                                   bool)
{
    const QMutexLocker lock(&d->mutex);
    d->remoteDefault.replace(instId, keys);
    d->ignored.keepOnly(instId, keys);
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
    const QMutexLocker lock(&d->mutex);
    d->custom.removeEverywhere(ResourceKey::pack(id, static_cast<ResType>(type)));
}
