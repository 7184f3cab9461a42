#include "service/Service.h"

#include <algorithm>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Log.h"

namespace {

const QString filesPath = QStringLiteral("/files/");

Answer failure(int status, const QJsonValue &code, const QString &message)
{
    return Answer::json({{QStringLiteral("code"), code}, {QStringLiteral("msg"), message}}, status);
}

} // namespace

template <typename Topic>
void Service::add(const char *path, Topic &topic, QJsonObject (Topic::*step)(const Call &))
{
    m_routes.push_back({QLatin1String(path), [&topic, step](const Call &call) {
                            return Answer::json((topic.*step)(call));
                        }});
}

Service::Service(const QString &dataFolder, const QString &stateFile)
    : m_data(dataFolder),
      m_accountStore(m_data, stateFile),
      m_accounts(m_data, m_accountStore),
      m_resources(m_data),
      m_store(m_data, m_accountStore),
      m_servers(m_data),
      m_files(m_data.filePath(QStringLiteral("files")))
{
    add("/account/login", m_accounts, &Accounts::logIn);
    m_routes.back().isCodeText = true;
    add("/account/verify", m_accounts, &Accounts::verifyCode);
    add("/account/register", m_accounts, &Accounts::enrol);
    add("/account/info", m_accounts, &Accounts::userInfo);
    add("/game/auth", m_accounts, &Accounts::enterGame);
    add("/resources/clients", m_resources, &Resources::clients);
    add("/resources/java", m_resources, &Resources::javas);
    add("/resources/info", m_resources, &Resources::info);
    add("/store/props", m_store, &Store::props);
    add("/store/buy", m_store, &Store::buy);
    add("/store/use", m_store, &Store::use);
    add("/store/mine", m_store, &Store::ownedProps);
    add("/vip/welfare", m_store, &Store::welfare);
    add("/servers/lan", m_servers, &GameServers::publicServers);
    add("/launcher/settings", m_servers, &GameServers::settings);
    m_routes.push_back({QStringLiteral("/servers/mine"),
                        [this](const Call &call) { return m_servers.instances(call); }});
    addControl();
}

void Service::addControl()
{
    m_routes.push_back({QStringLiteral("/control"), [this](const Call &call) {
                            if (!call.query.isEmpty())
                                m_faults.command(call.query);
                            return Answer::json(m_faults.toJson());
                        }});
    m_routes.push_back({QStringLiteral("/control/stats"), [this](const Call &call) {
                            return Answer::json(m_traffic.toJson(call.query.queryItemValue(
                                QStringLiteral("path"), QUrl::FullyDecoded)));
                        }});
    m_routes.push_back({QStringLiteral("/control/reset"), [this](const Call &call) {
                            m_faults.clear();
                            m_traffic.clear();
                            if (call.query.hasQueryItem(QStringLiteral("state")))
                                m_accountStore.reset();
                            return Answer::json({{QStringLiteral("code"), 0}});
                        }});
}

const Service::Route *Service::routeOf(const QString &path) const
{
    const auto route = std::find_if(m_routes.begin(), m_routes.end(),
                                    [&](const Route &known) { return known.path == path; });
    return route == m_routes.end() ? nullptr : &*route;
}

Answer Service::answer(const Call &call)
{
    if (call.path.startsWith(filesPath))
        return m_files.get(call.path.mid(filesPath.size()), call);
    const Route *route = routeOf(call.path);
    if (!route)
        return failure(404, Refusal::UnknownResource, QLatin1String("no address ") % call.path);
    try {
        return route->step(call);
    } catch (const Refusal &refusal) {
        const QString code = QString::number(refusal.code);
        return failure(200, route->isCodeText ? QJsonValue(code) : QJsonValue(refusal.code),
                       refusal.message);
    } catch (const Exception &exception) {
        Log::critical(exception.cause());
        return failure(500, Refusal::BrokenData, exception.cause());
    }
}

QByteArray Service::gameStatus()
{
    try {
        return m_servers.status();
    } catch (const Exception &exception) {
        Log::critical(exception.cause());
        return {};
    }
}
