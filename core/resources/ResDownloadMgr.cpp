#include "core/resources/ResDownloadMgr.h"

#include <new>

#include <QNetworkAccessManager>

#include "base/LazySingleton.h"
#include "core/foundation/NetworkPolicy.h"
#include "core/resources/ResDownload.h"
#include "support/jsonfskit/Log.h"

ResDownloadMgr::ResDownloadMgr(QObject *parent) : QObject(parent)
{
    try {
        m_manager = std::make_shared<QNetworkAccessManager>();
    } catch (const std::bad_alloc &) {
        Log::critical(QStringLiteral("out of memory."));
        return;
    }
    NetworkPolicy::apply(*m_manager);
}

ResDownloadMgr::~ResDownloadMgr() = default;

ResDownloadMgr *ResDownloadMgr::GetInstance()
{
    return LazySingleton<ResDownloadMgr>::get();
}

std::shared_ptr<ResDownload> ResDownloadMgr::resDownloadInstance(uint id, ResType type,
                                                                 const QUrl &url)
{
    std::shared_ptr<ResDownload> &download = m_downloads[ResourceKey::pack(id, type)];
    if (download) {
        download->setUrl(url);
        return download;
    }
    // Not make_shared, for the constructor is open to this class alone.
    download.reset(new ResDownload(id, type, url, nullptr));
    download->SetNetworkAccessManager(m_manager);
    return download;
}

bool ResDownloadMgr::deleteDownloadInstance(uint id, ResType type)
{
    if (const auto download = m_downloads.value(ResourceKey::pack(id, type)))
        download->removeFile();
    return true;
}
