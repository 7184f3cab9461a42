#include <cstdlib>
#include <memory>
#include <optional>

#include <QFile>
#include <QTimer>

#include "core/launch/GameLaunchBase.h"
#include "host/Commands.h"
#include "host/DataLock.h"
#include "host/Host.h"
#include "host/InstanceChoice.h"
#include "host/Interrupts.h"
#include "host/LaunchInstance.h"
#include "host/Text.h"

namespace {

constexpr int pulseMs = 100;
constexpr int lastLines = 10;

/// Shows one launch, from its start to the end of the game.
class LaunchView : public QObject
{
public:
    LaunchView(Host &host, LaunchInstance &instance)
        : m_output(host.output()), m_resources(host.resources()), m_instance(instance)
    {
        connect(&instance, &LaunchInstance::stage, this,
                [this](const QString &name) { m_output.stage(name); });
        connect(&instance, &LaunchInstance::status, this,
                [this](const QString &text) { m_output.status(text); });
        connect(&instance, &LaunchInstance::notice, this,
                [this](const QString &text) { m_output.notice(text); });
        connect(&instance, &LaunchInstance::progress, this,
                [this](int percent) { showProgress(percent); });
        connect(&instance, &LaunchInstance::gameStarted, this, &LaunchView::onGameStarted);
        connect(&instance, &LaunchInstance::ended, this, &LaunchView::onEnded);
        connect(&m_pulse, &QTimer::timeout, this, &LaunchView::onPulse);
        Interrupts::setGuarded(true);
        m_pulse.start(pulseMs);
    }

    bool hasEnded() const { return m_exitCode.has_value(); }
    int exitCode() const { return *m_exitCode; }

private:
    void showProgress(int percent)
    {
        m_percent = percent;
        m_output.progress(percent, transfer());
    }

    Output::Transfer transfer() const
    {
        Output::Transfer sum;
        const auto objects = m_resources.all();
        for (const auto &object : objects) {
            const uint status = object->installStatus();
            if (status != ResUpdateTask::ResInstallUpdating &&
                status != ResUpdateTask::ResInstallDownloading)
                continue;
            sum.bytesPerSecond += object->dlSpeed();
            sum.doneBytes += object->dlDownloadSize();
            sum.totalBytes += object->dlTotalSize();
        }
        return sum;
    }

    void onPulse()
    {
        if (Interrupts::count() > m_handledInterrupts)
            onInterrupted();
        if (!m_isGameUp && m_percent >= 0)
            showProgress(m_percent);
    }

    /// The first one aborts in good order, the second one leaves at once.
    void onInterrupted()
    {
        m_handledInterrupts = Interrupts::count();
        m_instance.stop();
        if (m_handledInterrupts > 1) {
            m_output.endProgress();
            std::_Exit(ExitCancelled);
        }
        // What is left may keep the main thread waiting: a deployment that runs to its end.
        Interrupts::setGuarded(false);
    }

    void onGameStarted()
    {
        m_isGameUp = true;
        m_output.endProgress();
        m_output.line(Text::tr("the game runs"),
                      {{QStringLiteral("event"), QStringLiteral("game")}});
    }

    void onEnded(bool isGood, int error, const QString &reason)
    {
        m_pulse.stop();
        m_output.endProgress();
        Interrupts::setGuarded(false);
        // On a terminal the interrupt reaches the game, too, which may end before we look.
        if (Interrupts::count() > 0) {
            m_output.error(Text::tr("cancelled"));
            m_exitCode = ExitCancelled;
        } else if (isGood) {
            m_output.line(Text::tr("the game has ended"),
                          {{QStringLiteral("event"), QStringLiteral("done")}});
            m_exitCode = ExitGood;
        } else {
            m_output.error(reason);
            if (error == GameLaunchBase::ErrGameCrashed)
                showGameLog();
            m_exitCode = ExitLaunchFailed + error;
        }
    }

    void showGameLog()
    {
        QFile file(m_instance.instanceDir() % QLatin1String("/game-output.log"));
        if (!file.open(QIODevice::ReadOnly))
            return;
        constexpr qint64 tailBytes = 4096;
        file.seek(qMax(qint64(0), file.size() - tailBytes));
        const QStringList lines =
            QString::fromUtf8(file.readAll()).trimmed().split(QLatin1Char('\n'));
        for (const QString &line : lines.mid(qMax(0, lines.size() - lastLines)))
            m_output.line(QLatin1String("  | ") % line.trimmed(),
                          {{QStringLiteral("event"), QStringLiteral("log")},
                           {QStringLiteral("text"), line.trimmed()}});
    }

    Output &m_output;
    ResourceManager &m_resources;
    LaunchInstance &m_instance;
    QTimer m_pulse;
    int m_percent = -1;
    int m_handledInterrupts = 0;
    bool m_isGameUp = false;
    std::optional<int> m_exitCode;
};

} // namespace

int Commands::launch(Host &host, const QStringList &arguments)
{
    const auto lock = DataLock::forLaunch();
    if (!lock) {
        host.output().error(Text::tr("a repair is under way, try again after it"));
        return ExitFailed;
    }
    if (host.logInRememberedUser() == Host::LoginOutcome::Refused)
        return ExitLaunchFailed + GameLaunchBase::ErrNeedLogin;
    host.updateInstances();
    host.loadResources();
    const auto choice = InstanceChoice::known(arguments[0]);
    if (!choice) {
        host.output().error(Text::tr("there is no instance %1").arg(arguments[0]));
        return ExitFailed;
    }
    const auto instance =
        std::make_shared<LaunchInstance>(choice->id, choice->description, host.resources());
    LaunchView view(host, *instance);
    instance->start({{QStringLiteral("user"), host.rememberedUser()}});
    runUntil([&view] { return view.hasEnded(); }, OnInterrupt::GoOn);
    return view.exitCode();
}
