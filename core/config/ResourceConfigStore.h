#pragma once

#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>

#include "core/config/OwnedResources.h"
#include "core/config/ResourceConfigFile.h"
#include "support/jsonfskit/FS.h"

/// What the resource configurations of game instances and of maps have in common: their tables,
/// the file, and the lock over both.
///
/// Any thread.
template <typename Owner>
class ResourceConfigStore
{
public:
    using Table = OwnedResources<Owner>;
    using Keys = typename Table::Keys;
    using Change = void (Table::*)(const Owner &owner, const Keys &keys);

    /// Where they differ. Lines go to the log.
    struct Kind
    {
        QString ownerName; ///< the key of an owner in the file
        std::function<Owner(const QString &)> ownerIn;
        std::function<QString(const Owner &)> textOf;
        Owner everyOwner{};       ///< in the place of an owner, for clear()
        bool makesFolder = false; ///< before a save
        QString noPathLine;
        QString unreadableLine;
        QString emptyEntryLine; ///< may be empty
        QString loadedLine;
    };

    explicit ResourceConfigStore(Kind kind) : m_kind(std::move(kind)) {}

    /// Sets the file and loads it. False without a path, and if the file can't be read; one that is
    /// not there is fine.
    bool initialize(const QString &path)
    {
        const QMutexLocker lock(&m_mutex);
        m_file = {};
        m_file.path = path;
        if (!path.isEmpty())
            return load();
        Log::critical(m_kind.noPathLine);
        return false;
    }

    bool save()
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_file.hasPath())
            return false;
        if (m_kind.makesFolder && !FS::ensureFilePathExists(m_file.path)) {
            Log::warning(QLatin1String("Couldn't create mid dir for file:") % m_file.path);
            return false;
        }
        const QFileInfo folder(QFileInfo(m_file.path).path());
        if (folder.isDir() && m_file.write(toJson()))
            return true;
        Log::warning(QStringLiteral("Couldn't open save file."));
        return false;
    }

    /// Applies @p change to @p table and saves if asked to. An owner that is none is refused with
    /// @p refusal, and nothing is saved.
    void apply(Change change, Table &table, const Owner &owner, const Keys &keys, bool save,
               const QString &refusal)
    {
        if (owner == Owner()) {
            Log::critical(refusal);
            return;
        }
        {
            const QMutexLocker lock(&m_mutex);
            const QString line = QStringLiteral("invalid resource id !");
            (table.*change)(owner, OwnedResourceLists::validKeys(keys, line));
        }
        if (save)
            this->save();
    }

    /// Replaces the defaults of @p owner; ignored ones that are no default any more are forgotten.
    void updateFromRemote(const Owner &owner, const Keys &keys)
    {
        const QMutexLocker lock(&m_mutex);
        remoteDefault.replace(owner, keys);
        ignored.keepOnly(owner, keys);
    }

    void clear(Table &table, const Owner &owner)
    {
        const QMutexLocker lock(&m_mutex);
        if (owner == m_kind.everyOwner)
            table.clearAll();
        else
            table.clear(owner);
    }

    /// Takes the resource from every custom set.
    void removeOneResource(unsigned int id, unsigned int type)
    {
        const QMutexLocker lock(&m_mutex);
        custom.removeEverywhere(ResourceKey::pack(id, static_cast<ResType>(type)));
    }

    template <typename Result, typename Argument>
    Result ask(Result (Table::*question)(Argument) const, const Table &table,
               const std::decay_t<Argument> &argument) const
    {
        const QMutexLocker lock(&m_mutex);
        return (table.*question)(argument);
    }

    Table custom;
    Table remoteDefault;
    Table ignored;

protected:
    enum class BeforeLoad { Cleared, Kept };
    struct Place
    {
        const char *jsonKey;
        Table &table;
        BeforeLoad beforeLoad;
    };

    void addPlace(const Place &place) { m_places.push_back(place); }
    QMutex &mutex() const { return m_mutex; }

private:
    bool load()
    {
        QJsonObject object;
        switch (m_file.read(object)) {
        case ResourceConfigFile::Outcome::Missing:
            return true;
        case ResourceConfigFile::Outcome::Unreadable:
            Log::warning(m_kind.unreadableLine);
            return false;
        case ResourceConfigFile::Outcome::Read:
            break;
        }
        for (const Place &place : m_places) {
            if (place.beforeLoad == BeforeLoad::Cleared)
                place.table.clearAll();
            place.table.fromJson(object[QLatin1String(place.jsonKey)].toArray(), m_kind.ownerName,
                                 m_kind.ownerIn, m_kind.emptyEntryLine);
        }
        Log::debug(m_kind.loadedLine);
        return true;
    }

    QJsonObject toJson() const
    {
        QJsonObject object;
        for (const Place &place : m_places)
            object.insert(QLatin1String(place.jsonKey),
                          place.table.toJson(m_kind.ownerName, m_kind.textOf));
        return object;
    }

    const Kind m_kind;
    std::vector<Place> m_places{{"config", custom, BeforeLoad::Cleared},
                                {"defaultCfg", remoteDefault, BeforeLoad::Cleared},
                                {"unsetDefaultCfg", ignored, BeforeLoad::Cleared}};
    ResourceConfigFile m_file;
    mutable QMutex m_mutex; ///< guards the tables and the file
};
