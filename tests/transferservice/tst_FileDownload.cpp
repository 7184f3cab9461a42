#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QtTest>

#include "support/jsonfskit/FS.h"
#include "support/transferservice/FileDownload.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFiles.h"
#include "tests/support/TestServer.h"

namespace {

using std::chrono::milliseconds;

constexpr int stopped = 0, finished = 3, failed = 4, anyNumber = -1;
constexpr int size = 4'000'000, half = size / 2, once = size + size / 50;
constexpr milliseconds shortStall(700), longStall(15'000);

QByteArray randomBytes(quint32 seed)
{
    QByteArray bytes(size, '\0');
    QRandomGenerator(seed).fillRange(reinterpret_cast<quint32 *>(bytes.data()), size / 4);
    return bytes;
}

const QByteArray body = randomBytes(1), other = randomBytes(2);

/// A server with one file, and a folder for it.
struct World
{
    explicit World(const QByteArray &script, TestServer::Scheme scheme = TestServer::Scheme::Http)
        : server(scheme)
    {
        server.otherBody = other;
        server.play("/file", body, "ETag=\"1\" " + script);
    }
    QByteArray content() const { return FS::readFile(file).value_or("absent"); }
    QString names() const { return QFileInfo(file).dir().entryList(QDir::Files).join(' '); }
    int rangeRequests() const
    {
        int count = 0;
        for (const TestServer::Request &request : server.requests())
            count += int(request.headers.contains("range"));
        return count;
    }

    TestServer server;
    QUrl url = server.url("/file");
    QTemporaryDir folder;
    QString file = folder.filePath("deep/1");
    std::shared_ptr<QNetworkAccessManager> manager = std::make_shared<QNetworkAccessManager>();
};

class Download : public FileDownload
{
public:
    explicit Download(const World &world, milliseconds stall = longStall, int fruitlessTries = 5)
    {
        m_url = world.url;
        m_filePath = world.file;
        m_timing = {stall, milliseconds(4), milliseconds(20), milliseconds(1500), fruitlessTries};
        SetNetworkAccessManager(world.manager);
        connect(this, &FileDownloadAbstract::dlStatuschanged, this,
                [this](quint32 from, quint32 to) { steps << int(from) << int(to); });
        connect(this, &FileDownloadAbstract::progressChanged, this,
                [this](quint32 percent) { percents << int(percent); });
    }
    int end()
    {
        const auto isOver = [this] { return steps.last() == stopped || steps.last() >= finished; };
        return await(isOver) ? steps.last() : -1;
    }
    int run()
    {
        start();
        return end();
    }
    QList<int> steps, percents;
};

enum class Before { Nothing, TheFile, AnothersFile };

struct Fault
{
    const char *name, *script;    ///< a strong tag comes before it
    int status, requests, ranges; ///< what it comes to
    int sentBytes;                ///< at most
    QByteArray content = body;    ///< if it succeeds, or what stays
    Before before = Before::Nothing;
};

// clang-format off
const Fault faults[] = {
    {"closes often and stalls once", "cut=62500 x=30 then stall=62500 then cut=62500", finished, anyNumber, anyNumber, once},
    {"closes often, at once", "cut=62500 atOnce", finished, anyNumber, anyNumber, 3 * size},
    {"range ignored", "cut=2000000 then ignoreRange", finished, 2, 1, half + once},
    {"range refused", "cut=2000000 then status=416 then", finished, 3, 1, half + once},
    {"changes half way", "cut=2000000 then other ETag=\"2\"", finished, 2, 1, half + once, other},
    {"another offset", "cut=2000000 then first=2000000 status=206 Content-Range=bytes_0-3999999/4000000 then", finished, 3, 1, half + half + once},
    {"another length", "cut=2000000 then first=2000000 status=206 Content-Range=bytes_2000000-4000000/4000001 then", finished, 3, 1, half + half + once},
    {"another tag", "cut=2000000 then first=2000000 status=206 Content-Range=bytes_2000000-3999999/4000000 ETag=\"2\" then", finished, 3, 1, half + half + once},
    {"part without being asked", "status=206 Content-Range=bytes_0-3999999/4000000", failed, 1, 0, once},
    {"weak tag", "ETag=W/\"1\" cut=2000000 then", finished, 2, 0, half + once},
    {"date alone", "ETag= Last-Modified=Mon,_01_Jan_2024_00:00:00_GMT cut=2000000 then", finished, 2, 1, once},
    {"no tag and never through", "ETag= cut=2000000", failed, 6, 0, 6 * half},
    {"shorter than it claims", "claim=4000009 cut=4000000", failed, 10, 5, 6 * once},
    {"damaged once", "other Digest=SHA-256=ZlarfwicYjPejbSBsjAbDltrKcxBRPnsKP7nqJ+m80U= then", finished, 2, 0, 2 * once},
    {"damaged in its second half", "cut=2000000 Digest=md5=x,_sha-256=ZlarfwicYjPejbSBsjAbDltrKcxBRPnsKP7nqJ+m80U= then other then", finished, 3, 1, 2 * once},
    {"wrong MD5", "Content-MD5=1B2M2Y8AsgTpgAmY7PhCfg==", failed, 5, 0, 5 * once},
    {"length told late", "noLength stall=2000000 then noLength cut=1000000 then", finished, 3, 2, once},
    {"no length, closed at the end", "noLength", finished, 1, 0, once},
    {"not found", "status=404", failed, 1, 0, 0},
    {"overloaded for a while", "status=503 x=4 then", finished, 5, 0, once},
    {"overloaded", "status=503", failed, 5, 0, 0},
    {"asks to wait", "status=429 Retry-After=1 then", finished, 2, 0, once},
    {"asks to wait for long", "status=429 Retry-After=600", failed, 1, 0, 0},
    {"never answers", "mute", failed, anyNumber, anyNumber, 0},
    {"slow", "first=160 trickle=10 pause=50", finished, 1, 0, 160, body.left(160)},
    {"empty", "first=0", finished, 1, 0, 0, ""},
    // Qt 5 may send the redirected request twice on a connection that stays open.
    {"redirected", "status=302 Location=/file Connection=close cut=0 then cut=2000000 then status=302 Location=/file Connection=close cut=0 then", finished, anyNumber, anyNumber, once},
    {"unchanged", "", finished, 1, 0, 0, body, Before::TheFile},
    {"changed", "other ETag=\"2\"", finished, 1, 0, once, other, Before::TheFile},
    {"changed, then dropped", "other ETag=\"2\" cut=2000000 then status=503", finished, 6, 5, half, body, Before::TheFile},
    {"server gone", "gone", finished, 0, 0, 0, body, Before::TheFile},
    {"server ill", "status=503", finished, 5, 0, 0, body, Before::TheFile},
    {"withdrawn", "status=404", failed, 1, 0, 0, body, Before::TheFile},
    {"server gone, file of another URL", "gone", failed, 0, 0, 0, body, Before::AnothersFile},
};
// clang-format on

} // namespace

class tst_FileDownload : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void survivesFaults_data()
    {
        QTest::addColumn<int>("index");
        int index = 0;
        for (const Fault &fault : faults)
            QTest::newRow(fault.name) << index++;
    }
    void survivesFaults()
    {
        QFETCH(int, index);
        const Fault &fault = faults[index];
        const bool hadFile = fault.before != Before::Nothing;
        const QDateTime longAgo(QDate(2024, 1, 1), QTime(12, 0));
        LogCapture quiet;
        World world("");
        QFile file(world.file);
        if (hadFile) {
            QCOMPARE(Download(world).run(), finished);
            QVERIFY(file.open(QIODevice::Append));
            QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
            QVERIFY(file.setPermissions(QFileDevice::ReadOwner));
        }
        if (fault.before == Before::AnothersFile)
            world.url = world.server.url("/other");
        const QByteArray script = fault.script;
        world.server.play("/file", body, script == "gone" ? script : "ETag=\"1\" " + script);
        const int requestsBefore = world.server.requests().size();
        const qint64 sentBefore = world.server.bodySentBytes();
        const bool needsStall =
            script.contains("mute") || script.contains("stall") || script.contains("trickle");

        Download download(world, needsStall ? shortStall : longStall);
        // On Windows the old file can not be replaced before.
        connect(&download, &FileDownloadAbstract::progressChanged, &file, [&file](quint32 percent) {
            percent == 100 ? QTimer::singleShot(200, &file, &QFile::close) : void();
        });
        QCOMPARE(download.run(), fault.status);
        if (fault.requests != anyNumber) {
            QCOMPARE(world.server.requests().size() - requestsBefore, fault.requests);
            QCOMPARE(world.rangeRequests(), fault.ranges);
        }
        const qint64 sentBytes = world.server.bodySentBytes() - sentBefore;
        QVERIFY2(sentBytes <= fault.sentBytes, qPrintable(QString::number(sentBytes)));
        const bool isFinished = fault.status == finished;
        QVERIFY(world.content() == (isFinished || hadFile ? fault.content : "absent"));
        QCOMPARE(QFileInfo(world.file).lastModified() == longAgo, hadFile && fault.content == body);
        if (!isFinished)
            return;
        QCOMPARE(download.percents.last(), 100);
        if (!hadFile)
            QCOMPARE(world.names(), "1 1.state");
    }

