#pragma once

#include <memory>

#include "base/RivetCoreExport.h"
#include "core/foundation/IMCSettings.h"

class QSettings;

/// The store behind the default QSettings of the application: the host's organisation and
/// application names and default format say where it lies.
///
/// An object is for one thread; all show the same values. Environment owns that of the main thread.
/// Nothing is reported: a store that can't be written keeps its values in memory.
class RIVETCORE_EXPORT MCSettings : public IMCSettings
{
public:
    MCSettings();
    virtual ~MCSettings();

    /// Sets missing defaults, decides where the game data directory lies (the key "DataPath"),
    /// takes over "ChangedDataDir" or drops it, and copies "OPTION/channel" of config.ini beside
    /// the host into the store. May make directories and ask every drive, so it may block.
    void validateSettingValues() override;

    QVariant value(const QString &key, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    void save() override;

protected:
    /// True if @p path is a directory or could be made one. A relative path starts from the
    /// application directory. Does not tell whether it can be written.
    bool validateGamePath(const QString &path);

    /// "./rivet_game" if that lies beside the host, else a folder on the fixed drive with the most
    /// free space that can be written, else one at the user's application data.
    QString autoSelectNewGamePath();

    /// Makes the directory @p path, which stays, and tries whether a file can be made in it.
    bool DirLegitimacyVerify(const QString &path);

private:
    void setMissing(const QString &key, const QVariant &value);
    void validateDataPath();
    QString channelOfThisCopy() const;

    std::unique_ptr<QSettings> m_store;
};
