#include "core/launch/LaunchMcProcess.h"

#include <new>

#include <QDir>
#include <QPointer>

#include "core/foundation/FSH.h"
#include "core/launch/ArgumentTemplate.h"
#include "core/launch/GameOptions.h"
#include "core/launch/GameOutputLog.h"
#include "core/launch/WaitMcClientInitialized.h"
#include "platform/OtherProcesses.h"
#include "platform/ProcessArguments.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

static QString unknownKey(LaunchMcProcess::ArgsKey key)
{
    return QLatin1String("the arg key ") + QString::number(key) +
           QLatin1String(" have not been registed.");
}

LaunchMcProcess::LaunchMcProcess(QString clientVersion, QObject *parent)
    : GameLaunchBase(parent),
      m_clientVersion(std::move(clientVersion)),
      m_args{{ArgJavaPath, {}},
             {ArgJavaParam, {}},
             {ArgGameBase, {}},
             {ArgInstanceDir, {}},
             {ArgUserName, {}},
             {ArgUUID, QStringLiteral("${auth_uuid}")},
             {ArgAccessToken, QStringLiteral("${auth_access_token}")},
             {ArgSession, QStringLiteral("${auth_session}")},
             {ArgServer, {}},
             {ArgPort, {}}}
{
    qRegisterMetaType<LaunchMcProcess::State>("LaunchMcProcess::State");
}

LaunchMcProcess::~LaunchMcProcess()
{
    if (!m_process)
        return;
    m_process->disconnect(this);
    m_process->kill();
    if (sender() == m_process) {
        // A listener deletes us under a signal of the process.
        m_process->deleteLater();
        return;
    }
    m_process->waitForFinished();
    delete m_process;
}

void LaunchMcProcess::setArgs(LaunchMcProcess::ArgsKey key, QString value)
{
    const auto arg = m_args.find(key);
    if (arg == m_args.end())
        Log::warning(unknownKey(key));
    else
        *arg = std::move(value);
}

QString LaunchMcProcess::getArgsValue(LaunchMcProcess::ArgsKey key) const
{
    if (!m_args.contains(key))
        Log::warning(unknownKey(key));
    return m_args.value(key);
}

void LaunchMcProcess::setMCWindowTitle(const QString &title)
{
    m_windowTitle = title;
}

void LaunchMcProcess::setProcessEnv(const QProcessEnvironment &environment)
{
    m_environment = environment;
}

void LaunchMcProcess::setProcessWorkingDir(const QString &directory)
{
    m_workingDir = directory;
}

bool LaunchMcProcess::abort()
{
    qDebug("abort mc process");
    if (!m_process)
        return false;
    m_endAsked = true;
    if (const auto error = platform::OtherProcesses::current().end(m_process->processId())) {
        Log::critical(QLatin1String("open minecraft process failed with error ") +
                      QString::number(*error));
        m_process->kill();
    }
    return true;
}

void LaunchMcProcess::onTaskRun()
{
    const QPointer<LaunchMcProcess> self(this);
    changeProcessState(StatePreparing);
    QString program;
    QStringList args;
    if (self && getMinecraftArgs(program, args))
        startMCProcess(program, args);
}

void LaunchMcProcess::changeProcessState(LaunchMcProcess::State state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT processStateChange(state);
}

bool LaunchMcProcess::hasRunEnded() const
{
    return !m_process && m_state && *m_state != StatePreparing && *m_state != StateTampered;
}

void LaunchMcProcess::onGameStarted()
{
    const auto *const process = qobject_cast<QProcess *>(sender());
    // A game whose end was asked for because of its mods has only that end left to tell.
    if (!process || m_state == StateTampered)
        return;
    m_waiter = new WaitMcClientInitialized(this);
    m_waiter->setProcessId(process->processId());
    if (!m_windowTitle.isEmpty())
        m_waiter->setWindowTitle(m_windowTitle);
    const QPointer<LaunchMcProcess> self(this);
    changeProcessState(StateInitializing);
    if (!self)
        return;
    connect(m_waiter, &QThread::finished, this, &LaunchMcProcess::onWaitInitThreadFinished);
    m_waiter->start(QThread::InheritPriority);
    setCurProgress(95, 100);
    if (self)
        setStatus(tr("game client initialize..."));
}

void LaunchMcProcess::onWaitInitThreadFinished()
{
    const auto *const waiter = qobject_cast<WaitMcClientInitialized *>(sender());
    if (!waiter)
        return;
    sender()->deleteLater();
    // A game that has ended, or is about to, is not up any more.
    if (waiter == m_waiter && m_process && m_state == StateInitializing && !m_endAsked &&
        !waiter->hasGameEnded())
        changeProcessState(StateRunning);
}

void LaunchMcProcess::onGameFinished(int nExitCode, QProcess::ExitStatus exitStatus)
{
    safeDeleteLater(qobject_cast<QProcess *>(sender()));
    const QPointer<LaunchMcProcess> self(this);
    if (exitStatus == QProcess::NormalExit && nExitCode != 0)
        changeProcessState(StateCrashed);
    if (!self)
        return;
    qDebug("minecraft client exit.");
    changeProcessState(StateExited);
}

