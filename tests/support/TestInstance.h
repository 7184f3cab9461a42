#pragma once

#include "core/launch/MCInstanceObj.h"

/// The instance 9 of a host, which only tells where it lies and what it runs.
struct TestInstance : MCInstanceObj
{
    explicit TestInstance(const QString &folder,
                          const QString &clientVersion = QStringLiteral("1.8"))
        : dir(folder), version(clientVersion)
    {
    }
    quint32 instanceId() override { return 9; }
    QString instanceName() override { return QStringLiteral("test"); }
    QString clientVersion() override { return version; }
    QString instanceDir() override { return dir; }
    void start(QJsonObject) override {}
    void stop() override {}

    QString dir;
    const QString version;
};
