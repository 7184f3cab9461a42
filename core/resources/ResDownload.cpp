#include "core/resources/ResDownload.h"

#include <QDir>

#include "core/foundation/FSH.h"
#include "support/jsonfskit/FS.h"

ResDownload::ResDownload(uint id, ResType type, const QUrl &url, QObject *parent)
    : FileDownload(parent), m_id(id), m_type(type)
{
    m_url = url;
    m_directory = FSH::resourceDownloadDir(m_type);
    // Tried again by the transfer, which tells a failure.
    (void)FS::makeFolder(m_directory);
    m_filePath = m_directory % QDir::separator() % QString::number(m_id);
}

ResDownload::~ResDownload() = default;
