#include "support/archivekit/FileInstance.h"

#include <algorithm>
#include <chrono>

#include <QPointer>

#include "support/archivekit/Extraction.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr std::chrono::milliseconds pauseBetweenReports(50);

} // namespace

FileInstance::FileInstance(QObject *parent) : QObject(parent), m_reporting(this)
{
    m_reporting.setInterval(pauseBetweenReports);
    connect(&m_reporting, &QTimer::timeout, this, &FileInstance::reportProgress);
}

FileInstance::~FileInstance()
{
    if (!m_thread)
        return;
    m_extraction->cancel();
    m_thread->wait();
}

void FileInstance::Start(QString archivePath, QString targetDirectory)
{
    if (m_state == State::Running) {
        Log::warning(QLatin1String("can not unpack \"") % archivePath %
                     QLatin1String("\": another archive is being unpacked"));
        return;
    }
    m_state = State::Running;
    m_hasSucceeded = false;
    m_reportedDone = m_reportedTotal = 0;
    m_extraction = std::make_unique<archivekit::Extraction>(archivePath, targetDirectory);
    m_thread.reset(QThread::create([this] { m_hasSucceeded = m_extraction->run(); }));
    connect(m_thread.get(), &QThread::finished, this, &FileInstance::onFinished,
            Qt::QueuedConnection);
    m_reporting.start();
    m_thread->start();
}

void FileInstance::reportProgress()
{
    const auto now = m_extraction->progress();
    // A guess that turns out too low would let the bar fall.
    double most = double(now.total);
    if (m_reportedDone > 0)
        most = std::min(most, double(now.done) * double(m_reportedTotal) / double(m_reportedDone));
    const quint64 total = std::max(now.done, static_cast<quint64>(most));
    if (now.done == m_reportedDone && total == m_reportedTotal)
        return;
    m_reportedDone = now.done;
    m_reportedTotal = total;
    Q_EMIT UnCpercentChanged(m_reportedDone, m_reportedTotal);
}

void FileInstance::onFinished()
{
    m_thread->wait();
    m_thread.reset();
    m_reporting.stop();
    const QPointer<FileInstance> self(this);
    if (m_hasSucceeded)
        reportProgress();
    if (!self)
        return;
    m_extraction.reset();
    m_state = m_hasSucceeded ? State::Succeeded : State::Failed;
    Q_EMIT FileFinished(m_hasSucceeded);
}
