#pragma once

#include <memory>

#include <QObject>
#include <QSet>
#include <QString>

#include "base/RivetCoreExport.h"

template <typename Type>
class LazySingleton;

/// Which resources belong to which map of an online server: as GameResConfig, with the name of the
/// map in the place of the instance id, and beside it the defaults that the server list gives.
///
/// A singleton until the at-exit manager runs, when it saves. The host calls initialize() once.
/// Every call is safe from any thread; one with @p save true blocks until the file is written, and
/// a failed save is a line on the log. A resource key of 0 and an empty name are refused with a
/// line on the log.
class RIVETCORE_EXPORT OnlineMapResConfig : public QObject
{
    Q_OBJECT
public:
    ~OnlineMapResConfig() override;

    static OnlineMapResConfig *GetInstance();

    /// As GameResConfig::initialize(), but for the folder of the file: it is never made, so without
    /// it no save succeeds.
    bool initialize(const QString &path);

    /// What the user chose.
    void setCustomMapResConfig(const QString &mapName, const QSet<quint64> &keys, bool save);
    void unSetCustomMapResConfig(const QString &mapName, const QSet<quint64> &keys, bool save);

    /// Defaults that the user switched off.
    void setIgnoredRemoteMapCfg(const QString &mapName, const QSet<quint64> &keys, bool save);
    void unSetIgnoredRemoteMapCfg(const QString &mapName, const QSet<quint64> &keys, bool save);

    /// Replaces the defaults of the map. Ignored ones that are no default any more are forgotten.
    /// Reaches the file with the next save, whatever @p save says.
    void updateMapConfigFromRemote(const QString &mapName, const QSet<quint64> &keys, bool save);

    /// Replaces what the server list gives for the map; reaches the file with the next save.
    void SetSrvDefaultResConfig(const QString &mapName, const QSet<quint64> &keys);
    QSet<quint64> GetSrvDefaultResConfig(const QString &mapName) const;

    QSet<quint64> getCustomMapCfgList(const QString &mapName) const;
    QSet<quint64> getRemoteDefaultMapCfgList(const QString &mapName) const;
    QSet<quint64> getIgnoredRemoteDefaultMapCfgList(const QString &mapName) const;

    /// Empty the set of one map, or with an empty name of all. They reach the file with the next
    /// save.
    void clearCustomConfig(const QString &mapName);
    void clearDefalutConfig(const QString &mapName);
    void clearUnSetDefaultConfig(const QString &mapName);

public Q_SLOTS:
    /// Takes the resource from every custom set; reaches the file with the next save.
    void removeOneResFormConfig(unsigned int id, unsigned int type);

private:
    friend class LazySingleton<OnlineMapResConfig>;
    OnlineMapResConfig();

    struct Private;
    const std::unique_ptr<Private> d;
};
