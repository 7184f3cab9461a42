#include "platform/FixedDrives.h"

#include <windows.h>

namespace platform {

namespace {

class LetteredDrives final : public FixedDrives
{
public:
    QVector<FixedDrive> table() const override
    {
        QVector<FixedDrive> drives;
        const DWORD mask = GetLogicalDrives();
        wchar_t root[] = L"A:\\";
        for (DWORD bit = 0; bit < 26; ++bit, ++root[0]) {
            ULARGE_INTEGER freeBytesAvailable{};
            if ((mask & (DWORD(1) << bit)) && GetDriveTypeW(root) == DRIVE_FIXED &&
                GetDiskFreeSpaceExW(root, &freeBytesAvailable, nullptr, nullptr))
                drives.append({QString::fromWCharArray(root), freeBytesAvailable.QuadPart});
        }
        return drives;
    }
};

} // namespace

const FixedDrives &FixedDrives::ofSystem()
{
    static const LetteredDrives drives;
    return drives;
}

} // namespace platform
