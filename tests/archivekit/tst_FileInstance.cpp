#include <future>
#include <memory>
#include <random>

#include <QTemporaryDir>
#include <QtConcurrent>
#include <QtTest>

#include "support/archivekit/FileInstance.h"
#include "tests/support/Archives.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFiles.h"

namespace {

/// Writes zip files by hand, for they have to lie.
QByteArray zipOf(const Items &items)
{
    const auto bytesOf = [](auto... numbers) {
        QByteArray bytes;
        QDataStream to(&bytes, QIODevice::WriteOnly);
        to.setByteOrder(QDataStream::LittleEndian);
        (to << ... << numbers);
        return bytes;
    };
    QByteArray file, directory;
    for (const Item &item : items) {
        // Gzip packs in the same way, between a header and the same checksum with the size.
        const QByteArray gzip = archiveOf("raw gzip", {{"x", item.data}});
        const QByteArray packed = item.method == 8 ? gzip.mid(10).chopped(8) : item.data;
        const auto checksum = qFromLittleEndian<quint32>(gzip.right(8).constData());
        const QByteArray header =
            bytesOf(quint16(20), item.flags, item.method, 0x210000, checksum ^ item.checksumLie,
                    packed.size(), item.data.size() + item.sizeLie, item.name.size());
        directory += "PK\1\2\x14\3" + header +
                     bytesOf(quint16(0), 0, item.mode << 16, file.size() + item.placeLie) +
                     item.name;
        file += "PK\3\4" + header + item.localName + packed;
    }
    const auto count = quint16(items.size());
    return file + directory + "PK\5\6" +
           bytesOf(0, count, count, directory.size(), file.size(), quint16(0));
}

QByteArray noise()
{
    QByteArray data(1500000, '\0');
    std::generate(data.begin(), data.end(), std::minstd_rand());
    return data;
}

} // namespace

