#pragma once

#include "forwarder.h"
#include "measurementserver.h"
#include "sharedprocessor.h"

#include <QObject>
#include <QString>
#include <QThread>

#include <cstdint>
#include <functional>

namespace panel {

// Where a measurement server is.
struct ServerPlace {
    QString host; // empty: none
    quint16 port = 0;
};

// The measurement server on a thread of its own, so that its replies are never late because of
// the drawing of a picture or the like, nor, where the system allows it, because of what else the
// machine does. To be used from the thread it was created on.
//
// The application gives a reply up for lost after 50 ms. Where the server may go before everything
// else (as root) and shares the application's processor, a request has its reply before the
// application begins to wait, however busy the machine is, and also if it is a virtual one whose
// processors stand still for a while, each at its own time.
class ServerThread : public QObject {
    Q_OBJECT

public:
    // With a `real` server, that one is what stands at our port: it gets the requests, and the
    // simulated one none.
    explicit ServerThread(std::uint32_t seed, const ServerPlace& real = {},
                          QObject* parent = nullptr);
    ~ServerThread() override;

    // Listens; false when it cannot, and error() says why and what to do.
    bool start();
    void stop(); // closes the port and every connection
    bool isListening() const { return m_listening; }
    int connections() const { return m_connections; }
    QString error() const { return m_error; }

    void shareProcessor(SharedProcessor processor); // the application's

    // Runs `action` on the simulated server, on its thread, and returns when that is done.
    void apply(const std::function<void(server::MeasurementServer&)>& action);

signals:
    void requestReceived(const QString& request);
    void stateChanged();

private:
    void take(QObject* server);
    template<typename Server>
    void watch(Server& server);
    template<typename Server>
    void listenOn(Server& server);

    QThread m_thread;
    server::MeasurementServer* m_server;      // owned; lives on m_thread
    server::Forwarder* m_forwarder = nullptr; // the same; null without a real server
    bool m_listening = false;
    int m_connections = 0;
    QString m_error;
};

} // namespace panel
