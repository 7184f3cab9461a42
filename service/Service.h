#pragma once

#include <functional>
#include <vector>

#include "service/Accounts.h"
#include "service/Faults.h"
#include "service/Files.h"
#include "service/GameServers.h"
#include "service/Resources.h"
#include "service/Store.h"
#include "service/Traffic.h"

/// All that the service knows, behind one table of routes. Any thread.
class Service
{
public:
    Service(const QString &dataFolder, const QString &stateFile);

    /// The answer to one request. What is wrong with a data file also goes to stderr.
    Answer answer(const Call &call);
    /// The text of the status exchange; empty if game.json is broken.
    QByteArray gameStatus();

    DataFolder &data() { return m_data; }
    Faults &faults() { return m_faults; }
    Traffic &traffic() { return m_traffic; }

private:
    using Step = std::function<Answer(const Call &)>;
    struct Route
    {
        QString path;
        Step step;
        bool isCodeText = false; ///< of a refusal
    };
    template <typename Topic>
    void add(const char *path, Topic &topic, QJsonObject (Topic::*step)(const Call &));
    void addControl();
    const Route *routeOf(const QString &path) const;

    DataFolder m_data;
    AccountStore m_accountStore;
    Accounts m_accounts;
    Resources m_resources;
    Store m_store;
    GameServers m_servers;
    Files m_files;
    Faults m_faults;
    Traffic m_traffic;
    std::vector<Route> m_routes;
};
