#include <QtTest>

#include "core/launch/GameOptions.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/LogCapture.h"

class tst_GameOptions : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void editsTheFiles()
    {
        const QString none, pack = "包 1.zip";
        const QByteArray name = pack.toUtf8(), fresh = "gamma:1.0\r\nlang:zh_CN\r\n",
                         added = "resourcePacks:[\"\"]\r\nlang:zh_CN\r\n";
        const auto options = GameOptions::updateOptions;
        const auto shaders = GameOptions::updateShaderOptions;
        const struct
        {
            const char *name;
            bool (*update)(const QString &, const QString &);
            QString pack;
            QByteArray before, after;
        } rows[] = {
            {"new", options, pack, {}, fresh + "resourcePacks:[\"" + name + "\"]\r\n"},
            {"new without pack", options, none, {}, fresh},
            {"empty", options, none, "", added},
            {"no final line end", options, none, "fov:0.5", "fov:0.5\r\n" + added},
            {"replaced in its place", options, pack,
             "gamma:0.5\nresourcePacks:[\"a.zip\",\"b.zip\"]\nlang:de_DE\n x:\xff",
             "gamma:0.5\nresourcePacks:[\"" + name + "\"]\r\nlang:de_DE\n x:\xff"},
            {"pack line without end", options, none, "lang:en\r\n\r\nresourcePacks:[]",
             "lang:en\r\n\r\nresourcePacks:[\"\"]\r\n"},
            {"no key", options, none, "a lang:x\nresourcePacks:x\n",
             "a lang:x\nresourcePacks:x\n" + added},
            {"new shaders", shaders, "s.zip", {}, "shaderPack=s.zip\r\n"},
            {"new shaders without pack", shaders, none, {}, ""},
            {"shaders replaced", shaders, none, "a\r\nshaderPack=x\nb", "a\r\nshaderPack=\r\nb"},
            {"shaders added", shaders, "s.zip", QByteArray("a=\0", 3),
             QByteArray("a=\0\r\nshaderPack=s.zip\r\n", 23)},
        };
        for (const auto &row : rows) {
            const QTemporaryDir dir;
            const QString file = dir.filePath("o.txt");
            QVERIFY(row.before.isNull() || FS::writeFile(file, row.before));
            QVERIFY2(row.update(file, row.pack), row.name);
            QVERIFY2(FS::readFile(file) == row.after, row.name);
            QVERIFY(row.update(file, row.pack));
            QVERIFY2(FS::readFile(file) == row.after || row.before.isNull(), "a second run");
        }
    }

    void whatCannotBeReadOrWrittenIsLogged()
    {
        const QTemporaryDir dir;
        const LogCapture log;
        QVERIFY2(!GameOptions::updateOptions(dir.path(), {}), "a folder can't be read");
        QVERIFY(FS::writeFile(dir.filePath("file"), "old"));
        QVERIFY(GameOptions::updateOptions(dir.filePath("file/o.txt"), {}));
        QCOMPARE(log.lines().size(), 2);
    }

    void theFirstPackCounts()
    {
        const QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir("folder.zip") && FS::writeFile(dir.filePath("a.rar"), ""));
        for (const QString folder : {"none", "."})
            QCOMPARE(GameOptions::firstPack(dir.filePath(folder)), QString());
        QVERIFY(FS::writeFile(dir.filePath("z.7z"), ""));
        QCOMPARE(GameOptions::firstPack(dir.path()), "z.7z");
    }
};

QTEST_GUILESS_MAIN(tst_GameOptions)
#include "tst_GameOptions.moc"
