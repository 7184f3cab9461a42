#pragma once

#include <functional>

#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QSet>

class QNetworkReply;
template <typename Type>
class LazySingleton;

/// Lets a few requests for records through at a time, in order, so that a launch with thousands of
/// resources neither freezes the host nor lets requests time out that wait for a connection.
///
/// A singleton until the at-exit manager runs; main thread only.
class RequestGate : public QObject
{
    Q_OBJECT
public:
    using Send = std::function<QNetworkReply *()>;

    ~RequestGate() override;

    static RequestGate *GetInstance();

    /// Calls @p send when it is its turn, perhaps at once, unless @p asker has gone by then.
    void enqueue(QObject *asker, Send send);
    /// Takes back what @p asker has waiting.
    void withdraw(QObject *asker);

private:
    friend class LazySingleton<RequestGate>;
    RequestGate();

    struct Waiting
    {
        QPointer<QObject> asker;
        Send send;
    };

    void letThrough();
    void onEnded(QNetworkReply *reply);

    QQueue<Waiting> m_waiting;
    QSet<QNetworkReply *> m_inFlight;
};
