#include "core/accounts/RivetUserProfile.h"
#include "core/store/BuyRequest.h"
#include "core/store/MyPropListInfo.h"
#include "core/store/UsePropRequest.h"
#include "core/store/VipWelfareInfo.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

namespace {

/// A good answer whose members are written as key=text, or any other in single quotes.
QByteArray json(QString text)
{
    text.replace(QRegularExpression("(\\w+)=([^,}\\]]*)"), "'\\1':'\\2'").replace('\'', '"');
    return (text.startsWith('{') ? text : "{\"code\":0," + text + '}').toUtf8();
}

QString prop(int id, int toolType, int form = 1, const char *more = "")
{
    return QString(",{id=%1,name=张,toolType=%2,picture=p,soldOut=%3,resUrl=r,'normList':[{type=%3,"
                   "price=7,name=9张,describe=d}]%4}")
        .arg(QString::number(id), QString::number(toolType), QString::number(form), more);
}

const QString nothing = "'data':[{}";
const QByteArray props = json(nothing + prop(11, 1) + prop(13, 1) + prop(12, 2) +
                              prop(14, 4, 1, ",'vipLevel':2") + prop(15, 3, 2) + prop(12, 3, 2) +
                              prop(16, 1).replace("'normList':", "'normList':null,'x':") + ']');
const QByteArray levels = json(
    "'data':[{vipLevel=1,discount=1,room=5,price=0,'welfare':[]},{vipLevel=1,discount=0.85,room=9,"
    "price=7,'welfare':[{},{'id':null},{'n':5},{id=0},{id=12,numbers=3}]}]");
const QHash<QString, QByteArray> texts = {{"props", props},
                                          {"levels", levels},
                                          {"bom", "\ufeff" + props},
                                          {"cut", props.left(300)},
                                          {"none", json("'data':[]")},
                                          {"half", json(nothing + prop(1, 1) + ",5]")},
                                          {"binary", QByteArray("qbjs\1\0\0\0", 8)}};

/// The core with user 7, who has 100 and owns some props, and with the lists in their caches.
struct Run : CoreRun
{
    explicit Run(const QByteArray &storeCache = props, const QByteArray &vipCache = levels)
        : isReady(FS::writeFile(file("rivetStoreList.cache"), storeCache) &&
                  FS::writeFile(file("vipwelfareinfo.cache"), vipCache))
    {
        server.play("/account/info", "", "mute");
        const QJsonObject account{{"user", QJsonObject{{"bid", "7"}}}};
        user.setCurrentProfile({{"code", "1"}, {"oruser_profile", account}});
        user.ModifyMoney(100);
        mine.UpdateMyPorpInfo(11, 1, 1);
        mine.UpdateMyPorpInfo(13, 1, 3);
        mine.UpdateMyPorpInfo(12, 2, 0);
        mine.ChangePropUserStatus(13, true);
        const auto note = [this](bool isGood) { ends << isGood; };
        QObject::connect(&store, &RivetStoreListInfo::updateStorePropListFinished, note);
        QObject::connect(&mine, &MyPropListInfo::updateMyPropListFinished, note);
        QObject::connect(&buy, &BuyRequest::requestFinished, note);
        QObject::connect(&use, &UsePropRequest::requestFinished, note);
    }
    /// Does something, and something else of the kind meanwhile; true if it ends well.
    bool perform(const QString &action)
    {
        const QStringList words = action.split(' ');
        const bool isVip = words[0] == "vip";
        QObject *list = isVip ? &vip : words[0] == "store" ? (QObject *)&store : &mine;
        const int lines = log.lines().size();
        ends.clear();
        for (const bool first : {true, false}) {
            if (words[0] == "buy")
                buy.BuyProp(7, first ? words[1].toUInt() : 15, 3, first ? 30 : 99);
            else if (words[0] == "use")
                use.UseProp(first ? words[1].toUInt() : 15, first == (words.size() == 2), 8);
            else
                QMetaObject::invokeMethod(list, "UpdateList");
        }
        await([&] {
            return !ends.isEmpty() || vip.IsListUpdated() || (isVip && log.lines().size() > lines);
        });
        return vip.IsListUpdated() || ends == QList<bool>{true};
    }
    QString account() const
    {
        const RivetUserInfo is = user.GetRivetUserInfo();
        QString all = QString("%1,%2,%3").arg(int(is.money)).arg(is.vipLevel).arg(is.vipEndTime);
        for (const MyProp &prop : mine.GetMyPropList())
            all += QString(" %1x%2@%3").arg(prop.id).arg(prop.count).arg(prop.endTime) +
                   (prop.isUsing ? "*" : "") + (prop.isExpire ? "!" : "") + prop.name;
        return all.remove("张");
    }
    QString lists() const
    {
        const VipWelfare level = vip.GetVipWelfare(1);
        QString all = QString("%1,%2,%3").arg(level.discount).arg(level.room).arg(level.price);
        for (const VipWelfareItem &item : level.welfareList)
            all += QString(",%1x%2").arg(item.numbers).arg(item.id);
        for (const StoreProp &prop : store.getStorePropList())
            all += QString(" %1/%2").arg(prop.id).arg(prop.vipLevel) + (prop.onSale ? "+" : "") +
                   prop.normList.value(0).name;
        return all;
    }

