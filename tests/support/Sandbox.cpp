#include "tests/support/Sandbox.h"

#include <QProcess>
#include <QSettings>

static const char folderVariable[] = "RIVET_TEST_SANDBOX";

static int runCopyIn(const QString &folder)
{
    const QString program = QCoreApplication::applicationFilePath();
    const QString copy = folder + "/app/" + QFileInfo(program).fileName();
    if (!QDir(folder).mkpath("app") || !QFile::copy(program, copy))
        return EXIT_FAILURE;

    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        environment.insert(variable, folder + "/home");
    environment.insert(folderVariable, folder);
    // Windows looks for libraries beside the program and then here.
    const QString places = QCoreApplication::applicationDirPath() + QDir::listSeparator();
    environment.insert("PATH", places + environment.value("PATH"));
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(copy, QCoreApplication::arguments().mid(1));
    const bool hasEnded = child.waitForFinished(-1) && child.exitStatus() == QProcess::NormalExit;
    return hasEnded ? child.exitCode() : EXIT_FAILURE;
}

int runInSandbox(int (*test)(int argc, char **argv), int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString folder = qEnvironmentVariable(folderVariable);
    if (folder.isEmpty())
        return runCopyIn(QTemporaryDir().path());

    QCoreApplication::setOrganizationName("tests");
    QCoreApplication::setApplicationName("sandbox");
    QSettings::setDefaultFormat(QSettings::IniFormat);
    for (const auto scope : {QSettings::UserScope, QSettings::SystemScope})
        QSettings::setPath(QSettings::IniFormat, scope, folder + "/settings");
    return test(argc, argv);
}
