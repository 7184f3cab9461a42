#pragma once

#include <QObject>

#include "support/coresupport/CoreSupportExport.h"

/// What the launcher wants to know of the operating system.
class CORESUPPORT_EXPORT CSystemInfo : public QObject
{
    Q_OBJECT
public:
    explicit CSystemInfo(QObject *parent = nullptr);
    ~CSystemInfo() override;

    /// True on a 64-bit system, also when this process is a 32-bit one.
    bool IsOs64() const;
};
