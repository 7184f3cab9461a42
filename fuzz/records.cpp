#include "fuzz/Fuzz.h"

#include "core/resources/ResInfo.h"
#include "core/resources/ResInfoJson.h"

namespace {

struct Record : ResInfo
{
    bool loadFromCache() override { return false; }
    bool loadFromRemote(const QJsonObject &object) override
    {
        return ResInfoJson::read(object, *this);
    }
};

bool isPicture(const ResInfo &record)
{
    return record.resType() == ResTypeSkins || record.resType() == ResTypeCloaks;
}

} // namespace

/// Records of resources: replies of the service and .inf files.
void fuzz::takeInput(const QByteArray &input)
{
    Record record, copy;
    if (!record.loadFromRemote(objectIn(input)))
        return;
    require(record.resId() != 0 && record.resType() != 0, "a record tells which it is");
    require(!record.name().isEmpty(), "a record has a name");
    require(isPicture(record) || !record.downloadUrl().isEmpty(), "a record has a source");

    const QJsonObject written = record.toJsonObj();
    require(copy.loadFromRemote(written), "a written record is read back");
    copy.setThemeId(record.themeId());
    copy.setDownloadUrl(record.downloadUrl()); // pictures don't keep it
    require(copy.toJsonObj() == written, "a record is read back as it was written");
}
