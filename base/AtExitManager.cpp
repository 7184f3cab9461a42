#include "base/AtExitManager.h"

#include <atomic>

#include <QtGlobal>

namespace {

std::atomic<AtExitManager *> topManager{nullptr};

} // namespace

AtExitManager::AtExitManager() : m_previous(topManager.load())
{
    topManager.store(this);
}

AtExitManager::~AtExitManager()
{
    // Still the top manager meanwhile, so that what a call-back registers runs here as well.
    runAll();
    topManager.store(m_previous);
}

void AtExitManager::RegisterCallback(Callback callback, void *param)
{
    AtExitManager *const top = topManager.load();
    if (!top)
        qFatal("Tried to RegisterCallback without an AtExitManager");
    top->push({callback, param});
}

void AtExitManager::ProcessCallbacksNow()
{
    AtExitManager *const top = topManager.load();
    if (!top)
        qFatal("Tried to ProcessCallbacksNow without an AtExitManager");
    top->runAll();
}

void AtExitManager::push(const Closure &closure)
{
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_closures.push_back(closure);
}

void AtExitManager::runAll()
{
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    while (!m_closures.empty()) {
        const Closure newest = m_closures.back();
        m_closures.pop_back();
        newest.callback(newest.param);
    }
}
