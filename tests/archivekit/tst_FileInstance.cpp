#include <memory>
#include <random>

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtConcurrent>
#include <QtTest>

#include <archive.h>
#include <archive_entry.h>

#include "platform/Utf8Names.h"
#include "support/archivekit/FileInstance.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/LogCapture.h"

namespace {

/// An entry, and what is untrue about it.
struct Item
{
    QByteArray name;
    QByteArray data = "data";
    unsigned mode = 0100644;
    quint16 flags = 0;
    quint16 method = 0;
    int sizeLie = 0;
    int placeLie = 0;
    quint32 checksumLie = 0;
    QByteArray localName = name;
};
using Items = QVector<Item>;

quint32 checksumOf(const QByteArray &data)
{
    quint32 sum = ~0u;
    for (const char byte : data) {
        sum ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum & 1 ? (sum >> 1) ^ 0xedb88320u : sum >> 1;
    }
    return ~sum;
}

/// Writes zip files by hand, for they have to lie.
QByteArray zipOf(const Items &items)
{
    QByteArray file, directory;
    for (const Item &item : items) {
        const auto place = quint32(file.size() + item.placeLie);
        const bool deflated = item.method == 8;
        const QByteArray packed = deflated ? qCompress(item.data).mid(6).chopped(4) : item.data;
        const auto write = [&](QByteArray &out, bool central, const QByteArray &name) {
            QDataStream to(&out, QIODevice::Append);
            to.setByteOrder(QDataStream::LittleEndian);
            to << (central ? 0x02014b50u : 0x04034b50u);
            if (central)
                to << quint16(3 << 8 | 20);
            to << quint16(20) << item.flags << item.method << quint32(0x21 << 16)
               << (checksumOf(item.data) ^ item.checksumLie) << quint32(packed.size())
               << quint32(item.data.size() + item.sizeLie) << quint16(name.size()) << quint16(0);
            if (central)
                to << quint16(0) << quint32(0) << quint32(item.mode << 16) << place;
            to.writeRawData(name.constData(), name.size());
        };
        write(file, false, item.localName);
        file += packed;
        write(directory, true, item.name);
    }
    const auto directoryBytes = quint32(directory.size());
    QDataStream to(&directory, QIODevice::Append);
    to.setByteOrder(QDataStream::LittleEndian);
    to << 0x06054b50u << 0u << quint16(items.size()) << quint16(items.size()) << directoryBytes
       << quint32(file.size()) << quint16(0);
    return file + directory;
}

using Setting = int (*)(archive *);

/// Honest archives of the other formats. An entry whose mode is that of a link points to its data;
/// one of mode 0 is a hard link.
QByteArray archiveOf(Setting format, Setting filter, const Items &items)
{
    const platform::Utf8Names utf8;
    QByteArray file(4 << 20, '\0');
    size_t used = 0;
    archive *out = archive_write_new();
    format(out);
    filter(out);
    archive_write_set_bytes_in_last_block(out, 1);
    archive_write_open_memory(out, file.data(), size_t(file.size()), &used);
    archive_entry *entry = archive_entry_new();
    for (const Item &item : items) {
        archive_entry_clear(entry);
        archive_entry_set_pathname(entry, item.name.constData());
        archive_entry_set_mode(entry, item.mode ? item.mode : 0100644);
        archive_entry_set_size(entry, 0);
        if (item.mode == 0)
            archive_entry_set_hardlink(entry, item.data.constData());
        else if (item.mode == 0120777)
            archive_entry_set_symlink(entry, item.data.constData());
        else if (item.mode & 0100000)
            archive_entry_set_size(entry, item.data.size() + (qint64(item.sizeLie) << 40));
        archive_write_header(out, entry);
        if (item.mode & 0100000)
            archive_write_data(out, item.data.constData(), size_t(item.data.size()));
    }
    archive_entry_free(entry);
    archive_write_free(out);
    return file.left(int(used));
}

QByteArray tarOf(const Items &items)
{
    return archiveOf(archive_write_set_format_pax_restricted, archive_write_add_filter_none, items);
}

QByteArray noise(int bytes)
{
    QByteArray data(bytes, '\0');
    std::minstd_rand random(1);
    std::generate(data.begin(), data.end(), [&random] { return char(random() >> 8); });
    return data;
}

/// All that lies below @p folder, with the contents of the files.
QMap<QString, QByteArray> contentOf(const QString &folder)
{
    QMap<QString, QByteArray> content;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        content[QDir(folder).relativeFilePath(path)] = FS::readFile(path).value_or("a folder");
    }
    return content;
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

