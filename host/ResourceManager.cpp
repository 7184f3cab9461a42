#include "host/ResourceManager.h"

namespace {

quint64 keyOf(quint32 id, quint32 type)
{
    return ResourceKey::pack(id, static_cast<ResType>(type));
}

std::shared_ptr<ResObj> makeObject(quint32 id, quint32 type)
{
    return std::make_shared<ResObj>(id, static_cast<ResType>(type), nullptr);
}

} // namespace

std::shared_ptr<ResObj> ResourceManager::knownRes(quint32 id, quint32 type)
{
    return m_table.value(keyOf(id, type));
}

std::shared_ptr<ResObj> ResourceManager::resFromInfo(quint32 id, quint32 type,
                                                     const QJsonObject &info)
{
    std::shared_ptr<ResObj> &object = m_table[keyOf(id, type)];
    if (!object) {
        object = makeObject(id, type);
        object->loadFromRemote(info);
    }
    object->install();
    return object;
}

std::shared_ptr<ResObj> ResourceManager::resOf(quint32 id, quint32 type)
{
    std::shared_ptr<ResObj> &object = m_table[keyOf(id, type)];
    if (!object) {
        object = makeObject(id, type);
        object->loadFromCache();
    }
    object->install();
    return object;
}

void ResourceManager::addFromDisk(quint32 id, quint32 type)
{
    const auto object = makeObject(id, type);
    if (object->loadFromCache())
        m_table.insert(keyOf(id, type), object);
}
