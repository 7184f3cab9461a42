#pragma once

#include "core/config/ConfigAbstract.h"

/// The smallest configuration object: it has nothing to load, to save or to validate.
class RIVETCORE_EXPORT DemoConfig : public ConfigAbstract
{
    Q_OBJECT
public:
    explicit DemoConfig(QObject *parent = nullptr);
    ~DemoConfig() override;

    bool load() override;
    bool save() override;
    void validateData() override;
};