    void unpacksGoodArchives_data()
    {
        const Items items{
            {"./", {}, 040755}, {"empty/", {}, 040755},          {"./a/run.exe", "run", 0100755},
            {"a/none", ""},     {"a/b/big.bin", noise(1500000)}, {m_foreign + "/x.txt", "text"}};
        QTest::addColumn<QByteArray>("archive");
        const auto row = [&items](const char *rowName, Setting format, Setting filter) {
            QTest::newRow(rowName) << archiveOf(format, filter, items);
        };
        row("zip", archive_write_set_format_zip, archive_write_add_filter_none);
        row("7z", archive_write_set_format_7zip, archive_write_add_filter_none);
        row("tar", archive_write_set_format_pax_restricted, archive_write_add_filter_none);
        row("tar of old", archive_write_set_format_gnutar, archive_write_add_filter_none);
        row("tar.gz", archive_write_set_format_pax, archive_write_add_filter_gzip);
        row("tar.xz", archive_write_set_format_pax, archive_write_add_filter_xz);
        row("tar.zst", archive_write_set_format_pax, archive_write_add_filter_zstd);
        Items packed = items;
        for (Item &item : packed)
            item.method = item.data.isEmpty() ? 0 : 8;
        QTest::newRow("zip, by hand") << zipOf(packed);
    }
    void unpacksGoodArchives()
    {
        QFETCH(QByteArray, archive);
        QVERIFY(FS::writeFile(m_target + "/kept", "kept"));
        QVERIFY(FS::writeFile(m_target + "/a/run.exe", "older, and longer"));
        Progress progress;
        QVERIFY(unpack(archive, &progress));
        QCOMPARE(progress.last(), qMakePair(quint64(1500007), quint64(1500007)));
        for (int i = 1; i < progress.size(); ++i) {
            const auto &[done, total] = progress[i];
            const auto &[earlier, earlierTotal] = progress[i - 1];
            QVERIFY(done >= earlier && done * earlierTotal >= earlier * total);
        }
        const auto content = contentOf(m_target);
        QCOMPARE(content.keys().join(' '),
                 QString("a a/b a/b/big.bin a/none a/run.exe empty kept %1 %1/x.txt")
                     .arg(QString(m_foreign)));
        QVERIFY(content["a/b/big.bin"] == noise(1500000));
        QCOMPARE(content["a/run.exe"], QByteArray("run"));
        QCOMPARE(content["kept"], QByteArray("kept"));
        QVERIFY(QFileInfo(m_target + "/a/run.exe").isExecutable());
        QVERIFY(!QFileInfo(m_target + "/a/none").isExecutable());
    }

    void readsNamesOfAllCharsets()
    {
        QVERIFY(unpack(zipOf({{"\xe2\x82\xac", "data", 0100644, 1 << 11},
                              {"\xc3\xa4"},
                              {"\xd6\xd0\xce\xc4"},
                              {"\xd5\x5c.txt"},
                              {"caf\x82.txt"},
                              {"\x80"}})));
        QCOMPARE(contentOf(m_target).keys().join(' '),
                 QString("caf\u00e9.txt \u00c7 \u00e4 \u20ac \u4e2d\u6587 \u8aa0.txt"));
    }

