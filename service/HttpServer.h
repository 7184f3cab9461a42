#pragma once

#include <functional>
#include <memory>

#include "service/Exchange.h"
#include "service/Faults.h"
#include "service/Traffic.h"

/// The HTTP side of the service on loopback: hands each GET to one function, sends what that
/// answers, and does on the way what the faults say. Control requests suffer no faults and are not
/// counted.
class HttpServer
{
public:
    /// Called in a thread of the server's own, several at a time.
    using Handler = std::function<Answer(const Call &)>;

    HttpServer(Handler handler, Faults &faults, Traffic &traffic);
    ~HttpServer();

    /// Binds the port, any free one for 0. The port, or 0 if that failed.
    quint16 bind(quint16 port);
    /// Answers requests until stop() is called from another thread. Blocks.
    void run();
    void stop();

private:
    class Server;
    std::unique_ptr<Server> m_server;
};
