#include <QCryptographicHash>
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
#include "tests/support/TestServer.h"

namespace {

using Script = TestServer::Script;
using Manager = std::shared_ptr<QNetworkAccessManager>;
using std::chrono::milliseconds;

constexpr int stopped = 0, finished = 3, failed = 4, anyNumber = -1;
constexpr int size = 4'000'000, half = size / 2, once = size + size / 50;
const QString path = QStringLiteral("/file");

QByteArray randomBytes(quint32 seed)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(seed);
    random.fillRange(reinterpret_cast<quint32 *>(bytes.data()), size / 4);
    return bytes;
}

const QByteArray body = randomBytes(1), other = randomBytes(2);

class Download : public FileDownload
{
public:
    Download(const QUrl &url, const QString &file,
             Manager manager = Manager(new QNetworkAccessManager))
    {
        m_url = url;
        m_filePath = file;
        m_timing = {milliseconds(400), milliseconds(4), milliseconds(20), milliseconds(1500)};
        SetNetworkAccessManager(manager);
        connect(this, &FileDownloadAbstract::dlStatuschanged, this,
                [this](quint32 from, quint32 to) { steps << int(from) << int(to); });
        connect(this, &FileDownloadAbstract::progressChanged, this,
                [this](quint32 percent) { percents << int(percent); });
    }
    int last() const { return steps.isEmpty() ? -1 : steps.last(); }
    bool isOver() const { return last() == stopped || last() >= finished; }
    /// Runs to its end.
    int run()
    {
        start();
        return await([this] { return isOver(); }) ? last() : -1;
    }
    QList<int> steps, percents;
};

/// A folder for one target.
struct Target
{
    QTemporaryDir folder;
    QString file = folder.filePath(QStringLiteral("deep/1"));
    QByteArray content() const { return FS::readFile(file).value_or("absent"); }
    QStringList names() const { return QFileInfo(file).dir().entryList(QDir::Files); }
};

QStringList names(const char *separatedByBlanks)
{
    return QString::fromLatin1(separatedByBlanks).split(QLatin1Char(' '));
}

int rangeRequests(const TestServer &server)
{
    int count = 0;
    for (const TestServer::Request &request : server.requests())
        count += request.headers.contains("range") ? 1 : 0;
    return count;
}

/// Changes the newest answer by words such as "cut=100 then status=503 x=4"; an unknown word is a
/// header, with "_" for a blank and "SHA" for the digest of the body.
void play(Script &script, const char *words)
{
    static const QByteArray sha =
        QCryptographicHash::hash(body, QCryptographicHash::Sha256).toBase64();
    // clang-format off
    static const QHash<QByteArray, void (*)(Script &, const QByteArray &)> known{
        {"then", [](Script &s, const QByteArray &) { s.then(); }},
        {"x", [](Script &s, const QByteArray &v) { s.times(v.toInt()); }},
        {"serve", [](Script &s, const QByteArray &v) { s.serve(v == "other" ? other : body); }},
        {"first", [](Script &s, const QByteArray &v) { s.serve(body.left(v.toInt())); }},
        {"etag", [](Script &s, const QByteArray &v) { s.etag(v); }},
        {"date", [](Script &s, const QByteArray &v) { s.lastModified(v); }},
        {"status", [](Script &s, const QByteArray &v) { s.status(v.toInt()); }},
        {"cut", [](Script &s, const QByteArray &v) { s.cutAfter(v.toInt()); }},
        {"stall", [](Script &s, const QByteArray &v) { s.stallAfter(v.toInt()); }},
        {"claim", [](Script &s, const QByteArray &v) { s.lengthClaim(v.toInt()); }},
        {"trickle", [](Script &s, const QByteArray &v) { s.trickle(v.toInt(), 50); }},
        {"redirect", [](Script &s, const QByteArray &) { s.redirect(QUrl(path)); }},
        {"ignoreRange", [](Script &s, const QByteArray &) { s.ignoreRange(); }},
        {"noLength", [](Script &s, const QByteArray &) { s.noLength(); }},
        {"atOnce", [](Script &s, const QByteArray &) { s.atOnce(); }},
    };
    // clang-format on
    for (const QByteArray &word : QByteArray(words).split(' ')) {
        const QByteArray key = word.split('=').first();
        const QByteArray value = word.mid(key.size() + 1).replace('_', ' ').replace("SHA=", sha);
        if (known.contains(key))
            known[key](script, value);
        else if (!key.isEmpty())
            script.header(key, value);
    }
}

