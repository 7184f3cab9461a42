#include "core/servers/TipsHelper.h"

#include <QRandomGenerator>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "support/jsonfskit/Log.h"

TipsHelper::TipsHelper()
{
    init();
}

TipsHelper::~TipsHelper() = default;

TipsHelper *TipsHelper::GetInstance()
{
    return LazySingleton<TipsHelper>::get();
}

void TipsHelper::init()
{
    m_tips = QStringList{
        tr("quickly into room will match the gaming room"),
        tr("Now temporarily don't support upload MOD map, friends please be patient"),
        tr("after homeowners create the game, then the other players can to start the game"),
        tr("the room is too much, try the intelligent filter"),
        tr("the firewall will stop you and other people online"),
        tr("you should register player name in every mc version"),
        tr("can't find a buddy's room? try to search the network line on the left side of the "
           "room"),
        tr("the higher the VIP level, the more front of the room"),
    };
}

QString TipsHelper::getRandTips() const
{
    if (m_tips.isEmpty()) {
        Log::warning(QStringLiteral("no tips!!!"));
        return {};
    }
    return QLatin1String("Tips.") % m_tips[QRandomGenerator::global()->bounded(m_tips.size())];
}
