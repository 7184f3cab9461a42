#include "base/RivetCoreAtExitManagerUtil.h"

#include "base/AtExitManager.h"

RivetCoreAtExitManagerUtil::RivetCoreAtExitManagerUtil()
    : m_manager(std::make_unique<AtExitManager>())
{
}

RivetCoreAtExitManagerUtil::~RivetCoreAtExitManagerUtil() = default;
