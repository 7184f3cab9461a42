#include "platform/Memory.h"

#include <vector>

#include <windows.h>

#include <psapi.h>

#include "platform/win32/Handle.h"

namespace platform {

namespace {

/// Ids of all processes of the system; the table grows until it holds them all.
std::vector<DWORD> processIds()
{
    std::vector<DWORD> ids(1024);
    for (;;) {
        const DWORD room = static_cast<DWORD>(ids.size() * sizeof(DWORD));
        DWORD used = 0;
        if (!EnumProcesses(ids.data(), room, &used))
            return {};
        if (used < room) {
            ids.resize(used / sizeof(DWORD));
            return ids;
        }
        ids.resize(ids.size() * 2);
    }
}

} // namespace

void trimMemory()
{
    for (const DWORD id : processIds()) {
        // Processes of other users and of the system refuse; they are left alone.
        const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_SET_QUOTA, FALSE, id));
        if (process.isValid())
            EmptyWorkingSet(process.get());
    }
}

} // namespace platform