    void isResumedByANewProcess()
    {
        World world("trickle=16384 pause=5");
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {"fetch", world.url.toString(), world.file});
        QFile part(world.file + ".part");
        QVERIFY(await([&] { return part.isOpen() || part.open(QIODevice::ReadOnly); }));
        QVERIFY(await([&] { return part.size() > half; }));
        part.close();
        child.kill();
        QVERIFY(child.waitForFinished());
        QVERIFY(world.content() == "absent");
        const qint64 sentBytes = world.server.bodySentBytes();
        Download download(world);
        const auto keptBytes = qint64(download.GetCurDownloadedSize());
        QVERIFY(keptBytes > half);
        QCOMPARE(download.GetTotalFileSize(), quint64(size));
        QCOMPARE(download.run(), finished);
        QVERIFY(world.content() == body);
        QVERIFY(world.server.bodySentBytes() - sentBytes <= once - keptBytes);
    }

    /// The disk seems full to a process that may only write small files.
    void resumesAfterAFullDisk()
    {
        if (QStandardPaths::findExecutable("sh").isEmpty())
            QSKIP("this system has no such limit for one process");
        World world("");
        for (const bool isFull : {true, false}) {
            QProcess child;
            child.start("sh", {"-c",
                               QString(isFull ? "trap '' XFSZ; ulimit -f 3000; " : "") +
                                   "exec \"$0\" fetch \"$1\" \"$2\"",
                               QCoreApplication::applicationFilePath(), world.url.toString(),
                               world.file});
            QVERIFY(await([&] { return child.state() == QProcess::NotRunning; }));
            QCOMPARE(child.exitCode(), isFull ? failed : finished);
            QVERIFY(world.content() == (isFull ? "absent" : body));
        }
        QCOMPARE(world.rangeRequests(), 1);
    }

    void stopsKeepsAndRemoves()
    {
        World world("trickle=65536");
        Download download(world);
        const auto runUntilHalf = [&download] {
            download.start();
            download.start(); // does nothing
            return await([&] { return download.GetCurDownloadedSize() > half; });
        };
        QVERIFY(runUntilHalf());
        download.stop();
        QCOMPARE(download.steps, (QList<int>{0, 1, 1, 2, 2, 0}));
        QVERIFY(download.GetCurDownloadedSize() > half && world.server.requests().size() == 1);
        QCOMPARE(world.names(), "1.part 1.state");
        QVERIFY(runUntilHalf());
        download.removeFile();
        QCOMPARE(download.end(), stopped);
        QCOMPARE(world.names(), "");
        download.percents.clear();
        QCOMPARE(download.run(), finished);
        const QList<int> &percents = download.percents;
        QVERIFY(percents.size() > 10 && percents.last() == 100);
        QVERIFY(std::is_sorted(percents.begin(), percents.end(), std::less_equal<>()));
        download.removeFile();
        QCOMPARE(download.end(), stopped);
        QCOMPARE(world.names(), "");
        world.server.play("/file", body, "noLength"); // reaches 100 at its end only
        connect(&download, &FileDownloadAbstract::progressChanged, &download,
                &FileDownload::removeFile);
        QCOMPARE(download.run(), stopped);
        QCOMPARE(world.names(), "");
    }

    void mayBeDeletedByItsListeners()
    {
        World world("");
        for (const int status : {1, 2, finished, 100}) {
            auto *download = new Download(world);
            QSignalSpy gone(download, &QObject::destroyed);
            const auto deleteAt = [=](int now) { now == status ? delete download : void(); };
            connect(download, &FileDownloadAbstract::dlStatuschanged, this,
                    [=](quint32, quint32 now) { deleteAt(int(now)); });
            connect(download, &FileDownloadAbstract::progressChanged, this,
                    [=](quint32) { deleteAt(100); });
            download->start();
            QVERIFY(await([&] { return gone.size() == 1; }));
            QVERIFY(FS::removeTree(world.folder.path()));
        }
    }

    /// Six at a time get a connection, so that the seventh waits for longer than two stalls.
    void doesNotTakeWaitingForAConnectionForAStall()
    {
        World world("first=30 trickle=1 pause=50");
        std::vector<std::unique_ptr<Download>> downloads;
        for (const char *name : {"1", "2", "3", "4", "5", "6", "7"}) {
            world.file = world.folder.filePath(name);
            downloads.push_back(std::make_unique<Download>(world, shortStall, 2));
            downloads.back()->start();
        }
        for (const auto &download : downloads)
            QCOMPARE(download->end(), finished);
    }

    void keepsToTheSecurityOfTheScheme()
    {
        World plain(""), secure("", TestServer::Scheme::Https);
        if (isWine())
            QSKIP("the test server's TLS handshake does not come about under Wine");
        QCOMPARE(Download(secure).run(), failed);
        connect(secure.manager.get(), &QNetworkAccessManager::sslErrors, this,
                [](QNetworkReply *reply) { reply->ignoreSslErrors(); });
        QCOMPARE(Download(secure).run(), finished);
        secure.server.play("/file", body, "status=302 Location=" + plain.url.toEncoded());
        QCOMPARE(Download(secure).run(), failed);
        QVERIFY(plain.server.requests().isEmpty());
        plain.url.clear();
        QCOMPARE(Download(plain).run(), failed);
    }
};

/// As a child process, downloads; the exit code is the status.
int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == "fetch") {
        World world("");
        world.url = QUrl(app.arguments().at(2));
        world.file = app.arguments().at(3);
        return Download(world).run();
    }
    tst_FileDownload test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FileDownload.moc"
