#include "core/launch/ReadyForJava.h"

#include <QJsonObject>

#include "core/foundation/JsonNumber.h"
#include "core/resources/JavaListInfo.h"
#include "support/coresupport/CSystemInfo.h"

void ReadyForJava::onTaskRun()
{
    MinecraftLaunchStep::onTaskRun();
    if (announce(tr("check java runtime environment"),
                 tr("checking java runtime environment, please wait for a moment...")))
        getReadyWithList(*JavaListInfo::GetInstance());
}

void ReadyForJava::getReadyForTask()
{
    const auto *list = JavaListInfo::GetInstance();
    if (!list->isListUpdated()) {
        failWithoutList(QStringLiteral("java list have not be updated."));
        return;
    }
    const QJsonObject java = list->javaInfoForSystem(CSystemInfo(nullptr).IsOs64());
    const quint32 id = JsonNumber::toUInt(java[QLatin1String("id")]);
    if (id == 0 || JsonNumber::toUInt(java[QLatin1String("type")]) != ResTypeJava) {
        failWithoutList();
        return;
    }
    followDescribed(ResourceKey::pack(id, ResTypeJava), java);
    MinecraftLaunchStep::getReadyForTask();
}

void ReadyForJava::failWithoutList(const QString &line)
{
    failWith(ErrResourceList, tr("can not get resource list."), line);
}
