#include <QCryptographicHash>
#include <QJsonDocument>
#include <QUrlQuery>

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

QString prop(const QString &numbers, int form = 1, const QString &more = "")
{
    return QString("{%1,name=张,picture=p,soldOut=%2,resUrl=r,'normList':[{type=%2,price=7,"
                   "name=9张,describe=d}]%3}")
        .arg(numbers, QString::number(form), more);
}

const QString one = prop("id=1,toolType=1");
const QStringList sold = {prop("id=11,toolType=1"),
                          prop("id=13,toolType=1"),
                          prop("id=12,toolType=2"),
                          prop("id=14,toolType=4", 1, ",'vipLevel':2"),
                          prop("id=15,toolType=3", 2),
                          prop("id=12,toolType=3", 2),
                          prop("id=16,toolType=1", 1, ",'normList':null")};
const QByteArray props = json("'data':[{}," + sold.join(',') + ']');
const QByteArray levels = json(
    "'data':[{vipLevel=1,discount=1,room=5,price=0,'welfare':[]},{vipLevel=1,discount=0.85,room=9,"
    "price=7,'welfare':[{},{'id':null},{'n':5},{id=0},{id=12,numbers=3}]}]");
const QByteArray own =
    json("'data':[{},{toolsId=12,count=3,endTime=4000000000,isUsing=1,"
         "isExpire=2},{toolsId=77,count=1,'endTime':null,isUsing=2,isExpire=1}]");
const QHash<QString, QByteArray> texts = {{"props", props},
                                          {"levels", levels},
                                          {"own", own},
                                          {"bom", "\ufeff" + props},
                                          {"cut", props.left(300)},
                                          {"none", json("'data':[]")},
                                          {"half", json("'data':[" + one + ",5]")},
                                          {"item", QByteArray(levels).replace("[{}", "[5")},
                                          {"ok", json("{'code':0}")},
                                          {"binary", QByteArray("qbjs\1\0\0\0", 8)}};

/// @p good once for each wrong value of each member that is a text or a code, but those that match
/// @p harmless.
QByteArrayList spoiled(const QByteArray &good, const QString &harmless)
{
    QByteArrayList all;
    const QString text = QString(good).replace('"', '\'');
    auto members = QRegularExpression("'(\\w+)':('[^']*'|0)").globalMatch(text);
    while (members.hasNext()) {
        const auto found = members.next();
        for (const char *wrong : {"':null", "':true", "':1.5", "':[]", "':{}", "x':0"}) {
            const QString member = '\'' + found.captured(1) + wrong;
            if (!member.contains(QRegularExpression(harmless)))
                all << json(text.left(found.capturedStart()) + member +
                            text.mid(found.capturedEnd()));
        }
    }
    return all;
}

