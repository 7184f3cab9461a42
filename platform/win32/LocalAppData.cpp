#include "platform/LocalAppData.h"

#include <windows.h>

#include <shlobj.h>

namespace platform {

namespace {

class LocalAppDataFolder final : public LocalAppData
{
public:
    QString directory() const override
    {
        wchar_t path[MAX_PATH] = L"";
        const HRESULT result =
            SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path);
        return result == S_OK ? QString::fromWCharArray(path) : QString();
    }
};

} // namespace

const LocalAppData &LocalAppData::ofSystem()
{
    static const LocalAppDataFolder folder;
    return folder;
}

} // namespace platform
