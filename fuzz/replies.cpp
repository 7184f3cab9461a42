#include "fuzz/Service.h"

#include "core/accounts/OrMCAuthSession.h"
#include "core/accounts/OrMCAuthenticateTask.h"
#include "core/accounts/QueryUserInfo.h"
#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserRegister.h"
#include "core/store/BuyRequest.h"
#include "core/store/UsePropRequest.h"

namespace {

/// How often @p signals went out in @p ask, each counting.
template <typename Object, typename... Signals>
int endsOf(Object *object, const std::function<void()> &ask, Signals... signals_)
{
    int ends = 0;
    QObject context;
    (QObject::connect(object, signals_, &context, [&ends] { ++ends; }), ...);
    ask();
    fuzz::spin();
    return ends;
}

int logIn()
{
    auto *host = RivetLoginHost::GetInstance();
    const int ends = endsOf(
        host, [host] { host->LogIn("user", true, true, "password"); },
        &RivetLoginHost::loginSuccess, &RivetLoginHost::loginFailed);
    auto *profile = RivetUserProfile::GetInstance();
    const bool isLoggedIn = host->status() == RivetLoginHost::LoginStatusLoggedIn;
    fuzz::require(isLoggedIn == (profile->getBid() != 0), "who is logged in has an account");
    profile->userProfileJson();
    return ends;
}

int registerAccount()
{
    auto *registration = RivetUserRegister::GetInstance();
    return endsOf(
        registration, [&] { registration->registerAccount("user@host", "password", "code"); },
        &RivetUserRegister::registerSuccess, &RivetUserRegister::registerFailed);
}

int queryUser()
{
    QueryUserInfo query;
    return endsOf(
        &query, [&query] { query.QueryUser(1); }, &QueryUserInfo::queryFinished);
}

int buy()
{
    BuyRequest request;
    return endsOf(
        &request, [&request] { request.BuyProp(1, 11, 1, 5); }, &BuyRequest::requestFinished);
}

int use()
{
    UsePropRequest request;
    return endsOf(
        &request, [&request] { request.UseProp(11, true, 0); }, &UsePropRequest::requestFinished);
}

} // namespace

/// Replies to what the user does, the first letter telling to what.
void fuzz::takeInput(const QByteArray &input)
{
    static const QHash<char, int (*)()> requests{
        {'l', logIn}, {'r', registerAccount}, {'u', queryUser}, {'b', buy}, {'p', use}};
    const QByteArray answer = input.mid(1);
    const auto request = requests.value(input.isEmpty() ? '\0' : input.front());
    if (request) {
        const Service service(answer);
        require(request() == 1, "a request ends once");
    } else {
        OrMCAuthenticateTask task;
        OrMCAuthSession session;
        const int ends = endsOf(
            &task, [&] { task.httpRequestFinishedEx(0, 0, answer); }, &TaskAbstract::finished);
        task.FillAuthSession(session);
        session.SetCurrentOrBid(1);
        const bool isIn = task.GetAuthenticateStatus() == OrMCAuthenticateTask::AuthStatusSucceeded;
        require(ends == 1 && isIn == session.IsSessionValid(1), "a session is whole or none");
    }
}
