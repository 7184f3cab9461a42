#pragma once

#include <memory>

#include <QObject>
#include <QSet>
#include <QString>

#include "base/RivetCoreExport.h"

template <typename Type>
class LazySingleton;

/// Which resources belong to which game instance: what the user chose (custom), what the service
/// says belongs to it (remote default), and which of those defaults the user switched off
/// (ignored).
///
/// A singleton until the at-exit manager runs, when it saves. The host calls initialize() once.
/// Every call is safe from any thread; one with @p save true blocks until the file is written, and
/// a failed save is a line on the log. A resource is named by its key (ResourceKey); a key of 0 and
/// an instance id of 0 are refused with a line on the log.
class RIVETCORE_EXPORT GameResConfig : public QObject
{
    Q_OBJECT
public:
    /// In the place of an instance id, for the clear operations.
    static constexpr unsigned int allInstances = 0xFFFFFFFF;

    ~GameResConfig() override;

    static GameResConfig *GetInstance();

    /// Sets the file and loads it; a file that is not there yet is fine, and a damaged one counts
    /// as empty and is set aside before the first save. False if @p path is empty or the file can't
    /// be read.
    bool initialize(const QString &path);

    /// @name What the user chose
    /// @{
    void setGameInstanceConfig(unsigned int instId, const QSet<quint64> &keys, bool save);
    void setResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save);
    void unSetGameInstanceConfig(unsigned int instId, const QSet<quint64> &keys, bool save);
    void unSetResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save);
    /// @}

    /// @name Defaults that the user switched off
    /// @{
    void setIgnoredRemoteGameInstCfg(unsigned int instId, const QSet<quint64> &keys, bool save);
    void setIgnoredResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save);
    void unSetIgnoredRemoteGameInstCfg(unsigned int instId, const QSet<quint64> &keys, bool save);
    void unSetIgnoredResourceConfig(quint64 key, const QSet<unsigned int> &instIds, bool save);
    /// @}

    /// Replaces the defaults of the instance. Ignored ones that are no default any more are
    /// forgotten. Reaches the file with the next save, whatever @p save says.
    void updateGameInstConfigFromRemote(unsigned int instId, const QSet<quint64> &keys, bool save);

    QSet<quint64> getCustomGameInstCfgList(unsigned int instId) const;
    QSet<quint64> getRemoteDefaultGameInstCfgList(unsigned int instId) const;
    QSet<quint64> getIgnoredRemoteDefaultGameInstCfgList(unsigned int instId) const;

    /// The instances that have the resource.
    QSet<unsigned int> getResourceConfigList(quint64 key) const;
    QSet<unsigned int> getRemoteDefaultConfigList(quint64 key) const;
    QSet<unsigned int> getIgnoredRemoteDefaultCfgList(quint64 key) const;

    /// Empty the set of one instance, or of allInstances. They reach the file with the next save.
    void clearCustomConfig(unsigned int instId);
    void clearDefalutConfig(unsigned int instId);
    void clearUnSetDefaultConfig(unsigned int instId);

public Q_SLOTS:
    /// Takes the resource from every custom set; reaches the file with the next save.
    void removeOneResFormConfig(unsigned int id, unsigned int type);

private:
    friend class LazySingleton<GameResConfig>;
    GameResConfig();

    struct Private;
    const std::unique_ptr<Private> d;
};