    const LogCapture log;
    const bool isReady;
    QList<bool> ends;
    RivetUserProfile &user = *RivetUserProfile::GetInstance();
    RivetStoreListInfo &store = *RivetStoreListInfo::GetInstance();
    MyPropListInfo &mine = *MyPropListInfo::GetInstance();
    VipWelfareInfo &vip = *VipWelfareInfo::GetInstance();
    BuyRequest buy;
    UsePropRequest use;
};

} // namespace

class tst_Store : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void answers()
    {
        // What is done; the answer, or the script of a bad one; what there is then, behind "no"
        // after a failure: money, VIP and props ("=" for unchanged) or the lists; words of the log.
        // For a list its cache file before and after.
        const char *rows[] = {
            "buy 11|propId=11,count=2,expiryData=4000000000|70,1,0 11x2@4000000000 13x1@3* 12x2@0|",
            "buy 9|propId=9,count=4|70,1,0 = 9x4@0|",
            "buy 1|{code=0}|no 100,1,0 =|parse buy info failed, error: code: the value is no whole",
            "buy 1|{'code':-1,msg=m}|no 100,1,0 =|buy failed! error : m",
            "use 11|{'code':5}|no 100,1,0 =|parse buy info failed, error: errMsg: the value is no",
            "buy 1|!gone|no 100,1,0 =|request store list info failed, error code:1",
            "use 11|!status=503|no 100,1,0 =|request store list info failed, error code:403",
            "use 11|{'code':0}|100,1,0 11x1@1* 13x1@3 12x2@0|",
            "use 13 off,use 12,use 12,use 12|{'code':0}|100,1,0 11x1@1 13x1@3|",
            "use 12 off,use 11 off|{'code':0}|100,1,0 11x1@1 13x1@3* 12x1@0|",
            "use 9|{'code':0}|100,1,0 =|",
            "mine|'data':[{},{toolsId=12,count=3,endTime=9,isUsing=1,isExpire=2},{toolsId=7,count="
            "1,"
            "'endTime':null,isUsing=2,isExpire=1}]|100,1,0 12x3@9! 7x1@0*|",
            "mine|{'code':-1}|100,1,0|",
            "mine|{'code':3}|no 100,1,0|request my prop list failed, code: 3_parse store list info",
            "mine|!gone|no 100,1,0|request store list info failed, error code:1",
            "mine|'data':[{toolsId=1,count=1}]|no 100,1,0|parse my store list failed, error: endTi",
            "store|bom|P|parse store list failed, error: code: the value is no whole|cut|props",
            "store|none|||props|none",
            "store|half|no P|error: prop: the value is no object_parse store list i|props|props",
            "store|half|no  1/09张|info failed_parse store list failed, error: code: |cut|cut",
            "store|{'code':4}|no P|code is 0 on parse store list!_parse store list |props|props",
            "store|!gone|no |error code:1_parse store list failed, error: code: |binary|binary",
            "vip|none|1,5,0||levels|none",
            "vip|levels|L|parse vip welfare list failed, error: code: the value is|cut|levels",
            "vip|{'code':4}|no L|code is 0 on parse store list!_parse store li|levels|levels",
            "vip|!gone|no L|request store list info failed, error code:1|levels|levels",
            "vip|half|no 1,5,0|error: vipLevel: the value is no string_parse store li|cut|cut"};
        for (const char *row : rows) {
            const QStringList cells = QString(row).split('|');
            const bool isStore = cells[0] == "store", isVip = cells[0] == "vip";
            const QByteArray cache = texts[cells.value(4)], none = texts["none"];
            Run run(isStore ? cache : isVip ? none : props, isVip ? cache : none);
            const QByteArray body = texts.value(cells[1], json(cells[1]));
            const QString script = cells[1].startsWith('!') ? cells[1].mid(1) : "";
            for (const char *path : {"/store/mine?bid=7", "/store/buy", "/vip/welfare",
                                     "/store/use", "/store/props?page=1&size=90"})
                run.server.play(path, body, script.toLatin1());
            bool isGood = run.isReady;
            for (const QString &action : cells[0].split(','))
                isGood = run.perform(action) && isGood;
            for (const QString &path : run.asked("sign=")) {
                const QUrlQuery query(QUrl(path).query());
                const QString text =
                    "Q7K3XeLpmmTzb57" + query.queryItemValue("rand") + query.queryItemValue("time");
                QCOMPARE(query.queryItemValue("sign").toUtf8(),
                         QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex());
            }
            QCOMPARE(run.asked("/use?").filter("&extra=8").size(), run.asked("/use?").size());
            QString is = isStore ? run.lists().mid(5) : isVip ? run.lists() : run.account();
            QString expected = QString(cells[2]).replace("=", "11x1@1 13x1@3* 12x2@0");
            expected.replace("P", " 11/09张 13/09张 12/09个 14/29张 15/0+9张 12/0+9张");
            QCOMPARE(is.prepend(isGood ? "" : "no "), expected.replace("L", "0.85,9,7,3x12"));
            const QString logged = run.log.lines().join('_');
            QVERIFY2(cells[3].isEmpty() ? logged.isEmpty() : logged.contains(cells[3]), row);
            const QString file = isVip ? "vipwelfareinfo.cache" : "rivetStoreList.cache";
            QCOMPARE(FS::readFile(run.file(file)).value(), texts[cells.value(5, "props")]);
        }
        const Run run;
        QVERIFY(run.store.getStoreProp(12).toolType == 2 && run.store.GetPrice(12, 2) == 7);
        QCOMPARE(run.store.GetPrice(12, 3), 0u);
    }

    void wrongValues()
    {
        // Of all members in the form key=text.
        for (const QString &row : QStringList{
                 "store|/store/props|" + nothing + prop(1, 1) + ']',
                 "vip|/vip/welfare|'data':[{vipLevel=1,discount=1,room=5,price=0,'welfare':[{'id':"
                 "'12',numbers=3}]}]",
                 "mine|/store/"
                 "mine|'data':[{toolsId=2,count=3,'endTime':null,isUsing=1,isExpire=2}]",
                 "buy 11|/store/buy|propId=11,count=2,expiryData=4"}) {
            const QString action = row.split('|')[0], path = row.split('|')[1];
            const QString good = row.split('|')[2];
            Run run;
            const QString before = run.lists();
            auto members = QRegularExpression("(\\w+)=[^,}\\]]*").globalMatch(good);
            while (members.hasNext()) {
                const auto found = members.next();
                for (const char *wrong : {"'%1':null", "'%1':1.5", "'%1':{}", "no%1=0"}) {
                    const QString member = QString(wrong).arg(found.captured(1));
                    const QString text = QString(good).replace(found.capturedStart(),
                                                               found.capturedLength(), member);
                    run.server.play(path, json(text), "");
                    QVERIFY2(!run.perform(action) && run.lists() == before, text.toUtf8());
                }
            }
            // Four times only the end of validity was wrong, and the money was gone already.
            QVERIFY(run.account().startsWith(action == "buy 11" ? "-20," : "100,"));
            run.server.play(path, json(good), "");
            QVERIFY(run.perform(action));
        }
    }

    void requestsThatMeetOrOutliveTheirObject()
    {
        Run run;
        run.server.play("/store/buy", json("propId=12,count=5,expiryData=9"), "");
        auto dropped = std::make_unique<BuyRequest>();
        dropped->BuyProp(7, 12, 1, 50);
        QVERIFY(await([&] { return !run.asked("norm=1").isEmpty(); }));
        dropped = std::make_unique<BuyRequest>();
        connect(dropped.get(), &BuyRequest::requestFinished, [&](bool is) { run.ends << is; });
        dropped->BuyProp(7, 12, 2, 20);
        run.buy.BuyProp(7, 12, 3, 30);
        QVERIFY(await([&] { return run.ends == QList<bool>{true, true}; }));
        QCOMPARE(run.account(), "50,1,0 11x1@1 13x1@3* 12x5@0");
        const QRegularExpression url(
            "/buy\\?prop=12&bid=7&norm=3&rand=\\d+&time=\\d+&sign=[0-9a-f]{40}$");
        QVERIFY(run.asked("norm=3").value(0).contains(url));

        for (const char *slow : {"/store/mine", "/store/props"})
            run.server.play(slow, props, "trickle=99 pause=9");
        run.server.play("/store/buy", json("propId=14,count=1,expiryData=5,deadLine=3"), "");
        connect(&run.user, &RivetUserProfile::refreshProfile, [&] { dropped.reset(); });
        dropped->BuyProp(7, 14, 1, 50);
        QVERIFY(await([&] { return run.asked("/info").size() + run.asked("/mine").size() == 3; }));
        QVERIFY(!dropped && run.account() == "0,2,5");
        for (int twice = 0; twice < 2; ++twice) {
            run.mine.UpdateList(); // that of the purchase is under way
            run.store.UpdateList();
            QVERIFY(await([&] { return !run.asked("/props").isEmpty(); }));
        }
        QVERIFY(await([&] { return run.ends.size() == 4; }));
        QCOMPARE(run.asked("/mine").size() + run.asked("/props").size(), 2);
        run.mine.UpdateList();
        run.core.reset(); // with a request in flight
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Store)
#include "tst_Store.moc"
