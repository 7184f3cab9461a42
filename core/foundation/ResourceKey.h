#pragma once

#include <QtGlobal>

/// What a resource is. The numbers stand on disk and come from the service; a value that is not
/// listed may arrive from either, and 0 is no type.
enum ResType : quint32 {
    ResTypeMods = 1,
    ResTypeSaves = 2,
    ResTypeResourcePacks = 3,
    ResTypeJava = 4,
    ResTypeSkins = 5,
    ResTypeCloaks = 6,
    ResTypeOther = 7,
    ResTypeShaders = 8,
    ResTypeGame = 101,
};

/// Id and type of a resource as one number: the id in the low 32 bits, the type in the high ones.
/// The key 0 is invalid, and so is an id of 0.
namespace ResourceKey {

constexpr quint64 pack(quint32 id, ResType type)
{
    return (quint64(type) << 32) | id;
}

constexpr quint32 idOf(quint64 key)
{
    return static_cast<quint32>(key);
}

constexpr ResType typeOf(quint64 key)
{
    return static_cast<ResType>(key >> 32);
}

} // namespace ResourceKey
