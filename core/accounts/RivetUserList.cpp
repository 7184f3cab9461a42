#include "core/accounts/RivetUserList.h"

#include <QJsonArray>

#include "core/accounts/RivetUserSecurityLoginInfo.h"

RivetUserList::~RivetUserList() = default;

QJsonObject RivetUserList::toJsonObject() const
{
    QJsonArray infos;
    for (auto user = users.cbegin(); user != users.cend(); ++user) {
        const QJsonObject record = user.value() ? user.value()->toJsonObject() : QJsonObject();
        infos << QJsonObject{{QLatin1String("userName"), user.key()},
                             {QLatin1String("loginInfo"), record}};
    }
    return {{QLatin1String("lastLoginUser"), lastLoginUser}, {QLatin1String("userInfos"), infos}};
}

std::shared_ptr<RivetUserSecurityLoginInfo> RivetUserList::recordOf(const QString &userName) const
{
    return users.value(userName);
}
