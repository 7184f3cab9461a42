#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QString>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "host/Output.h"
#include "host/ResourceManager.h"

/// The core as this host runs it: set up on construction, taken down, with all its files written,
/// on destruction. One at a time; main thread.
class Host
{
public:
    explicit Host(Output &output);
    ~Host();

    Output &output() { return m_output; }
    ResourceManager &resources() { return m_resources; }

    /// Who logged in last and has not logged out; empty if there is nobody.
    QString rememberedUser() const;

    enum class LoginOutcome {
        Online,
        Offline, ///< the service can't be reached, but knew the user before
        Refused, ///< with the reason on the output
    };
    /// Logs in and waits for the end of it. Without @p password the stored one counts.
    LoginOutcome logIn(const QString &user, const QString &password = {});
    /// Logs the remembered user in; refused, with a line on the output, if there is none.
    LoginOutcome logInRememberedUser();

    /// Reads the records of all resources on disk, and waits for that.
    void loadResources();

    /// The instances of the logged-in user: asks the service, or takes the last list where it can't
    /// be reached.
    void updateInstances();

private:
    bool goOnOffline(const QString &user);
    static void keepLogin(const QString &user);

    RivetCoreAtExitManagerUtil m_core; // goes last
    Output &m_output;
    ResourceManager m_resources;
};

enum class OnInterrupt {
    Throw, ///< Interrupts::Cancelled
    GoOn,  ///< somebody else looks after it
};
/// Runs the event loop until @p isDone() says true, asked every few milliseconds.
void runUntil(const std::function<bool()> &isDone, OnInterrupt onInterrupt = OnInterrupt::Throw);

/// Calls @p start and runs the event loop until @p object has sent @p signal.
template <typename Object, typename Signal, typename Start>
void runUntilSignal(Object &object, Signal signal, const Start &start)
{
    bool isSent = false;
    QObject context;
    QObject::connect(&object, signal, &context, [&isSent] { isSent = true; });
    start();
    runUntil([&isSent] { return isSent; });
}