struct Fault
{
    const char *name, *script;    ///< which begins with the file and a strong tag
    int status, requests, ranges; ///< what it comes to
    int sentBytes;                ///< at most
    QByteArray content = body;
};

// clang-format off
const Fault faults[] = {
    {"closes often and stalls once", "cut=62500 x=30 then stall=62500 then cut=62500", finished, 64, 63, once},
    {"closes often, at once", "cut=62500 atOnce", finished, anyNumber, anyNumber, 3 * size},
    {"range ignored", "cut=2000000 then ignoreRange", finished, 2, 1, half + once},
    {"range refused", "cut=2000000 then status=416 then", finished, 3, 1, half + once},
    {"changes half way", "cut=2000000 then serve=other etag=\"2\"", finished, 2, 1, half + once, other},
    {"another offset", "cut=2000000 then first=2000000 status=206 Content-Range=bytes_0-3999999/4000000 then serve=body", finished, 3, 1, half + half + once},
    {"another length", "cut=2000000 then first=2000000 status=206 Content-Range=bytes_2000000-4000000/4000001 then serve=body", finished, 3, 1, half + half + once},
    {"another tag", "cut=2000000 then first=2000000 status=206 Content-Range=bytes_2000000-3999999/4000000 ETag=\"2\" then serve=body", finished, 3, 1, half + half + once},
    {"part without being asked", "status=206 Content-Range=bytes_0-3999999/4000000", failed, 1, 0, once},
    {"weak tag", "etag=W/\"1\" cut=2000000 then", finished, 2, 0, half + once},
    {"date alone", "etag= date=Mon,_01_Jan_2024_00:00:00_GMT cut=2000000 then", finished, 2, 1, once},
    {"no tag and never through", "etag= cut=2000000", failed, 6, 0, 6 * half},
    {"shorter than it claims", "claim=4000009 cut=4000000", failed, 10, 5, 6 * once},
    {"longer than it claims", "claim=2000000 Repr-Digest=sha-256=:SHA=:", failed, 5, 0, 5 * once},
    {"damaged once", "serve=other Digest=SHA-256=SHA= then serve=body", finished, 2, 0, 2 * once},
    {"damaged in its second half", "cut=2000000 Digest=md5=x,_sha-256=SHA= then serve=other then serve=body", finished, 3, 1, 2 * once},
    {"wrong MD5", "Content-MD5=1B2M2Y8AsgTpgAmY7PhCfg==", failed, 5, 0, 5 * once},
    {"no length, closed at the end", "noLength", finished, 1, 0, once},
    {"not found", "status=404", failed, 1, 0, 0},
    {"overloaded for a while", "status=503 x=4 then", finished, 5, 0, once},
    {"overloaded", "status=503", failed, 5, 0, 0},
    {"asks to wait", "status=429 Retry-After=1 then", finished, 2, 0, once},
    {"asks to wait for long", "status=429 Retry-After=600", failed, 1, 0, 0},
    {"never answers", "stall=-1", failed, 5, 0, 0},
    {"slow", "first=100 trickle=10", finished, 1, 0, 100, body.left(100)},
    {"empty", "first=0", finished, 1, 0, 0, ""},
    {"redirected", "redirect then cut=2000000 then redirect then", finished, 4, 2, once},
};

/// A complete file of the URL is there already: what a second download makes of it.
struct Revisit
{
    const char *name, *change; ///< to the script; "gone" ends the server
    int status, requests, sentBytes;
    QByteArray content = body;
    bool isRenewed = false;
    const char *path = "/file";
};

const Revisit revisits[] = {
    {"unchanged", "", finished, 1, 0},
    {"changed", "serve=other etag=\"2\"", finished, 1, once, other, true},
    {"changed, then dropped", "serve=other etag=\"2\" cut=2000000 then status=503", finished, 6, half},
    {"server gone", "gone", finished, 0, 0},
    {"server ill", "status=503", finished, 5, 0},
    {"withdrawn", "status=404", failed, 1, 0},
    {"of another URL, server gone", "gone", failed, 0, 0, body, false, "/other"},
};
// clang-format on

/// What "sh -c" runs with the program, the URL and the folder: the disk fills, the transfer fails,
/// there is space again, the transfer resumes.
struct FullDisk
{
    const char *name;
    const char *needs;
    const char *script;
};

