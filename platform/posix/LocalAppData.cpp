#include "platform/LocalAppData.h"

#include <QStandardPaths>

namespace platform {

namespace {

class DataHome final : public LocalAppData
{
public:
    QString directory() const override
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    }
};

} // namespace

const LocalAppData &LocalAppData::ofSystem()
{
    static const DataHome folder;
    return folder;
}

} // namespace platform
