#include <QtTest>

#include "support/coresupport/FilePersistent.h"
#include "support/jsonfskit/FS.h"

namespace {

/// Keeps a text that has to begin with "ok".
class Keeper : public FilePersistent
{
public:
    QByteArray text;

protected:
    bool BuildData(QByteArray &out) override
    {
        out = text;
        return !text.isEmpty();
    }
    bool ParseData(const QByteArray &data) override
    {
        if (!data.startsWith("ok"))
            return false;
        text = data;
        return true;
    }
};

} // namespace

class tst_FilePersistent : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void savesAndLoads()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("new/folder/state"));
        Keeper saved, loaded;
        saved.SetSavePathFile(path);
        loaded.SetSavePathFile(path);
        QVERIFY(!loaded.Load());
        saved.text = QByteArrayLiteral("ok\0\r\n\xFF");
        QVERIFY(saved.Save());
        QVERIFY(loaded.Load());
        QCOMPARE(loaded.text, saved.text);
        QVERIFY(saved.Save(QByteArrayLiteral("ok")));
        QCOMPARE(FS::readFile(path).value(), QByteArray("ok"));
    }

    void aFailureLeavesTheFile()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("state"));
        QVERIFY(FS::writeFile(path, "corrupt"));
        Keeper keeper;
        keeper.SetSavePathFile(path);
        QVERIFY(!keeper.Load());
        QVERIFY2(!keeper.Save(), "there is nothing to save");
        QCOMPARE(FS::readFile(path).value(), QByteArray("corrupt"));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList(QStringLiteral("state")));
    }

    void pathsThatCanNotBeWritten()
    {
        const QTemporaryDir dir;
        Keeper keeper;
        keeper.text = "ok";
        QVERIFY2(!keeper.Save(), "no path was set");
        keeper.SetSavePathFile(dir.path());
        QVERIFY(!keeper.Save());
        QVERIFY(FS::writeFile(dir.filePath(QStringLiteral("file")), "x"));
        keeper.SetSavePathFile(dir.filePath(QStringLiteral("file/below")));
        QVERIFY(!keeper.Save());
    }
};

QTEST_GUILESS_MAIN(tst_FilePersistent)
#include "tst_FilePersistent.moc"
