#pragma once

#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"

/// Reads and sets the name server of this machine. Any thread; both calls block.
class RIVETCORE_EXPORT DnsHelper : public QObject
{
    Q_OBJECT
public:
    explicit DnsHelper(QObject *parent = nullptr);

    /// Sets @p dns as the name server of every network interface that runs, one after another, for
    /// at most ten seconds each. Needs the rights of an administrator; nothing tells whether it
    /// worked. Always true.
    bool SetDns(const QString &dns);

    /// The address of the first name server; empty if there is none or it can't be told.
    QString GetDns();
};
