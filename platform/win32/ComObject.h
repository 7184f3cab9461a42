#pragma once

#include <objbase.h>
#include <oleauto.h>

#include <memory>

#include "platform/Firewall.h"

namespace platform {

struct ComRelease
{
    void operator()(IUnknown *object) const { object->Release(); }
};

/// Owns one reference to an object of COM.
template <typename Interface>
using ComObject = std::unique_ptr<Interface, ComRelease>;

inline ComResult resultOf(HRESULT result)
{
    return static_cast<ComResult>(result);
}

/// Asks for an object by @p call, which takes a place for the pointer, and puts it into @p object
/// wrapped as a @p Wrapper. A call that succeeds without an object counts as failed.
template <typename Wrapper, typename Interface, typename Base, typename Call>
ComResult fetch(std::unique_ptr<Base> &object, const Call &call)
{
    Interface *pointer = nullptr;
    const HRESULT result = call(&pointer);
    ComObject<Interface> owned(pointer);
    if (FAILED(result))
        return resultOf(result);
    if (!owned)
        return resultOf(E_POINTER);
    object = std::make_unique<Wrapper>(std::move(owned));
    return resultOf(result);
}

/// The same by making an object of the class @p Class inside this process.
template <typename Wrapper, typename Class, typename Interface, typename Base>
ComResult create(std::unique_ptr<Base> &object)
{
    return fetch<Wrapper, Interface>(object, [](Interface **pointer) {
        return CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                reinterpret_cast<void **>(pointer));
    });
}

} // namespace platform
