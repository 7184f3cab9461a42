#include "support/transferservice/FileDownloadAbstract.h"

#include <utility>

#include <QNetworkAccessManager>

FileDownloadAbstract::FileDownloadAbstract(QObject *parent) : QObject(parent) {}

FileDownloadAbstract::~FileDownloadAbstract() = default;

void FileDownloadAbstract::changeDlStatus(DLStatus status)
{
    const DLStatus old = std::exchange(m_status, status);
    Q_EMIT dlStatuschanged(quint32(old), quint32(status));
}

void FileDownloadAbstract::changeProgress(quint32 percent)
{
    Q_EMIT progressChanged(percent);
}

void FileDownloadAbstract::SetNetworkAccessManager(std::shared_ptr<QNetworkAccessManager> manager)
{
    m_manager = std::move(manager);
}
