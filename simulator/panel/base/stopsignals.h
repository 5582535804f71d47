#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace panel {

// SIGINT, SIGTERM and SIGHUP as a Qt signal, so that everything is taken down in good order.
class StopSignals : public QObject {
    Q_OBJECT

public:
    // Keeps the signals from ending the process. To be called before any thread is started.
    static void block();

    StopSignals();
    ~StopSignals() override;

signals:
    void received() const;

private:
    int m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace panel
