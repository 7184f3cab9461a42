#include <memory>

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/LogCapture.h"

namespace {

void makeFiles(const QString &folder, const QStringList &names)
{
    for (const QString &name : names)
        QVERIFY(FS::writeFile(folder + QLatin1Char('/') + name, "x"));
}

/// All entries below @p folder, relative and sorted; links are not followed.
QString treeOf(const QString &folder)
{
    QStringList names;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        names << QDir(folder).relativeFilePath(it.next());
    names.sort();
    return names.join(QLatin1Char(' '));
}

} // namespace

class tst_Removal : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_ours = m_dir->filePath(QStringLiteral("ours"));
        m_outside = m_dir->filePath(QStringLiteral("outside"));
        makeFiles(m_ours,
                  {QStringLiteral("a.txt"), QStringLiteral(".hidden"), QStringLiteral("sub/b.txt"),
                   QStringLiteral("sub/deep/c.txt"), QStringLiteral("other/d.txt")});
        makeFiles(m_outside, {QStringLiteral("precious")});
        m_home = qgetenv("HOME");
        qputenv("HOME", QFile::encodeName(m_dir->filePath(QStringLiteral("home/player"))));
        QVERIFY(QDir().mkpath(QDir::homePath()));
    }
    void cleanup() { qputenv("HOME", m_home); }

    void clearsAllButWhatIsExcluded_data()
    {
        QTest::addColumn<QStringList>("exclude");
        QTest::addColumn<bool>("wholeTree");
        QTest::addColumn<QString>("left");
        const auto row = [](const char *name, const QStringList &exclude, bool wholeTree,
                            const char *left) {
            QTest::newRow(name) << exclude << wholeTree << QString::fromLatin1(left);
        };
        row("nothing", {}, true, "");
        row("a file", {QStringLiteral("sub/b.txt")}, true, "sub sub/b.txt");
        row("a folder keeps its content", {QStringLiteral("sub")}, true,
            "sub sub/b.txt sub/deep sub/deep/c.txt");
        row("absolute", {QStringLiteral("%1/sub/deep")}, true, "sub sub/deep sub/deep/c.txt");
        row("not tidy", {QStringLiteral("./other//d.txt"), QString()}, true, "other other/d.txt");
        row("beginning of a name", {QStringLiteral("su")}, true, "");
        row("outside", {QStringLiteral("../outside")}, true, "");
        row("direct files only", {QStringLiteral("a.txt")}, false,
            "a.txt other other/d.txt sub sub/b.txt sub/deep sub/deep/c.txt");
    }
    void clearsAllButWhatIsExcluded()
    {
        QFETCH(QStringList, exclude);
        QFETCH(bool, wholeTree);
        exclude.replaceInStrings(QStringLiteral("%1"), m_ours);
        QVERIFY(CCommonFunction::ClearFolderButExclude(m_ours, exclude, wholeTree));
        QTEST(treeOf(m_ours), "left");
        QVERIFY2(QFileInfo::exists(m_ours), "the folder itself stays");
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

    void refusesDangerousPaths_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("empty") << QString();
        QTest::newRow("root") << QDir::rootPath();
        QTest::newRow("root, untidy") << QStringLiteral("//./");
        QTest::newRow("home") << QStringLiteral("%1/home/player");
        QTest::newRow("home with a slash") << QStringLiteral("%1/home/player/");
        QTest::newRow("holds home") << QStringLiteral("%1/home");
        QTest::newRow("through a link to home") << QStringLiteral("%1/way/player");
        QTest::newRow("climbs out") << QStringLiteral("%1/ours/../outside");
        QTest::newRow("climbs out, relative") << QStringLiteral("../outside");
    }
    void refusesDangerousPaths()
    {
        QFETCH(QString, path);
        makeFiles(QDir::homePath(), {QStringLiteral("precious")});
        QVERIFY(QFile::link(m_dir->filePath(QStringLiteral("home")),
                            m_dir->filePath(QStringLiteral("way"))));
        path.replace(QStringLiteral("%1"), m_dir->path());
        const QString before = treeOf(m_dir->path());
        const LogCapture log;
        QVERIFY(!CCommonFunction::ClearFolderButExclude(path, {}, true));
        QVERIFY(!CCommonFunction::DeleteSingleFile(path));
        QVERIFY(!FS::removeTree(path));
        QCOMPARE(log.lines().size(), 3);
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
    QByteArray m_home;
};

QTEST_GUILESS_MAIN(tst_Removal)
#include "tst_Removal.moc"
