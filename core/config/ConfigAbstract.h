#pragma once

#include <QObject>

#include "base/RivetCoreExport.h"

/// Base of configuration objects that are loaded once. Main thread only.
class RIVETCORE_EXPORT ConfigAbstract : public QObject
{
    Q_OBJECT
public:
    explicit ConfigAbstract(QObject *parent = nullptr);
    ~ConfigAbstract() override;

    virtual bool load() = 0;
    virtual bool save() = 0;
    virtual void validateData() = 0;

    bool isLoaded() const { return m_isLoaded; }
    /// The first call emits loadFinished().
    void setLoaded();

Q_SIGNALS:
    void loadFinished();

private:
    bool m_isLoaded = false;
};