const FullDisk fullDisks[] = {
    {"limit of a file's size", "sh",
     "(trap '' XFSZ; ulimit -f 4096; exec \"$0\" fetch \"$1\" \"$2/f\"); test $? = 4 || exit 91;"
     "test -e \"$2/f\" && exit 92; exec \"$0\" fetch \"$1\" \"$2/f\""},
    {"small file system", "unshare",
     "unshare -m true || exit 77; exec unshare -m sh -c '"
     "mount -t tmpfs -o size=5m none \"$2\" && head -c 3000000 /dev/zero >\"$2/filler\" &&"
     "\"$0\" fetch \"$1\" \"$2/f\"; test $? = 4 || exit 91; test -e \"$2/f\" && exit 92;"
     "rm \"$2/filler\"; exec \"$0\" fetch \"$1\" \"$2/f\"' \"$0\" \"$1\" \"$2\""},
};

/// What this program does as a child process: one download; the exit code is its status.
int fetch(const QStringList &arguments)
{
    return Download(QUrl(arguments.at(2)), arguments.at(3)).run();
}

} // namespace

class tst_FileDownload : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void survivesFaults_data() { rows(faults); }
    void survivesFaults()
    {
        const Fault &fault = row(faults);
        LogCapture log;
        TestServer server;
        Target target;
        play(server.at(path).serve(body).etag("\"1\""), fault.script);
        Download download(server.url(path), target.file);
        QCOMPARE(download.run(), fault.status);
        if (fault.requests != anyNumber) {
            QCOMPARE(server.requests().size(), fault.requests);
            QCOMPARE(rangeRequests(server), fault.ranges);
        }
        QVERIFY2(server.bodySentBytes() <= fault.sentBytes,
                 qPrintable(QString::number(server.bodySentBytes())));
        const bool isFinished = fault.status == finished;
        QVERIFY(target.content() == (isFinished ? fault.content : "absent"));
        QVERIFY(!isFinished || target.names() == names("1 1.state"));
        QCOMPARE(download.GetCurDownloadedSize() == quint64(fault.content.size()), isFinished);
    }

    void revisitsACompleteFile_data() { rows(revisits); }
    void revisitsACompleteFile()
    {
        const Revisit &visit = row(revisits);
        TestServer server;
        Target target;
        Script &script = server.at(path).serve(body).etag("\"1\"");
        QCOMPARE(Download(server.url(path), target.file).run(), finished);
        QFile file(target.file);
        const QDateTime before = QDateTime::currentDateTime().addDays(-1);
        QVERIFY(file.open(QIODevice::Append) &&
                file.setFileTime(before, QFileDevice::FileModificationTime));
        file.close();
        play(script, visit.change);
        if (qstrcmp(visit.change, "gone") == 0)
            server.goAway();
        const int requests = server.requests().size();
        const qint64 sent = server.bodySentBytes();
        Download again(server.url(QString::fromLatin1(visit.path)), target.file);
        QCOMPARE(again.run(), visit.status);
        QCOMPARE(server.requests().size() - requests, visit.requests);
        QVERIFY(server.bodySentBytes() - sent <= visit.sentBytes);
        QVERIFY(target.content() == visit.content);
        QCOMPARE(QFileInfo(file).lastModified().daysTo(QDateTime::currentDateTime()) == 0,
                 visit.isRenewed);
        QCOMPARE(again.percents.contains(100), visit.status == finished);
    }

    void isResumedByANewProcess()
    {
        TestServer server;
        Target target;
        server.at(path).serve(body).etag("\"1\"").trickle(16'384, 1);
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("fetch"), server.url(path).toString(), target.file});
        QVERIFY(await([&] { return server.bodySentBytes() > half; }));
        child.kill();
        QVERIFY(child.waitForFinished());
        QVERIFY(target.content() == "absent");
        Download download(server.url(path), target.file);
        QVERIFY(download.GetCurDownloadedSize() > quint64(half - once + size));
        QCOMPARE(download.GetTotalFileSize(), quint64(size));
        QCOMPARE(download.run(), finished);
        QVERIFY(target.content() == body);
        QVERIFY(server.bodySentBytes() <= once);
    }

    void resumesAfterAFullDisk_data() { rows(fullDisks); }
    void resumesAfterAFullDisk()
    {
        const FullDisk &disk = row(fullDisks);
        if (QStandardPaths::findExecutable(QString::fromLatin1(disk.needs)).isEmpty())
            QSKIP("this system has no such limit for one process");
        TestServer server;
        Target target;
        server.at(path).serve(body).etag("\"1\"");
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QStringLiteral("sh"),
                    QStringList{QStringLiteral("-c"), QString::fromLatin1(disk.script),
                                QCoreApplication::applicationFilePath(),
                                server.url(path).toString(), target.folder.path()});
        QVERIFY(await([&] { return child.state() == QProcess::NotRunning; }));
        if (child.exitCode() == 77)
            QSKIP("mounting a small file system needs more rights");
        QCOMPARE(child.exitCode(), finished);
        const QString file = target.folder.filePath(QStringLiteral("f"));
        QVERIFY(FS::readFile(file).value_or(body) == body); // the small file system is gone
        QCOMPARE(rangeRequests(server), 1);
    }

    void stopsKeepsAndRemoves()
    {
        TestServer server;
        Target target;
        server.at(path).serve(body).etag("\"1\"").trickle(65'536, 1);
        Download download(server.url(path), target.file);
        const auto runUntilHalf = [&download] {
            download.start();
            download.start(); // does nothing
            return await([&] { return download.GetCurDownloadedSize() > half; });
        };
        QVERIFY(runUntilHalf());
        download.stop();
        QCOMPARE(download.steps, (QList<int>{0, 1, 1, 2, 2, 0}));
        QVERIFY(download.GetCurDownloadedSize() > half && server.requests().size() == 1);
        QCOMPARE(target.names(), names("1.part 1.state"));
        QVERIFY(runUntilHalf());
        download.removeFile();
        QCOMPARE(download.last(), stopped);
        QVERIFY(target.names().isEmpty());
        download.percents.clear();
        QCOMPARE(download.run(), finished);
        QVERIFY(download.percents.size() > 10 && download.percents.last() == 100);
        QVERIFY(std::is_sorted(download.percents.begin(), download.percents.end(),
                               std::less_equal<>()));
        download.removeFile();
        QVERIFY(target.names().isEmpty());
    }

    void mayBeDeletedByItsListeners()
    {
        TestServer server;
        Target target;
        server.at(path).serve(body).etag("\"1\"");
        for (const int status : {1, 2, finished, 100}) {
            auto *download = new Download(server.url(path), target.file);
            QSignalSpy gone(download, &QObject::destroyed);
            connect(
                download, &FileDownloadAbstract::dlStatuschanged, this,
                [=](quint32, quint32 now) { now == quint32(status) ? delete download : void(); });
            connect(download, &FileDownloadAbstract::progressChanged, this,
                    [=](quint32) { status == 100 ? delete download : void(); });
            download->start();
            QVERIFY(await([&] { return gone.size() == 1; }));
            QVERIFY(FS::removeTree(target.folder.path()));
        }
    }

    void doesNotTakeWaitingForAConnectionForAStall()
    {
        TestServer server;
        Target target;
        server.at(path).serve(body.left(24)).trickle(1, 50);
        const auto manager = std::make_shared<QNetworkAccessManager>();
        std::vector<std::unique_ptr<Download>> all;
        for (int i = 0; i < 13; ++i) {
            all.push_back(std::make_unique<Download>(server.url(path),
                                                     target.file + QString::number(i), manager));
            all.back()->start();
        }
        for (const auto &download : all)
            QVERIFY(await([&] { return download->isOver(); }) && download->last() == finished);
        QCOMPARE(server.requests().size(), 13);
    }

    void keepsToTheSecurityOfTheScheme()
    {
        TestServer plain, secure(TestServer::Scheme::Https);
        Target target;
        plain.at(path).serve(body);
        secure.at(path).serve(body).then().redirect(plain.url(path));
        const auto manager = std::make_shared<QNetworkAccessManager>();
        QCOMPARE(Download(secure.url(path), target.file, manager).run(), failed);
        connect(manager.get(), &QNetworkAccessManager::sslErrors, this,
                [](QNetworkReply *reply) { reply->ignoreSslErrors(); });
        QCOMPARE(Download(secure.url(path), target.file, manager).run(), finished);
        QCOMPARE(Download(secure.url(path), target.file, manager).run(), failed);
        QVERIFY(plain.requests().isEmpty());
        QCOMPARE(Download(QUrl(), target.file).run(), failed);
    }

private:
    template <typename Row, std::size_t count>
    static void rows(const Row (&table)[count])
    {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < count; ++i)
            QTest::newRow(table[i].name) << int(i);
    }
    template <typename Row, std::size_t count>
    static const Row &row(const Row (&table)[count])
    {
        return table[*static_cast<int *>(QTest::qData("index", qMetaTypeId<int>()))];
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == QLatin1String("fetch"))
        return fetch(app.arguments());
    tst_FileDownload test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FileDownload.moc"