    void refusesHostileArchives_data()
    {
        QTest::addColumn<QByteArray>("archive");
        QTest::addColumn<QByteArray>("entry");
        // Where a later step would fail as well, the reason tells that the guard did.
        const auto row = [](const char *name, const QByteArray &archive, const QByteArray &entry,
                            const char *why = "") {
            QTest::newRow(name) << archive << QByteArray("entry \"" + entry + "\": " + why);
        };
        const Item good{"good/first"};
        const QByteArray names =
            "../up|a/../../up|..|/abs|//server/share/x|C:/"
            "x|C:x|..\\up|\\\\server\\share|a\\b|con.txt|"
            "d/AUX|nul .x|com1.tar.gz|COM\u00b2|LPT9/x|conin$|file:stream|dot.|blank "
            "|d./x|a//b|what?";
        for (const QByteArray &name : names.split('|'))
            row(name, zipOf({good, {name}}), name);
        row("control", zipOf({{"x\ny"}}), "x\xef\xbf\xbdy");
        row("long", zipOf({{QByteArray(256, 'n')}}), QByteArray(256, 'n'));
        row("no UTF-8", zipOf({good, {"x\xff", "data", 0100644, 1 << 11}}), "x\u00a0");
        row("twice", zipOf({{"x"}, good, {"x"}}), "x");
        row("case", zipOf({{"Read"}, good, {"read"}}), "read");
        row("case of folders", zipOf({{"D/a"}, good, {"d/b"}}), "d/b",
            "the name differs from \"D\"");
        row("file and folder", zipOf({{"x"}, good, {"x/y"}}), "x/y");
        row("link out", zipOf({good, {"l", "../..", 0120777}}), "l", "the entry is neither");
        row("file through link", tarOf({{"l", "..", 0120777}, {"l/x"}}), "l");
        row("hard link", tarOf({good, {"h", "good/first", 0}}), "h", "the entry is neither");
        row("pipe", tarOf({good, {"p", "", 010644}}), "p");
        row("absolute in tar", tarOf({good, {"/abs"}}), "/abs");
        row("folder with content", zipOf({good, {"x/"}}), "x/");
        row("encrypted", zipOf({good, {"x", "data", 0100644, 1}}), "x", "the entry is encrypted");
        row("unknown method", zipOf({good, {"x", "data", 0100644, 0, 77}}), "x");
        row("damaged", zipOf({good, {"x", "data", 0100644, 0, 0, 0, 0, 5}}), "x");
        row("more than told", zipOf({{"x", QByteArray(99999, 'x'), 0100644, 0, 8, -99990}}), "x");
        row("less than told", zipOf({good, {"x", "data", 0100644, 0, 8, 9}}), "x");
        row("another local name", zipOf({good, {"x", "data", 0100644, 0, 0, 0, 0, 0, "y"}}), "x",
            "the entry's own header differs");
        row("overlapping",
            zipOf({{"x", zipOf({{"y"}}).left(35)}, {"y", "data", 0100644, 0, 0, 0, -35}}), "y");
        row("not there", zipOf({good, {"x", "data", 0100644, 0, 0, 0, 1}}), "x");
        row("larger than the disk", tarOf({good, {"x", "data", 0100644, 0, 0, 4000}}), "x",
            "the archive does not fit");
        row("cut tar", tarOf({good, {"x", QByteArray(9999, 'x')}}).left(4000), "x");
        row("too many",
            archiveOf(archive_write_set_format_ustar, archive_write_add_filter_gzip,
                      Items(200001, Item{"x/", "", 040755})),
            "x/");
        QTest::newRow("empty") << zipOf({good, {""}}) << QByteArray("name is empty");
        QTest::newRow("cut zip") << zipOf({good}).chopped(9) << QByteArray("archive");
        QTest::newRow("no archive") << QByteArray("text") << QByteArray("archive");
    }
    void refusesHostileArchives()
    {
        QFETCH(QByteArray, archive);
        QFETCH(QByteArray, entry);
        for (const bool isTargetThere : {false, true}) {
            if (isTargetThere)
                QVERIFY(FS::writeFile(m_target + "/good/first", "older"));
            const auto before = contentOf(m_root);
            const LogCapture log;
            QVERIFY(!unpack(archive));
            const QString lines = log.lines().join('\n');
            QVERIFY2(lines.contains(entry), qPrintable(lines));
            QCOMPARE(contentOf(m_root), before);
        }
    }

