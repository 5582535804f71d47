#pragma once

#include "appearance.h"
#include "displaymodule.h"

#include <QHostAddress>
#include <QObject>
#include <QThread>

#include <memory>

namespace panel {

class PageServer;
class VncServer;

// The panel, and only the panel, for whoever looks on from elsewhere: for any VNC viewer, and for
// any browser, if the noVNC page is installed. Works on a thread of its own, so that no viewer
// holds anything up. Needs a QGuiApplication.
class Remote : public QObject {
    Q_OBJECT

public:
    struct Options {
        QHostAddress address = QHostAddress::LocalHost;
        quint16 port = 5900;  // for VNC viewers; the page is at the port a hundred before; 0: any
        QString passwordFile; // its first line is asked of viewers; empty: nothing is
        QString page = QStringLiteral("/usr/share/novnc"); // directory
    };

    explicit Remote(DisplayModule& module);
    ~Remote() override; // sends every viewer away

    // To be called once. What went wrong and what to do, or nothing.
    QString start(const Options& options);

    // In one sentence, where the panel is to be found.
    QString announcement() const;
    // What the user should know besides; mostly empty.
    QString warning() const;

signals:
    void touched(QPoint pixel); // finger down at, or moved to, this panel pixel
    void released();

private:
    QString listen(const Options& options, const QByteArray& password);
    std::optional<QImage> look();

    DisplayModule& m_module;
    QThread m_thread;
    // Owned; they live on the thread.
    VncServer* m_viewers;
    PageServer* m_pages = nullptr;
    Options m_options;
    quint16 m_port = 0;
    quint16 m_pagePort = 0; // 0: there is no page
    // What was last shown.
    std::optional<std::uint32_t> m_frame;
    bool m_wasDark = false;
};

} // namespace panel
