#pragma once

#include <QHash>

#include "core/launch/IResManager.h"
#include "core/resources/ResObj.h"

/// A host's table of resources.
class ResManager final : public IResManager
{
public:
    std::shared_ptr<ResObj> knownRes(quint32 id, quint32 type) override
    {
        return table.value(ResourceKey::pack(id, ResType(type)));
    }
    std::shared_ptr<ResObj> resFromInfo(quint32 id, quint32 type, const QJsonObject &info) override
    {
        return installed(id, type, [&](ResObj &object) { object.loadFromRemote(info); });
    }
    std::shared_ptr<ResObj> resOf(quint32 id, quint32 type) override
    {
        return installed(id, type, [](ResObj &object) { object.loadFromCache(); });
    }

    QHash<quint64, std::shared_ptr<ResObj>> table;

private:
    template <typename Load>
    std::shared_ptr<ResObj> installed(quint32 id, quint32 type, const Load &load)
    {
        auto &object = table[ResourceKey::pack(id, ResType(type))];
        if (!object) {
            object = std::make_shared<ResObj>(id, ResType(type), nullptr);
            load(*object);
        }
        object->install();
        return object;
    }
};
