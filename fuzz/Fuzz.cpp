#include "fuzz/Fuzz.h"

#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QJsonDocument>
#include <QSettings>
#include <QTemporaryDir>

#include "core/foundation/BinaryJson.h"
#include "platform/LocalAppData.h"
#include "support/jsonfskit/FS.h"

namespace fuzz {

namespace {

/// A home and a data directory of this process alone.
struct Sandbox : platform::LocalAppData
{
    Sandbox()
    {
        for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            qputenv(variable, QFile::encodeName(m_root.filePath("home")));
        QCoreApplication::setOrganizationName("fuzz");
        QCoreApplication::setApplicationName("fuzz");
        QSettings().setValue("DataPath", folder());
        replace(this);
    }
    ~Sandbox() override { replace(nullptr); }

    QString directory() const override { return folder(); }
    QString folder() const { return m_root.filePath("work"); }

private:
    const QTemporaryDir m_root;
};

Sandbox *sandbox = nullptr;

/// The log is written, so that its making is tried, but only the last line is of use.
void hearLog(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

QString folder()
{
    return sandbox->folder();
}

QString path(const QString &name)
{
    return folder() + '/' + name;
}

void putFile(const QString &name, const QByteArray &bytes)
{
    QFile file(path(name));
    const bool isPut = QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
                       file.write(bytes) == bytes.size();
    require(isPut, "a file of the target can be written");
}

QString tree()
{
    QStringList entries;
    QDirIterator it(folder(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString entry = it.next();
        const QByteArray content = it.fileInfo().isFile() ? *FS::readFile(entry) : QByteArray();
        entries << QDir(folder()).relativeFilePath(entry) + '=' + content.toHex();
    }
    entries.sort();
    return entries.join('\n');
}

QJsonObject objectIn(const QByteArray &input)
{
    const auto object = BinaryJson::parse(input);
    return object ? *object : QJsonDocument::fromJson(input).object();
}

void spin()
{
    for (int i = 0; i < 8; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const QCoreApplication application(*argc, *argv);
    qInstallMessageHandler(fuzz::hearLog);
    static fuzz::Sandbox sandbox;
    fuzz::sandbox = &sandbox;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uchar *data, size_t size)
{
    const bool isEmptied = FS::removeTree(fuzz::folder()) && QDir().mkpath(fuzz::folder());
    fuzz::require(isEmptied, "the folder can be emptied");
    fuzz::takeInput(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    return 0;
}
