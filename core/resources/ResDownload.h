#pragma once

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"
#include "support/transferservice/FileDownload.h"

/// The transfer of one resource into "<download directory of its type>/<id>".
///
/// Made and kept by ResDownloadMgr, one for each resource; everybody who wants the resource listens
/// to this one. Main thread only.
class RIVETCORE_EXPORT ResDownload : public FileDownload
{
    Q_OBJECT
public:
    ~ResDownload() override;

protected:
    friend class ResDownloadMgr;

    /// Makes the download directory of the type.
    ResDownload(uint id, ResType type, const QUrl &url, QObject *parent);

    /// Redirects the next start(); a transfer that runs keeps its source.
    void setUrl(const QUrl &url) { m_url = url; }

private:
    const uint m_id;
    const ResType m_type;
};
