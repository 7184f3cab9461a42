#include "core/resources/GameClientListInfo.h"
#include "core/resources/JavaListInfo.h"
#include "tests/support/ServiceWorld.h"

namespace {

QByteArray clients(const QByteArray &records, const QByteArray &code = "0")
{
    return R"({"code":)" + code + R"(,"game":[)" + records + R"(],"resource":{"java":[)" + records +
           "]}}";
}

const QByteArray good = clients(R"({"id":"300","ver":"1.8","name":"jre x86 x64","more":1},{},3,
                                   {"id":301,"ver":"1.8","name":"jre x86"})");

/// One of the two lists, in a process that begins.
template <typename List>
struct Asked
{
    Asked() : list(List::GetInstance())
    {
        QObject::connect(list, &List::updateListFinished, &context,
                         [this](bool success) { outcomes += success ? "1" : "0"; });
    }
    QString update(int calls = 1, int ends = 1)
    {
        outcomes.clear();
        for (int i = 0; i < calls; ++i)
            list->updateList();
        await([&] { return outcomes.size() >= ends; });
        return outcomes;
    }

    QObject context;
    List *list;
    QString outcomes;
};

QString idOf(const QJsonObject &record)
{
    return record["id"].toVariant().toString();
}

} // namespace

class tst_RemoteLists : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsEachFormOfAnswer()
    {
        const QByteArray large = QByteArray(5'000'000, ' ') + good;
        const QPair<QByteArray, bool> rows[] = {
            {good, true},
            {"\xef\xbb\xbf \n" + good + "\n ", true},
            {large, true},
            {clients(R"({"id":300})", "\"0\""), true},
            {clients(R"({"id":300})", "0.5"), false},
            {clients(R"({"id":300})", "1"), false},
            {clients(R"({"id":300})", "\"00\""), false},
            {clients(R"({"id":300})", "null"), false},
            {clients(""), false},
            {R"({"game":[{"id":300}],"java":[{"id":300}]})", false},
            {"<html>busy</html>", false},
            {"", false},
            {good.left(good.size() - 9), false},
        };
        for (const auto &[answer, isGood] : rows) {
            checkAnswer<GameClientListInfo>("/resources/clients", "clients", answer, isGood);
            checkAnswer<JavaListInfo>("/resources/java", "java", answer, isGood);
        }
    }

    void fallsBackToTheDiskWithoutANetwork()
    {
        checkFallBack<GameClientListInfo>("/resources/clients", "clients");
        checkFallBack<JavaListInfo>("/resources/java", "java");
    }

    void findsRecords()
    {
        ServiceWorld world;
        world.server.play("/resources/clients", good, "");
        world.server.play("/resources/java", good, "");
        Asked<GameClientListInfo> games;
        Asked<JavaListInfo> javas;
        QCOMPARE(games.update(2, 2), "11"); // a second request
        QCOMPARE(javas.update(2, 1), "1");  // none
        QVERIFY(world.asked("/resources/clients") == 2 && world.asked("/resources/java") == 1);
        QCOMPARE(games.list->gameClientInfo(300)["more"].toInt(), 1);
        QCOMPARE(idOf(games.list->gameClientInfo("1.8")), "300");
        QVERIFY(games.list->gameClientInfo("1.8 ").isEmpty());
        QCOMPARE(idOf(javas.list->javaInfo(301)), "301");
        QCOMPARE(idOf(javas.list->javaInfoForSystem(true)), "300");
        QCOMPARE(idOf(javas.list->javaInfoForSystem(false)), "300");

        games.list->updateList();
        javas.list->updateList();
        QCOMPARE(world.server.requests().size(), 3);
    }

private:
    template <typename List>
    void checkAnswer(const char *target, const char *folder, const QByteArray &answer, bool isGood)
    {
        ServiceWorld world;
        const QString cache = world.path(QString("resources/%1/list.cache").arg(folder));
        QVERIFY(FS::writeFile(cache, "of yesterday"));
        world.server.play(target, answer, "");
        Asked<List> asked;
        const LogCapture log;
        QCOMPARE(asked.update(), isGood ? "1" : "0");
        QCOMPARE(FS::readFile(cache) == QByteArray("of yesterday"), !isGood);
        QCOMPARE(log.lines().filter("istInfo faied. json:").size(), isGood ? 0 : 1);
    }

    template <typename List>
    void checkFallBack(const char *target, const char *folder)
    {
        QByteArray kept;
        const QString name = QString("resources/%1/list.cache").arg(folder);
        {
            ServiceWorld world;
            world.server.play(target, "", "status=500 then status=500 then");
            Asked<List> asked;
            const LogCapture log;
            QCOMPARE(asked.update(), "0");
            QVERIFY(log.lines()[0].endsWith("listinfo failed with errno 401"));
            QVERIFY(FS::writeFile(world.path(name), "damaged"));
            QCOMPARE(asked.update(), "0");
            world.server.play(target, good, "");
            QCOMPARE(asked.update(), "1");
            kept = FS::readFile(world.path(name)).value();
        }
        ServiceWorld world;
        world.server.play(target, "", "gone");
        QVERIFY(FS::writeFile(world.path(name), kept));
        Asked<List> asked;
        QCOMPARE(asked.update(), "1");
        QCOMPARE(FS::readFile(world.path(name)).value(), kept);
        asked.list->updateList();
        QVERIFY(asked.list->isListUpdated());
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RemoteLists)
#include "tst_RemoteLists.moc"
