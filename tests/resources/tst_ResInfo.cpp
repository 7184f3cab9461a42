#include <QRandomGenerator>

#include "core/resources/ResObj.h"
#include "tests/support/ServiceWorld.h"

namespace {

constexpr ResType types[] = {ResTypeMods,  ResTypeSaves,   ResTypeResourcePacks,
                             ResTypeJava,  ResTypeSkins,   ResTypeCloaks,
                             ResTypeOther, ResTypeShaders, ResTypeGame};

struct Record : ResObj
{
    explicit Record(ResType type, uint id = 77) : ResObj(id, type, nullptr) {}
    using ResInfo::saveToCache;

    QString text() const
    {
        const VersionObj v = versionObj();
        QString depends;
        for (const quint64 key : dependsOnList())
            depends += QString(" %1.%2").arg(key >> 32).arg(key & 0xffffffff);
        return QString("%1.%2 %3|%4|%5|%6|%7|%8|%9|")
                   .arg(resType())
                   .arg(resId())
                   .arg(name(), desc(), descPic(), downloadUrl())
                   .arg(themeId())
                   .arg(resVersion())
                   .arg(v.kind) +
               v.version + '|' + v.lowVersion + '|' + v.highVersion + '|' + depends;
    }
};

} // namespace

class tst_ResInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsBackWhatItWrites()
    {
        const ServiceWorld world;
        QRandomGenerator random(1);
        const auto oneOf = [&](const QStringList &texts) {
            return texts[random.bounded(texts.size())];
        };
        for (int i = 0; i < 360; ++i) {
            const ResType type = types[i % 9];
            const bool isPicture = type == ResTypeSkins || type == ResTypeCloaks;
            Record written(type, random.generate() | 1);
            written.setName(oneOf({"a", "%1 \"n\"", QString::fromUtf8("\u4e2d\U0001F600")}));
            written.setDesc(oneOf({"", "text"}));
            written.setDescPic(oneOf({"", "http://p/1"}));
            written.setDownloadUrl(isPicture ? "" : "http://u/%31");
            written.setThemeId(isPicture ? random.generate() : 0);
            if (type == ResTypeGame)
                written.setResVersion(oneOf({"1.7", "1.8-x"}));
            else if (i % 2)
                written.setVersionObj({"1.8", "", "", 0});
            else
                written.setVersionObj({"", oneOf({"", "1.7"}), oneOf({"", "1.8-b"}), 1});
            QList<quint64> depends;
            for (int n = random.bounded(6); n > 0; --n) {
                // Types without a section word can be told in a record of theirs, in front.
                const ResType wanted = types[QList<int>{0, 1, 2, 7, 8}[random.bounded(5)]];
                depends << ResourceKey::pack(random.generate(), wanted);
            }
            if (type >= ResTypeJava && type <= ResTypeOther)
                depends.prepend(ResourceKey::pack(random.generate(), type));
            written.setDependsOnList(depends);
            written.saveToCache();
            Record read(type, written.resId());
            QVERIFY(read.loadFromCache());
            QCOMPARE(read.text(), written.text());
            QVERIFY(read.deleteCache() && !read.loadFromCache() && !read.deleteCache());
        }
    }

    void readsTheObjectsOfTheService()
    {
        const ServiceWorld world;
        const char *usual = R"("id":"77","type":1,"name":"n","url":"u")";
        // What is added to the usual object, and the record then; empty if there is none.
        const QPair<QByteArray, QString> rows[] = {
            {R"("mcver":"1.7.2-1.8")", "1.77 n|||u|0||1||1.7.2|1.8|"},
            {R"("id":77,"mcver":"1.7-a-b")", "1.77 n|||u|0||1||1.7|a-b|"},
            {R"("id":4000000000,"type":"7","mcver":"1.7")", "7.4000000000 n|||u|0||0|1.7|||"},
            {R"("type":5,"themeId":"9","pic":"p")", "5.77 n||p||9||1||||"},
            {R"("type":6,"picOri":"o","themeId":9)", "6.77 n|||o|9||1||||"},
            {R"("type":101,"ver":"1.8","mcver":"x")", "101.77 n|||u|0|1.8|0||||"},
            {R"("dependsOnList":"12;mods;34;;35;resource;36;")",
             "1.77 n|||u|0||1|||| 1.12 1.34 1.35 3.36"},
            {R"("type":8,"dependsOnList":"1;mygame2;3;shaders;4;x;-1")",
             "8.77 n|||u|0||1|||| 1.1 101.3 8.4 8.0 8.4294967295"},
            {R"("id":0)", ""},
            {R"("id":-1)", ""},
            {R"("id":1.5)", ""},
            {R"("id":4294967296)", ""},
            {R"("id":"x")", ""},
            {R"("type":"0")", ""},
            {R"("type":101)", ""},
            {R"("name":"")", ""},
            {R"("type":3,"url":"")", ""},
            {R"("name":{"a":1})", ""},
        };
        for (const auto &[added, expected] : rows) {
            // The later of two equal keys counts.
            const QByteArray text = '{' + QByteArray(usual) + ',' + added + '}';
            const QJsonObject object = QJsonDocument::fromJson(text).object();
            QVERIFY2(!object.isEmpty(), added);
            Record record(ResTypeMods);
            QCOMPARE(record.loadFromRemote(object) ? record.text() : QString(), expected);
        }
    }

    void refusesDamagedFiles()
    {
        const ServiceWorld world;
        Record record(ResTypeMods);
        const QString file = world.path("resources/mods/77.inf");
        record.setName("a mod");
        record.setDownloadUrl("http://u/1");
        record.setDependsOnList({ResourceKey::pack(5, ResTypeSaves)});
        record.saveToCache();
        const QByteArray good = FS::readFile(file).value();
        QRandomGenerator random(2);
        int refused = 0;
        for (int i = 0; i < 4000; ++i) {
            QByteArray bad = good;
            if (i < good.size()) {
                bad.truncate(i);
            } else if (i < 2 * good.size()) {
                bad[i - good.size()] = '\0';
            } else {
                for (int n = 0; n < 1 + i % 3; ++n)
                    bad[random.bounded(bad.size())] = char(random.generate());
            }
            QFile out(file); // not synced, for speed
            QVERIFY(out.open(QIODevice::WriteOnly) && out.write(bad) == bad.size());
            out.close();
            Record read(ResTypeMods);
            const bool isGood = read.loadFromCache();
            refused += int(!isGood);
            QVERIFY(i >= good.size() || !isGood);
            QVERIFY(!isGood || (read.resId() && read.resType() && !read.name().isEmpty()));
            QVERIFY2(FS::readFile(file) == bad, "a read changes nothing");
        }
        QVERIFY(refused > 1000);
        QVERIFY(FS::writeFile(file, R"({"id":77,"type":1,"name":"n","url":"u"})"));
        QVERIFY(!record.loadFromCache());

        makeFiles(world.folder.path(), {"resources/saves"});
        Record unsaved(ResTypeSaves);
        const LogCapture log;
        unsaved.saveToCache();
        QCOMPARE(log.lines().join('|'), "save resource information failed, type:2, id:77");
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_ResInfo)
#include "tst_ResInfo.moc"
