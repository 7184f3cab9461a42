#include <future>
#include <memory>

#include <QTemporaryDir>
#include <QtTest>

#include "support/coresupport/CCommonFunction.h"
#include "tests/support/FakeMachine.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFiles.h"

class tst_Removal : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_ours = m_dir->filePath("ours");
        m_outside = m_dir->filePath("outside");
        makeFiles(m_dir->path(), {"ours/a.txt", "ours/.hidden", "ours/sub/b.txt",
                                  "ours/sub/deep/c.txt", "ours/other/d.txt", "outside/precious"});
    }

    void clearsAllButWhatIsExcluded()
    {
        const QString all = ".hidden a.txt other other/d.txt sub sub/b.txt sub/deep sub/deep/c.txt";
        const struct
        {
            QString exclude;
            bool wholeTree;
            QString left;
        } rows[] = {
            {"", true, ""},
            {"sub/b.txt", true, "sub sub/b.txt"},
            {"sub", true, "sub sub/b.txt sub/deep sub/deep/c.txt"},
            {"%1/ours/sub/deep", true, "sub sub/deep sub/deep/c.txt"},
            {"./other//d.txt", true, "other other/d.txt"},
            {"su", true, ""},
            {"../outside", true, ""},
            {".", true, all},
            {"%1", true, all},
            {"a.txt", false, QString(all).remove(".hidden ")},
        };
        for (const auto &row : rows) {
            init();
            const QString exclude = QString(row.exclude).replace("%1", m_dir->path());
            QVERIFY(CCommonFunction::ClearFolderButExclude(m_ours, {exclude}, row.wholeTree));
            QCOMPARE(treeOf(m_ours), row.left);
            QVERIFY2(QFileInfo::exists(m_ours), "the folder itself stays");
        }
    }

    void linksGoAndWhatTheyPointToStays()
    {
        makeLink(m_outside, m_ours + "/sub/link");
        makeLink(m_outside, m_ours + "/kept-link");
        QFile::link(m_outside + "/precious", m_ours + "/file-link");
        QFile::link("nowhere", m_ours + "/broken-link");
        const LogCapture log;
        QCOMPARE(!FS::clearFolder(m_ours, {"kept-link/precious"}, FS::ClearScope::WholeTree),
                 isWine());
        const QStringList left = QDir(m_ours).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        QCOMPARE(left.join(' '), QString(isWine() ? "kept-link sub" : "kept-link"));
        QVERIFY2(!FS::clearFolder(m_ours + "/kept-link", {}, FS::ClearScope::WholeTree),
                 "a link is no folder of ours");
        QCOMPARE(!FS::removeTree(m_ours + "/kept-link/"), isWine());
        QCOMPARE(!FS::removeTree(m_ours), isWine());
        QCOMPARE(QFileInfo::exists(m_ours), isWine());
        QCOMPARE(treeOf(m_outside), "precious");
    }

    void refusesDangerousPaths()
    {
        FakeMachine machine;
        machine.home = m_dir->filePath("way/player");
        makeFiles(m_dir->filePath("home/player"), {"precious"});
        makeLink(m_dir->filePath("home"), m_dir->filePath("way"));
        const QString before = treeOf(m_dir->path());
        const QPair<const char *, const char *> rows[] = {
            {"", "is empty"},
            {"%1/ours/../outside", "climbs out"},
            {"../ours", "climbs out"},
            {"%1/ours/..", "climbs out"},
            {"%1/home/player/", "holds it"},
            {"%1/home", "holds it"},
            {"%1/way/player", "holds it"},
            {"%1", "holds it"},
        };
        for (const auto &row : rows) {
            const QString path = QString(row.first).replace("%1", m_dir->path());
            const LogCapture log;
            QVERIFY2(!CCommonFunction::ClearFolderButExclude(path, {}, true), row.first);
            QVERIFY2(!CCommonFunction::DeleteSingleFile(path), row.first);
            QVERIFY2(!FS::removeTree(path), row.first);
            QVERIFY2(log.lines().filter(row.second).size() == 3, row.first);
        }
        // With a broken guard nothing but this operation would leave the machine whole.
        for (const QString &root : {QString("/"), QString("//./"), QDir::rootPath()}) {
            const LogCapture log;
            QVERIFY(!CCommonFunction::DeleteSingleFile(root));
            QCOMPARE(log.lines().filter("a root or a device").size(), 1);
        }
        QCOMPARE(treeOf(m_dir->path()), before);
    }

    void removesSingleFiles()
    {
        QVERIFY(CCommonFunction::DeleteSingleFile(m_ours + "/a.txt"));
        QVERIFY2(CCommonFunction::DeleteSingleFile(m_ours + "/a.txt"),
                 "what is not there does not lock a resource");
        QVERIFY(CCommonFunction::DeleteSingleFile(m_ours + "/.hidden/below a file"));
        QVERIFY(CCommonFunction::ClearFolderButExclude(m_ours + "/none", {}, true));
        const LogCapture log;
        QCOMPARE(FS::removeFile(m_ours + "/sub").firstFailure, m_ours + "/sub");
        QVERIFY(QFileInfo::exists(m_ours + "/sub/deep/c.txt"));
    }

    void writeProtectionDoesNotMatter()
    {
        const auto readOnly = QFileDevice::ReadOwner | QFileDevice::ExeOwner;
        QVERIFY(QFile::setPermissions(m_ours + "/sub/deep/c.txt", readOnly));
        QVERIFY(QFile::setPermissions(m_ours + "/sub", readOnly));
        QVERIFY(FS::clearFolder(m_ours, {"sub/b.txt"}, FS::ClearScope::WholeTree));
        QCOMPARE(treeOf(m_ours), "sub sub/b.txt");
        QVERIFY(QFileInfo(m_ours + "/sub").permissions() & QFileDevice::WriteOwner);
    }

    void heldEntriesAreTriedAgain()
    {
        QFile held(m_ours + "/sub/b.txt");
        QVERIFY(held.open(QIODevice::ReadOnly));
        if (QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows) {
            const LogCapture log;
            QCOMPARE(FS::removeTree(m_ours).firstFailure, held.fileName());
            QCOMPARE(treeOf(m_ours), "sub sub/b.txt");
        }
        const auto release = std::async(std::launch::async, [&held] {
            QThread::msleep(200);
            held.close();
        });
        QVERIFY(FS::removeTree(m_ours) && !QFileInfo::exists(m_ours));
    }

    void longAndForeignNamesGo()
    {
        const QString deep = m_ours + QString('/' + QString(40, 'd')).repeated(8);
        makeFiles(deep, {QString::fromUtf8("имя 名 😀.txt")});
        QVERIFY(FS::removeTree(m_ours) && !QFileInfo::exists(m_ours));
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_ours, m_outside;
};

QTEST_GUILESS_MAIN(tst_Removal)
#include "tst_Removal.moc"
