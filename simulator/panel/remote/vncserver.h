#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QTcpServer>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace panel {

// Shows a picture to VNC viewers, straight or through a WebSocket, and takes their mice for the
// finger. A viewer that takes its time holds up the thread that this lives on, so that should be
// one of its own.
class VncServer : public QTcpServer {
    Q_OBJECT

public:
    // The picture, or none while it is as it was when this was last asked. Asked on the server's
    // thread, often, while somebody looks on. Its size never changes.
    using Look = std::function<std::optional<QImage>()>;

    // `first`: what a viewer gets until `look` gives another.
    VncServer(const QString& title, const QImage& first, Look look);
    ~VncServer() override; // sends every viewer away

    // Whether this was built with what it needs. Without, nothing below does anything.
    static bool isAvailable();

    // Asked of every viewer from now on; empty: none is. VNC knows eight characters of it.
    void setPassword(const QByteArray& password);

signals:
    void touched(QPoint pixel); // finger down at, or moved to, this pixel
    void released();

protected:
    void incomingConnection(qintptr socket) override;

private:
    struct Screen; // LibVNCServer's
    void work();
    void show(const QImage& picture);
    void point(const void* viewer, bool down, QPoint pixel);
    void gone(const void* viewer);

    const Look m_look;
    std::unique_ptr<Screen> m_screen;
    QTimer m_timer;
    const void* m_finger = nullptr; // the viewer whose finger is down
    int m_viewers = 0;
};

} // namespace panel
