#include "platform/ProcessorIdentity.h"

#include <cpuid.h>

#include <QtEndian>

namespace platform {

namespace {

struct Registers
{
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
};

Registers cpuid(unsigned leaf)
{
    Registers r;
    // A leaf that the processor does not have leaves the registers at 0.
    __get_cpuid(leaf, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

void append(QByteArray &out, unsigned value)
{
    const quint32 little = qToLittleEndian(static_cast<quint32>(value));
    out.append(reinterpret_cast<const char *>(&little), sizeof little);
}

} // namespace

QByteArray readProcessorIdentity()
{
    QByteArray identity;
    const Registers vendor = cpuid(0);
    append(identity, vendor.ebx);
    append(identity, vendor.edx);
    append(identity, vendor.ecx);
    // Of leaf 1 only the signature is the same on every core and under every system: the other
    // registers hold the number of the answering core and what the system has switched on.
    append(identity, cpuid(1).eax);
    for (unsigned leaf = 0x80000002; leaf <= 0x80000004; ++leaf) {
        const Registers brand = cpuid(leaf);
        append(identity, brand.eax);
        append(identity, brand.ebx);
        append(identity, brand.ecx);
        append(identity, brand.edx);
    }
    return identity;
}

} // namespace platform