class tst_FileInstance : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        setlocale(LC_ALL, "C"); // names must not depend on it
        m_dir = std::make_unique<QTemporaryDir>();
        m_root = m_dir->filePath("root");
        m_archive = m_dir->filePath("archive");
        m_target = m_root + "/deep/target";
    }

    void unpacksGoodArchives()
    {
        // libarchive writes no other names on Windows, though it reads them.
        const QString foreign = QSysInfo::productType() == "windows" ? "z" : "\u4e2d\u6587";
        const Items items{{"./", {}, 040755},
                          {"empty/", {}, 040755},
                          {"./a/run.exe", "run", 0100755, 0, 8},
                          {"a/none", ""},
                          {"a/b/big.bin", noise(), 0100644, 0, 8},
                          {foreign.toUtf8() + "/x.txt", "text", 0100644, 0, 8}};
        for (const char *kind :
             {"by hand", "zip", "7zip", "paxr", "gnutar", "pax gzip", "pax xz", "pax zstd"}) {
            init();
            makeFiles(m_target, {"kept", "a/run.exe=older, and longer"});
            QVERIFY2(unpack(*kind == 'b' ? zipOf(items) : archiveOf(kind, items)), kind);
            QCOMPARE(m_progress.last(), qMakePair(quint64(1500007), quint64(1500007)));
            QPair<quint64, quint64> last(0, 1);
            for (const auto &[done, total] : m_progress) {
                QVERIFY2(done >= last.first && done * last.second >= last.first * total, kind);
                last = {done, total};
            }
            QVERIFY2(QFileInfo(m_target + "/a/run.exe").isExecutable(), kind);
            QVERIFY2(!QFileInfo(m_target + "/a/none").isExecutable(), kind);
            QVERIFY2(FS::readFile(m_target + "/a/b/big.bin") == noise(), kind);
            QVERIFY(FS::removeTree(m_target + "/a/b"));
            QCOMPARE(treeOf(m_target),
                     QString("a a/none= a/run.exe=run empty kept %1 %1/x.txt=text").arg(foreign));
        }
    }

    void readsNamesOfAllCharsets()
    {
        Items items{{"\xe2\x82\xac", "x", 0100644, 1 << 11}};
        for (const char *name :
             {"\xc3\xa4", "\xd6\xd0\xce\xc4", "\xd5\x5c.txt", "caf\x82.txt", "\x80"})
            items << Item{name};
        QVERIFY(unpack(zipOf(items)));
        QCOMPARE(treeOf(m_target), "caf\u00e9.txt \u00c7 \u00e4 \u20ac \u4e2d\u6587 \u8aa0.txt");
    }

    void refusesHostileArchives()
    {
        const Item good{"good/first"};
        const QByteArray names =
            "../up|a/../../up|..|/abs|C:/x|C:x|..\\up|\\\\server\\share|con.txt|d/AUX|"
            "nul .x|com1.tar.gz|COM\u00b2|LPT9/x|conin$|dot.|blank |d./x|a//b|what?";
        for (const QByteArray &name : names.split('|'))
            refuses(zipOf({good, {name}}), name);
        refuses(zipOf({{"x\ny"}}), "x\xef\xbf\xbdy");
        refuses(zipOf({{QByteArray(256, 'n')}}), QByteArray(256, 'n'));
        refuses(zipOf({good, {"no UTF-8\xff", "x", 0100644, 1 << 11}}), "no UTF-8\u00a0");
        refuses(zipOf({{"twice"}, good, {"twice"}}), "twice");
        refuses(zipOf({{"D/a"}, good, {"d/b"}}), "d/b", "the name differs from \"D\"");
        refuses(zipOf({{"file"}, good, {"file/x"}}), "file/x");
        refuses(zipOf({good, {"link", "../..", 0120777}}), "link", "the entry is neither");
        refuses(tarOf({{"link", "..", 0120777}, {"link/x"}}), "link");
        refuses(tarOf({good, {"hard", "good/first", 0}}), "hard", "the entry is neither");
        refuses(tarOf({good, {"pipe", "", 010644}}), "pipe");
        refuses(zipOf({good, {"folder with content/"}}), "folder with content/");
        refuses(zipOf({good, {"secret", "x", 0100644, 1}}), "secret", "the entry is encrypted");
        refuses(zipOf({good, {"method", "x", 0100644, 0, 77}}), "method");
        refuses(zipOf({good, {"checksum", "x", 0100644, 0, 0, 0, 0, 5}}), "checksum");
        refuses(zipOf({{"more", QByteArray(99999, 'x'), 0100644, 0, 8, -99990}}), "more");
        refuses(zipOf({good, {"less", "x", 0100644, 0, 8, 9}}), "less");
        refuses(zipOf({good, {"here", "x", 0100644, 0, 0, 0, 0, 0, "Here"}}), "here",
                "the entry's own header differs");
        refuses(zipOf({{"x", zipOf({{"inner"}}).left(36)}, {"inner", "x", 0100644, 0, 0, 0, -36}}),
                "inner");
        refuses(zipOf({good, {"nowhere", "x", 0100644, 0, 0, 0, 1}}), "nowhere");
        refuses(tarOf({good, {"huge", "x", 0100644, 0, 0, 4000}}), "huge",
                "the archive does not fit");
        refuses(tarOf({good, {"cut", QByteArray(9999, 'x')}}).left(4000), "cut");
        QByteArray changed = archiveOf("paxr gzip", {good, {"noise", noise()}});
        changed[700000] = char(~changed.at(700000));
        refuses(changed);
        refuses(archiveOf("ustar gzip", Items(200001, {"many/", "", 040755})), "many/");
        refuses(zipOf({good, {""}}), "", "name is empty");
        refuses(zipOf({good}).chopped(9));
        refuses("no archive");
    }

    void aTargetInTheWayStaysAsItWas()
    {
        makeFiles(m_root, {"deep/target/a", "deep/target/folder/kept", "outside/x", "plain"});
        QVERIFY(QFile::link(m_root + "/outside", m_target + "/link"));
        const QString before = treeOf(m_root);
        const LogCapture log;
        for (const char *name : {"a/b", "folder", "link/x", "link/new/x"}) {
            QVERIFY2(!unpack(zipOf({{name}, {*name == 'a' ? "b" : "a"}})), name);
            QCOMPARE(treeOf(m_root), before);
            QVERIFY2(log.lines().last().contains(QString(name).section('/', 0, 0)), name);
        }
        m_target = m_root + "/plain/target";
        QVERIFY(!unpack(zipOf({{"x"}})));
    }

    void recoversWhatAKilledProcessLeft()
    {
        const QString dead = ".rivet-unpack-1/", alive = ".rivet-unpack-2/";
        makeFiles(m_target, {"a/there", dead + "lock=999999\nx\n\n", dead + "new/a/half",
                             dead + "old/a/there=older", dead + "old/a/lost=rescued",
                             dead + "old/deep/lost", alive + "old/kept"});
        QLockFile lock(m_target + '/' + alive + "lock");
        QVERIFY(lock.lock());
        QVERIFY(QDir().mkdir(m_target + "/.rivet-unpack-3"));
        const LogCapture log;
        QFile held(m_target + "/a/there"); // on Windows it can not be replaced before the end
        QVERIFY(held.open(QIODevice::ReadOnly));
        const auto release = std::async(std::launch::async, [&held] {
            QThread::msleep(300);
            held.close();
        });
        QVERIFY(unpack(zipOf({{"a/there", "new"}})));
        lock.unlock();
        QCOMPARE(treeOf(m_target), ".rivet-unpack-2 .rivet-unpack-2/old .rivet-unpack-2/old/kept "
                                   ".rivet-unpack-3 a a/lost=rescued a/there=new deep deep/lost");
    }

    void isDestroyedHalfWay()
    {
        // 300 MiB of nothing, so that there is a half way.
        Items items;
        for (int i = 0; i < 300; ++i)
            items << Item{QByteArray::number(i), QByteArray(1 << 20, '\0')};
        QVERIFY(FS::writeFile(m_archive, archiveOf("ustar gzip", items)));
        const LogCapture log;
        auto instance = std::make_unique<FileInstance>();
        const QSignalSpy finished(instance.get(), &FileInstance::FileFinished);
        instance->Start(m_archive, m_target);
        instance->Start(m_archive, m_root + "/second");
        const QStringList any(".rivet-unpack-*");
        QVERIFY(QTest::qWaitFor(
            [&] { return !QDir(m_target).entryList(any, QDir::Dirs | QDir::Hidden).isEmpty(); }));
        instance.reset();
        QCOMPARE(treeOf(m_root), "");
        QCoreApplication::processEvents();
        QCOMPARE(finished.size(), 0);
        QCOMPARE(log.lines().size(), 1);
    }

    void survivesMutations()
    {
        const QByteArray good =
            zipOf({{"a/b", QByteArray(3000, 'b'), 0100644, 0, 8}, {"c"}, {"d/", "", 040755}});
        const LogCapture log;
        std::minstd_rand random(7);
        int refused = 0;
        for (int round = 0; round < 400; ++round) {
            QByteArray archive = good;
            for (auto flips = 1 + random() % 3; flips > 0; --flips)
                archive.data()[random() % uint(archive.size())] ^= char(1 << random() % 8);
            if (round % 8 == 0)
                archive.truncate(int(random() % uint(archive.size())));
            const bool success = unpack(archive);
            refused += success ? 0 : 1;
            QCOMPARE(QDir(m_target).exists(), success);
            QVERIFY2(treeOf(m_target).count(' ') < 5, "nothing is left over");
            QVERIFY(FS::removeTree(m_target));
            QCOMPARE(treeOf(m_root), success ? "deep" : "");
            QVERIFY(FS::removeTree(m_root + "/deep"));
        }
        QVERIFY(refused > 200 && refused < 400);
    }

