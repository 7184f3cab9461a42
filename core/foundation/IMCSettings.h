#pragma once

#include <QString>
#include <QVariant>

/// The launcher's persistent key-value store. Main thread only.
class IMCSettings
{
public:
    /// Brings the store into a sound state. The host calls it once at start, before anything asks
    /// for the game data directory.
    virtual void validateSettingValues() = 0;

    virtual QVariant value(const QString &key, const QVariant &defaultValue) = 0;

    /// The value is on disk after save(), or when the event loop comes round to it.
    virtual void setValue(const QString &key, const QVariant &value) = 0;

    virtual void remove(const QString &key) = 0;

    /// Writes changes to disk and reads those of other programs; blocks until that is done.
    virtual void save() = 0;

protected:
    /// Nobody owns a store through this interface.
    ~IMCSettings() = default;
};
