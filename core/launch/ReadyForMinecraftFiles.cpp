#include "core/launch/ReadyForMinecraftFiles.h"

#include <QJsonObject>

#include "core/foundation/JsonNumber.h"
#include "core/launch/MCInstanceObj.h"
#include "core/resources/GameClientListInfo.h"

void ReadyForMinecraftFiles::onTaskRun()
{
    MinecraftLaunchStep::onTaskRun();
    if (announce(tr("check the game client"),
                 tr("checking the game client, please wait for a moment...")))
        getReadyWithList(*GameClientListInfo::GetInstance());
}

void ReadyForMinecraftFiles::getReadyForTask()
{
    const auto target = instance();
    if (!target)
        return;
    const auto *list = GameClientListInfo::GetInstance();
    if (!list->isListUpdated())
        return failInList(QT_TR_NOOP("game client list have not be updated."));
    const QJsonObject client = list->gameClientInfo(target->clientVersion());
    if (client.isEmpty())
        return failInList(QT_TR_NOOP("game client JSON object is empty, not expected error."));
    const quint32 id = JsonNumber::toUInt(client[QLatin1String("id")]);
    if (id == 0)
        return failInList(QT_TR_NOOP("server instance id is zero, not expected error."));
    if (JsonNumber::toUInt(client[QLatin1String("type")]) != ResTypeGame)
        return failInList(QT_TR_NOOP("type not \"Game\", not expected error."));
    followDescribed(ResourceKey::pack(id, ResTypeGame), client);
    MinecraftLaunchStep::getReadyForTask();
}

void ReadyForMinecraftFiles::failInList(const char *text)
{
    failWith(ErrResourceList, tr(text), QString::fromUtf8(text));
}