    void aTargetInTheWayStaysAsItWas()
    {
        const QString outside = m_root + "/outside";
        QVERIFY(FS::writeFile(m_target + "/a", "older"));
        QVERIFY(FS::writeFile(m_target + "/folder/kept", "kept"));
        QVERIFY(FS::writeFile(outside + "/precious", "precious"));
        QVERIFY(QFile::link(outside, m_target + "/link"));
        const auto before = contentOf(m_root);
        const LogCapture log;
        for (const char *name : {"a/b", "folder", "link/precious", "link/new/x"}) {
            QVERIFY2(!unpack(zipOf({{name}, {*name == 'a' ? "b" : "a"}})), name);
            QCOMPARE(contentOf(m_root), before);
            QVERIFY2(log.lines().last().contains(QString(name).section('/', 0, 0)), name);
        }
        QVERIFY(FS::writeFile(m_root + "/plain", "plain"));
        m_target = m_root + "/plain/target";
        QVERIFY(!unpack(zipOf({{"x"}})));
    }

    void isDestroyedHalfWay()
    {
        // 300 MiB of nothing, so that there is a half way.
        Items items;
        for (int i = 0; i < 300; ++i)
            items << Item{QByteArray::number(i), QByteArray(1 << 20, '\0'), 0100644};
        QVERIFY(FS::writeFile(m_archive, archiveOf(archive_write_set_format_ustar,
                                                   archive_write_add_filter_gzip, items)));
        const LogCapture log;
        auto instance = std::make_unique<FileInstance>();
        const QSignalSpy finished(instance.get(), &FileInstance::FileFinished);
        instance->Start(m_archive, m_target);
        instance->Start(m_archive, m_root + "/second");
        QTRY_VERIFY(contentOf(m_target).size() > 4);
        for (const QString &name : contentOf(m_target).keys())
            QVERIFY(name.startsWith(".rivet-unpack-"));
        instance.reset();
        QCOMPARE(contentOf(m_root).size(), 0);
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
            QCOMPARE(contentOf(m_root).size(), success ? contentOf(m_target).size() + 2 : 0);
            QVERIFY(contentOf(m_target).size() <= 5);
            QVERIFY(FS::removeTree(m_root + "/deep"));
        }
        QVERIFY(refused > 200 && refused < 400);
    }

private:
    // libarchive writes no other names on Windows, though it reads them.
    const QByteArray m_foreign = QSysInfo::productType() == "windows" ? "z" : "\u4e2d\u6587";
    using Progress = QVector<QPair<quint64, quint64>>;

    /// Waits in a loop on the only thread of the pool, as the deployment does.
    bool unpack(const QByteArray &archive, Progress *progress = nullptr)
    {
        if (!FS::writeFile(m_archive, archive))
            qFatal("the archive can not be written");
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        const auto run = [this, progress] {
            QEventLoop loop;
            FileInstance instance;
            QList<bool> ends;
            connect(&instance, &FileInstance::UnCpercentChanged, [&](quint64 done, quint64 total) {
                if (progress)
                    progress->append({done, total});
            });
            connect(&instance, &FileInstance::FileFinished, [&](bool end) { ends << end; });
            connect(&instance, &FileInstance::FileFinished, &loop, &QEventLoop::quit,
                    Qt::QueuedConnection);
            instance.Start(m_archive, m_target);
            loop.exec();
            const bool success = instance.state() == FileInstance::State::Succeeded;
            return ends == QList<bool>{success} ? success : throw QUnhandledException();
        };
        return QtConcurrent::run(run).result();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_root, m_archive, m_target;
};

QTEST_GUILESS_MAIN(tst_FileInstance)
#include "tst_FileInstance.moc"
