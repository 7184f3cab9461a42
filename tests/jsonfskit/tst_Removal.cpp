#include <memory>

#include <QTemporaryDir>
#include <QtTest>

#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/FileTree.h"
#include "tests/support/LogCapture.h"

class tst_Removal : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_ours = m_dir->filePath(QStringLiteral("ours"));
        m_outside = m_dir->filePath(QStringLiteral("outside"));
        QVERIFY(makeFiles(m_ours, text("a.txt .hidden sub/b.txt sub/deep/c.txt other/d.txt")));
        QVERIFY(makeFiles(m_outside, text("precious")));
        qputenv("HOME", QFile::encodeName(m_dir->filePath(QStringLiteral("home/player"))));
        QVERIFY(QDir().mkpath(QDir::homePath()));
    }

    void clearsAllButWhatIsExcluded()
    {
        const struct
        {
            const char *exclude;
            bool wholeTree;
            const char *left;
        } rows[] = {
            {"", true, ""},
            {"sub/b.txt", true, "sub sub/b.txt"},
            {"sub", true, "sub sub/b.txt sub/deep sub/deep/c.txt"},
            {"%1/sub/deep", true, "sub sub/deep sub/deep/c.txt"},
            {"./other//d.txt", true, "other other/d.txt"},
            {"su", true, ""},
            {"../outside", true, ""},
            {"a.txt", false, "a.txt other other/d.txt sub sub/b.txt sub/deep sub/deep/c.txt"},
        };
        for (const auto &row : rows) {
            init();
            const QString exclude =
                QString::fromLatin1(row.exclude).replace(QLatin1String("%1"), m_ours);
            QVERIFY(CCommonFunction::ClearFolderButExclude(m_ours, {exclude}, row.wholeTree));
            QCOMPARE(treeOf(m_ours), QLatin1String(row.left));
            QVERIFY2(QFileInfo::exists(m_ours), "the folder itself stays");
        }
    }

    void linksGoAndWhatTheyPointToStays()
    {
        QVERIFY(QFile::link(m_outside, m_ours + QStringLiteral("/sub/link")));
        QVERIFY(QFile::link(m_outside + QStringLiteral("/precious"),
                            m_ours + QStringLiteral("/file-link")));
        QVERIFY(QFile::link(QStringLiteral("nowhere"), m_ours + QStringLiteral("/broken-link")));
        QVERIFY(QFile::link(m_outside, m_ours + QStringLiteral("/kept-link")));
        QVERIFY(FS::clearFolder(m_ours, {QStringLiteral("kept-link/precious")},
                                FS::ClearScope::WholeTree));
        QCOMPARE(treeOf(m_ours), QStringLiteral("kept-link"));

        QVERIFY2(
            !FS::clearFolder(m_ours + QStringLiteral("/kept-link"), {}, FS::ClearScope::WholeTree),
            "a link is no folder of ours");
        QVERIFY(FS::removeTree(m_ours + QStringLiteral("/kept-link")));
        QVERIFY(FS::removeTree(m_ours));
        QVERIFY(!QFileInfo::exists(m_ours));
        QCOMPARE(treeOf(m_outside), QStringLiteral("precious"));
    }

    void refusesDangerousPaths()
    {
        QVERIFY(makeFiles(QDir::homePath(), text("precious")));
        QVERIFY(QFile::link(m_dir->filePath(QStringLiteral("home")),
                            m_dir->filePath(QStringLiteral("way"))));
        const QString before = treeOf(m_dir->path());
        for (const char *dangerous :
             {"", "/", "//./", "%1/home/player", "%1/home/player/", "%1/home", "%1/way/player",
              "%1/ours/../outside", "../outside", "%1/ours/.."}) {
            const QString path =
                QString::fromLatin1(dangerous).replace(QLatin1String("%1"), m_dir->path());
            const LogCapture log;
            QVERIFY2(!CCommonFunction::ClearFolderButExclude(path, {}, true), dangerous);
            QVERIFY2(!CCommonFunction::DeleteSingleFile(path), dangerous);
            QVERIFY2(!FS::removeTree(path) && log.lines().size() == 3, dangerous);
        }
        QCOMPARE(treeOf(m_dir->path()), before);
    }

    void removesSingleFiles()
    {
        QVERIFY(CCommonFunction::DeleteSingleFile(m_ours + QStringLiteral("/a.txt")));
        QVERIFY2(CCommonFunction::DeleteSingleFile(m_ours + QStringLiteral("/a.txt")),
                 "what is not there does not lock a resource");
        QVERIFY(!CCommonFunction::DeleteSingleFile(m_ours + QStringLiteral("/sub")));
        QVERIFY(QFileInfo::exists(m_ours + QStringLiteral("/sub/deep/c.txt")));
        QVERIFY(CCommonFunction::ClearFolderButExclude(m_ours + QStringLiteral("/none"), {}, true));
    }

    void writeProtectionDoesNotMatter()
    {
        const auto readOnly = QFileDevice::ReadOwner | QFileDevice::ExeOwner;
        QVERIFY(QFile::setPermissions(m_ours + QStringLiteral("/sub/b.txt"), readOnly));
        QVERIFY(QFile::setPermissions(m_ours + QStringLiteral("/sub"), readOnly));
        QVERIFY(FS::removeTree(m_ours));
        QVERIFY(!QFileInfo::exists(m_ours));
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_ours, m_outside;
};

QTEST_GUILESS_MAIN(tst_Removal)
#include "tst_Removal.moc"
