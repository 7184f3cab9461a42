// Downloads for the benchmarks: rivet-fetch <folder> <url>... fetches all at once through one
// network manager; the files are named by their numbers. Exit code 1 when one failed.

#include <memory>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QNetworkAccessManager>

#include "support/transferservice/FileDownload.h"

namespace {

class Download : public FileDownload
{
public:
    Download(const QUrl &url, const QString &file, std::shared_ptr<QNetworkAccessManager> manager)
    {
        m_url = url;
        m_filePath = file;
        SetNetworkAccessManager(std::move(manager));
    }
    bool isOver() const { return status() == DLStatus::Finished || status() == DLStatus::Failed; }
    bool isFinished() const { return status() == DLStatus::Finished; }
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const QDir folder(arguments.value(1));
    const auto manager = std::make_shared<QNetworkAccessManager>();
    std::vector<std::unique_ptr<Download>> downloads;
    int running = 0, failed = 0;
    for (const QString &url : arguments.mid(2)) {
        const QString file = folder.filePath(QString::number(downloads.size()));
        downloads.push_back(std::make_unique<Download>(QUrl(url), file, manager));
        Download *download = downloads.back().get();
        QObject::connect(download, &FileDownloadAbstract::dlStatuschanged, download, [&, download] {
            if (!download->isOver())
                return;
            failed += download->isFinished() ? 0 : 1;
            if (--running == 0)
                QCoreApplication::exit(failed == 0 ? 0 : 1);
        });
        ++running;
        download->start();
    }
    return running > 0 ? QCoreApplication::exec() : 1;
}
