#pragma once

#include <memory>

#include <QHash>
#include <QObject>
#include <QUrl>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"

class QNetworkAccessManager;
class ResDownload;

/// Hands out one transfer for each resource, however many ask for it.
///
/// A singleton until the at-exit manager runs; main thread only. Its transfers share one network
/// manager, and so one pool of connections, apart from that of Environment. It accepts any
/// certificate and logs its errors.
class RIVETCORE_EXPORT ResDownloadMgr : public QObject
{
    Q_OBJECT
public:
    explicit ResDownloadMgr(QObject *parent = nullptr);
    ~ResDownloadMgr() override;

    static ResDownloadMgr *GetInstance();

    /// The transfer of the resource, made if there is none; its next start fetches @p url. The
    /// manager keeps it until the end.
    std::shared_ptr<ResDownload> resDownloadInstance(uint id, ResType type, const QUrl &url);

    /// Ends the transfer of the resource, if there is one, and removes its file with all partial
    /// data. True always.
    bool deleteDownloadInstance(uint id, ResType type);

private:
    QHash<quint64, std::shared_ptr<ResDownload>> m_downloads; ///< by resource key
    std::shared_ptr<QNetworkAccessManager> m_manager;
};
