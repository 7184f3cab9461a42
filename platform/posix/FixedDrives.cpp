#include "platform/FixedDrives.h"

namespace platform {

namespace {

class NoDrives final : public FixedDrives
{
public:
    QVector<FixedDrive> table() const override { return {}; }
};

} // namespace

const FixedDrives &FixedDrives::ofSystem()
{
    static const NoDrives drives;
    return drives;
}

} // namespace platform
