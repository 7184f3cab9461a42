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
    void savesLoadsAndLeavesTheFileOnAFailure()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath("new/folder/state");
        Keeper saved, loaded;
        saved.text = QByteArrayLiteral("ok\0\r\n\xFF");
        QVERIFY2(!saved.Save(), "no path was set");
        saved.SetSavePathFile(path);
        loaded.SetSavePathFile(path);
        QVERIFY(!loaded.Load() && !loaded.Save());
        QVERIFY(saved.Save() && loaded.Load());
        QCOMPARE(loaded.text, saved.text);

        // Whoever reads while the file is replaced reads the old content to its end.
        QFile reader(path);
        QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        saved.Save("corrupt");
        QCOMPARE(reader.readAll(), saved.text);
        reader.close();
        QVERIFY(saved.Save("corrupt") && !loaded.Load());
        loaded.text.clear();
        QVERIFY2(!loaded.Save(), "there is nothing to save");
        QCOMPARE(FS::readFile(path).value(), QByteArray("corrupt"));
        QCOMPARE(QDir(dir.filePath("new/folder")).count(), 3u);

        saved.SetSavePathFile(path + "/below");
        QVERIFY2(!saved.Save(), "a file is no folder");
    }
};

QTEST_GUILESS_MAIN(tst_FilePersistent)
#include "tst_FilePersistent.moc"