/// The core with user 7, who has 100 and owns some props, and with the lists in their caches.
struct Run : CoreRun
{
    explicit Run(const QByteArray &storeCache = props, const QByteArray &vipCache = levels)
        : isReady(FS::writeFile(file("rivetStoreList.cache"), storeCache) &&
                  FS::writeFile(file("vipwelfareinfo.cache"), vipCache))
    {
        server.play("/account/info", json("bid=7,money=100,VIPlevel=1,deadLine=0,endTime=0"),
                    "then mute");
        const QByteArray login = json("{code=1,'oruser_profile':{'user':{bid=7}}}");
        user.setCurrentProfile(QJsonDocument::fromJson(login).object());
        isReady = isReady && await([&] { return user.GetRivetUserInfo().money == 100; });
        mine.UpdateMyPorpInfo(11, 1, 91);
        mine.UpdateMyPorpInfo(13, 1, 93);
        mine.UpdateMyPorpInfo(12, 2, 0);
        mine.ChangePropUserStatus(13, true);
        note(store, &RivetStoreListInfo::updateStorePropListFinished);
        note(mine, &MyPropListInfo::updateMyPropListFinished);
        note(buy, &BuyRequest::requestFinished);
        note(use, &UsePropRequest::requestFinished);
    }
    template <typename Object, typename Signal>
    void note(Object &object, Signal signal)
    {
        QObject::connect(&object, signal, [this](bool isGood) { ends << isGood; });
    }
    void start(const QString &what, uint id, bool isOn, uint price)
    {
        if (what == "buy")
            buy.BuyProp(7, id, 3, price);
        else if (what == "use")
            use.UseProp(id, isOn, 8);
        else if (what == "vip")
            vip.UpdateList();
        else
            QMetaObject::invokeMethod(what == "store" ? (QObject *)&store : &mine, "UpdateList");
    }
    /// Does something, and something else of the kind meanwhile; true if it ends well.
    bool perform(const QString &action)
    {
        const QStringList words = action.split(' ');
        const int lines = log.lines().size();
        ends.clear();
        start(words[0], words.value(1).toUInt(), words.value(2) != "off", 30);
        start(words[0], 15, words.value(2) == "off", 99);
        const bool isVip = words[0] == "vip";
        return await([&] {
                   return !ends.isEmpty() || (isVip && log.lines().size() > lines) ||
                          (isVip && vip.IsListUpdated());
               }) &&
               (isVip ? vip.IsListUpdated() : ends == QList<bool>{true});
    }
    QString account() const
    {
        const RivetUserInfo info = user.GetRivetUserInfo();
        QString all =
            QString("%1,%2,%3").arg(int(info.money)).arg(info.vipLevel).arg(info.vipEndTime);
        for (const MyProp &prop : mine.GetMyPropList())
            all += QString(" %1x%2@%3").arg(prop.id).arg(prop.count).arg(prop.endTime) +
                   (prop.isUsing ? "*" : "") + (prop.isExpire ? "!" : "") +
                   (prop.name == "张" ? "" : "?");
        return all;
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
    bool isReady;
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
            "buy 11|propId=11,count=2,expiryData=4000000000|70,1,0 11x2@4000000000 13x1@93* "
            "12x2@0|",
            "buy 12|propId=12,count=4,expiryData=9|70,1,0 11x1@91 13x1@93* 12x4@0|",
            "buy 9|propId=9,count=4|70,1,0 = 9x4@0?|",
            "buy 14|propId=14,count=1,expiryData=50,deadLine=3|70,2,50|",
            "buy 14|propId=14,count=1,expiryData=50|no 70,1,0 =|parse buy info failed, error: "
            "deadL",
            "buy 1|{code=0}|no 100,1,0 =|parse buy info failed, error: code: the value is no whole",
            "buy 1|{'code':-1,msg=m}|no 100,1,0 =|buy failed! error : m",
            "use 11|{'code':5}|no 100,1,0 =|parse buy info failed, error: errMsg: the value is no "
            "s",
            "buy 1|gone|no 100,1,0 =|request store list info failed, error code:1",
            "use 11|status=503|no 100,1,0 =|request store list info failed, error code:403",
            "use 11|ok|100,1,0 11x1@91* 13x1@93 12x2@0|",
            "use 13 off|ok|100,1,0 11x1@91 13x1@93 12x2@0|",
            "use 12 off,use 11 off|ok|100,1,0 11x1@91 13x1@93* 12x1@0|",
            "use 12,use 12,use 12|ok|100,1,0 11x1@91 13x1@93*|",
            "use 9|ok|100,1,0 =|",
            "mine|own|100,1,0 12x3@4000000000! 77x1@0*?|",
            "mine|{'code':-1}|100,1,0|",
            "mine|{'code':3}|no 100,1,0|request my prop list failed, code: 3_parse store list info",
            "mine|gone|no 100,1,0|request store list info failed, error code:1",
            "mine|'data':[{toolsId=1,count=1}]|no 100,1,0|parse my store list failed, error: endTi",
            "store|bom|P|parse store list failed, error: code: the value is no whole|cut|props",
            "store|none|||props|none",
            "store|half|no P|error: prop: the value is no object_parse store list i|props|props",
            "store|half|no  1/09张|info failed_parse store list failed, error: code: |cut|cut",
            "store|{'code':4}|no P|code is 0 on parse store list!_parse store list |props|props",
            "store|gone|no |error code:1_parse store list failed, error: code: |binary|binary",
            "store|ok|no P|error: propList: the value is no array_parse store l|props|props",
            "vip|levels|L|parse vip welfare list failed, error: code: the value is|cut|levels",
            "vip|{'code':4}|no L|code is 0 on parse store list!_parse store li|levels|levels",
            "vip|gone|no L|request store list info failed, error code:1|levels|levels",
            "vip|half|no 1,5,0|error: vipLevel: the value is no string_parse store li|ok|ok",
            "vip|item|no L|error: welfare_item: the value is no object_parse|levels|levels"};
        for (const char *row : rows) {
            const QStringList cells = QString(row).split('|');
            const bool isStore = cells[0] == "store", isList = cells.size() > 4;
            const QByteArray cache = texts[cells.value(4)], none = texts["none"];
            Run run(!isList ? props : isStore ? cache : none, isStore ? none : cache);
            const bool isAnswer = cells[1].contains(QRegularExpression("[,{]"));
            const QByteArray body = isAnswer ? json(cells[1]) : texts[cells[1]];
            for (const char *path : {"/mine", "/buy", "/use", "/props?page=1&size=90"})
                run.server.play(QString("/store") + path, body,
                                body.isEmpty() ? cells[1].toLatin1() : "");
            run.server.play("/vip/welfare", body, body.isEmpty() ? cells[1].toLatin1() : "");
            bool isGood = run.isReady;
            const int lines = isList ? 0 : run.log.lines().size();
            for (const QString &action : cells[0].split(','))
                isGood = run.perform(action) && isGood;
            const QString there =
                isList ? run.lists().remove(isStore ? "1,5,0" : "-") : run.account();
            QString expected = QString(cells[2]).replace("=", "11x1@91 13x1@93* 12x2@0");
            expected.replace("P", " 11/09张 13/09张 12/09个 14/29张 15/0+9张 12/0+9张");
            QCOMPARE((isGood ? "" : "no ") + there, expected.replace("L", "0.85,9,7,3x12"));
            const QString logged = run.log.lines().mid(lines).join('_');
            QVERIFY2(cells[3].isEmpty() ? logged.isEmpty() : logged.contains(cells[3]), row);
            const QString file = isStore ? "rivetStoreList.cache" : "vipwelfareinfo.cache";
            QCOMPARE(FS::readFile(run.file(file)).value(), texts[cells.value(5)]);
            const bool isVip = run.user.GetRealVipLevel() == 2;
            QVERIFY(!isVip || await([&] { return run.asked("/info").size() == 2; }));
            QVERIFY(!isVip || await([&] { return run.asked("/mine?bid=7").size() == 1; }));
        }
        const Run run;
        QVERIFY(run.store.getStoreProp(12).toolType == 2 && run.store.GetPrice(12, 2) == 7);
        QCOMPARE(run.store.GetPrice(12, 3), 0u);
    }

    void wrongValues()
    {
        const QByteArray bought = json("propId=11,count=2,expiryData=4");
        const QByteArray rows[][4] = {{"store", "/store/props", props, "^$"},
                                      {"vip", "/vip/welfare", levels, "'idx?'"},
                                      {"mine", "/store/mine", own, "endTime':null"},
                                      {"buy 11", "/store/buy", bought, "^$"},
                                      {"use 11", "/store/use", texts["ok"], "^$"}};
        for (const auto &[action, path, good, harmless] : rows) {
            Run run;
            const QString before = run.lists();
            for (const QByteArray &body : spoiled(good, harmless)) {
                run.server.play(path, body, "");
                QVERIFY2(!run.perform(action) && run.lists() == before, body);
            }
            // Six times only the end of validity was wrong, and the money was gone already.
            QCOMPARE(run.account().section(',', 0, 0), action == "buy 11" ? "-80" : "100");
            run.server.play(path, good, "");
            QVERIFY(run.perform(action));
        }
    }

    void requestsThatMeetOrOutliveTheirObject()
    {
        Run run;
        run.server.play("/store/buy", json("propId=12,count=5"), "");
        auto dropped = std::make_unique<BuyRequest>();
        dropped->BuyProp(7, 12, 1, 50);
        BuyRequest other;
        run.note(other, &BuyRequest::requestFinished);
        QVERIFY(await([&] { return !run.asked("norm=1").isEmpty(); }));
        dropped.reset();
        other.BuyProp(7, 12, 2, 20);
        run.start("buy", 12, true, 30);
        QVERIFY(await([&] { return run.ends == QList<bool>{true, true}; }));
        QCOMPARE(run.account(), "50,1,0 11x1@91 13x1@93* 12x5@0");
        const QUrlQuery asked(QUrl(run.asked("prop=12&bid=7&norm=3&").value(0)).query());
        const auto value = [&](const char *key) { return asked.queryItemValue(key).toUtf8(); };
        const QByteArray text = "Q7K3XeLpmmTzb57" + value("rand") + value("time");
        QCOMPARE(value("sign"), QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());

        run.server.play("/store/buy", json("propId=14,count=1,expiryData=5,deadLine=3"), "");
        dropped = std::make_unique<BuyRequest>();
        connect(&run.user, &RivetUserProfile::refreshProfile, [&] { dropped.reset(); });
        dropped->BuyProp(7, 14, 1, 50);
        QVERIFY(await([&] { return !dropped; }) && run.account() == "0,2,5");
        run.store.UpdateList();
        run.vip.UpdateList();
        run.core.reset(); // nobody is left to hear the answers
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Store)
#include "tst_Store.moc"