private:
    static QByteArray tarOf(const Items &items) { return archiveOf("paxr", items); }

    /// Waits in a loop on the only thread of the pool, as the deployment does.
    bool unpack(const QByteArray &archive)
    {
        if (!FS::writeFile(m_archive, archive))
            qFatal("the archive can not be written");
        m_progress.clear();
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        const auto run = [this] {
            QEventLoop loop;
            FileInstance instance;
            const QSignalSpy ends(&instance, &FileInstance::FileFinished);
            connect(&instance, &FileInstance::UnCpercentChanged,
                    [this](auto done, auto total) { m_progress << qMakePair(done, total); });
            connect(&instance, &FileInstance::FileFinished, &loop, &QEventLoop::quit,
                    Qt::QueuedConnection);
            instance.Start(m_archive, m_target);
            loop.exec();
            const bool success = instance.state() == FileInstance::State::Succeeded;
            return ends == QList<QVariantList>{{success}} ? success : throw QUnhandledException();
        };
        return QtConcurrent::run(run).result();
    }

    /// Where a later step would fail as well, @p why tells that the guard did.
    void refuses(const QByteArray &archive, const QByteArray &entry = "", const char *why = "")
    {
        const QByteArray line = (entry.isEmpty() ? "" : "entry \"" + entry + "\": ") + why;
        for (const bool isTargetThere : {false, true}) {
            init();
            if (isTargetThere)
                makeFiles(m_target, {"good/first=older"});
            const QString before = treeOf(m_root);
            const LogCapture log;
            QVERIFY2(!unpack(archive), line);
            const QString lines = log.lines().join('\n');
            QVERIFY2(lines.contains("can not unpack") && lines.contains(line),
                     qPrintable(line + " is not in " + lines));
            QCOMPARE(treeOf(m_root), before);
        }
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_root, m_archive, m_target;
    QVector<QPair<quint64, quint64>> m_progress;
};

QTEST_GUILESS_MAIN(tst_FileInstance)
#include "tst_FileInstance.moc"
