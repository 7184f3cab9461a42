#include "support/coresupport/GlobalDebugOptions.h"

GlobalDebugOptions g_GlobalDebugOptions;
