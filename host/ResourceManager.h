#pragma once

#include <QHash>

#include "core/launch/IResManager.h"
#include "core/resources/ResObj.h"

/// The host's table of resources, from which launch steps get theirs.
///
/// Main thread. Every object that a step gets is being installed: install() joins what runs, and
/// tells its end by signal after the step has connected, also for what is up to date.
class ResourceManager final : public IResManager
{
public:
    std::shared_ptr<ResObj> knownRes(quint32 id, quint32 type) override;
    std::shared_ptr<ResObj> resFromInfo(quint32 id, quint32 type, const QJsonObject &info) override;
    std::shared_ptr<ResObj> resOf(quint32 id, quint32 type) override;

    /// Takes in a resource that lies on disk, unless its record is broken.
    void addFromDisk(quint32 id, quint32 type);

    QList<std::shared_ptr<ResObj>> all() const { return m_table.values(); }

private:
    QHash<quint64, std::shared_ptr<ResObj>> m_table;
};
