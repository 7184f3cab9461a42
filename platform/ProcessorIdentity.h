#pragma once

#include <QByteArray>

namespace platform {

/// Vendor, signature and brand of the processor, as CPUID tells them.
QByteArray readProcessorIdentity();

/// True if the operating system is a 64-bit one. One implementation for each system.
bool isSystem64Bit();

} // namespace platform
