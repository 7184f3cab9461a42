#pragma once

#include "support/coresupport/CoreSupportExport.h"

/// Switches of a build. A host may set them before the first launch; main thread only.
class CORESUPPORT_EXPORT GlobalDebugOptions
{
public:
    /// The deployment folder is checked and repaired when other resources are ready.
    bool deployFolderCheck = true;
    /// The files of a deployed archive are checked against their recorded sums.
    bool deployChecksumCheck = true;
    /// Online servers whose flag is not zero are kept in the list, not skipped.
    bool onlineAddressFilter = false;
};

extern CORESUPPORT_EXPORT GlobalDebugOptions g_GlobalDebugOptions;
