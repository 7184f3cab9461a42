#include "host/InstanceChoice.h"

#include "core/servers/MyMcGameInstMgr.h"
#include "host/Host.h"
#include "host/Text.h"

std::optional<InstanceChoice> InstanceChoice::known(const QString &word)
{
    auto *list = MyMcGameInstMgr::GetInstance();
    for (const unsigned int id : list->getGameInstIdList()) {
        if (word == QString::number(id) || word == list->getGameInstName(id))
            return InstanceChoice{id, list->getGameInstanceInfo(id)};
    }
    return std::nullopt;
}

std::optional<InstanceChoice> InstanceChoice::find(Host &host, const QString &word)
{
    if (auto choice = known(word))
        return choice;
    if (host.logInRememberedUser() == Host::LoginOutcome::Refused)
        return std::nullopt;
    host.updateInstances();
    auto choice = known(word);
    if (!choice)
        host.output().error(Text::tr("there is no instance %1").arg(word));
    return choice;
}