void LaunchMcProcess::onGameError(QProcess::ProcessError error)
{
    // An end that we asked for is a normal one; where processes end by a signal, Qt says "crashed".
    if (error == QProcess::Crashed && m_endAsked)
        return;
    // After a failed start nothing else comes from the process. After a crash its end does, but the
    // process is gone by now, and its id may be another's.
    if (error == QProcess::FailedToStart || error == QProcess::Crashed)
        safeDeleteLater(qobject_cast<QProcess *>(sender()));

    switch (error) {
    case QProcess::FailedToStart:
        return changeProcessState(StateFailedToStart);
    case QProcess::Crashed:
        return changeProcessState(StateCrashed);
    case QProcess::Timedout:
    case QProcess::ReadError:
    case QProcess::WriteError:
        return changeProcessState(StateOtherError);
    case QProcess::UnknownError:
        return changeProcessState(StateUnknownError);
    }
}

/// Logs the first required argument that is empty.
bool LaunchMcProcess::checkRequiredArgs()
{
    static const struct
    {
        ArgsKey key;
        const char *message;
    } required[] = {
        {ArgJavaPath, "javaw.exe path could not been empty!!!"},
        {ArgGameBase, "game base path could not been empty!!!"},
        {ArgInstanceDir, "game instance path could not been empty!!!"},
        {ArgUserName, "user name could not been empty!!!"},
        {ArgUUID, "uuid could not been empty!!!"},
        {ArgAccessToken, "access token could not been empty!!!"},
        {ArgSession, "session could not been empty!!!"},
    };
    for (const auto &argument : required) {
        if (getArgsValue(argument.key).isEmpty()) {
            qCritical("%s", argument.message);
            return false;
        }
    }
    return true;
}

bool LaunchMcProcess::getMinecraftArgs(QString &program, QStringList &args)
{
    if (!checkRequiredArgs()) {
        changeProcessState(StateOtherError);
        return false;
    }
    program = getArgsValue(ArgJavaPath);
    const QStringList templatePath{
        getArgsValue(ArgGameBase), QStringLiteral(".minecraft"), QStringLiteral("versions"),
        QLatin1String("oriel") + m_clientVersion, m_clientVersion + QLatin1String(".bat")};
    const auto lines =
        ArgumentTemplate::read(templatePath.join(QDir::separator()),
                               {{"%GameBase%", getArgsValue(ArgGameBase).toUtf8()},
                                {"%InstanceDir%", getArgsValue(ArgInstanceDir).toUtf8()},
                                {"%UserName%", getArgsValue(ArgUserName).toLatin1()},
                                {"%UUID%", getArgsValue(ArgUUID).toLatin1()},
                                {"%AccessToken%", getArgsValue(ArgAccessToken).toLatin1()},
                                {"%Session%", getArgsValue(ArgSession).toLatin1()},
                                {"%authlib%", "-oriel"}});
    if (!lines) {
        qCritical("open bat file to read failed!");
        changeProcessState(StateFailedToStart);
        return false;
    }
    args = getArgsValue(ArgJavaParam).split(QLatin1Char(' '), Qt::SkipEmptyParts) + *lines;
    if (!getArgsValue(ArgServer).isEmpty())
        args << QStringLiteral("--server") << getArgsValue(ArgServer);
    if (!getArgsValue(ArgPort).isEmpty())
        args << QStringLiteral("--port") << getArgsValue(ArgPort);
    return true;
}

void LaunchMcProcess::startMCProcess(QString &program, QStringList &args)
{
    m_endAsked = false;
    m_process = new (std::nothrow) QProcess;
    if (!m_process) {
        qCritical("memory alloc failed.");
        return;
    }
    connect(m_process, &QProcess::started, this, &LaunchMcProcess::onGameStarted);
    connect(m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &LaunchMcProcess::onGameFinished);
    connect(m_process, &QProcess::errorOccurred, this, &LaunchMcProcess::onGameError);
    if (!m_environment.isEmpty())
        m_process->setProcessEnvironment(m_environment);
    if (!m_workingDir.isEmpty())
        m_process->setWorkingDirectory(m_workingDir);
    gameConfigInit();
    // Both channels go straight to the file: what nobody reads would pile up in our memory.
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->setStandardOutputFile(GameOutputLog::startNew(getArgsValue(ArgInstanceDir)));
    m_process->setProgram(program);
    platform::setProcessArguments(*m_process, args);
    // The last statement: a start that fails at once, or a listener, may have deleted us.
    m_process->start(QIODevice::ReadWrite);
}

void LaunchMcProcess::gameConfigInit()
{
    const QString instanceDir = getArgsValue(ArgInstanceDir);
    const QString resourcePack = getDefaultResourcePack();
    if (!FS::makeFolder(instanceDir))
        Log::warning(QLatin1String("instance directory could not be made: ") + instanceDir);
    if (!GameOptions::updateOptions(instanceDir + QLatin1String("/options.txt"), resourcePack))
        return;
    GameOptions::updateShaderOptions(instanceDir + QLatin1String("/optionsshaders.txt"),
                                     getDefaultShaderPack());
}

QString LaunchMcProcess::getDefaultResourcePack() const
{
    return GameOptions::firstPack(getArgsValue(ArgInstanceDir) + QLatin1Char('/') +
                                  FSH::dirNameInGame(ResTypeResourcePacks));
}

QString LaunchMcProcess::getDefaultShaderPack() const
{
    return GameOptions::firstPack(getArgsValue(ArgInstanceDir) + QLatin1Char('/') +
                                  FSH::dirNameInGame(ResTypeShaders));
}

/// Null is allowed. The process's own signal may be the caller.
void LaunchMcProcess::safeDeleteLater(QProcess *process)
{
    if (!process)
        return;
    process->deleteLater();
    if (process == m_process)
        m_process = nullptr;
}
