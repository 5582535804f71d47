#include "remote.h"

#include "pageserver.h"
#include "pictures.h"
#include "vncserver.h"

#include <QFile>
#include <QFileInfo>
#include <QHostInfo>

#include <algorithm>
#include <csignal>
#include <iterator>

namespace panel {

namespace {

constexpr quint16 pageBefore = 100; // as is the custom: 5800 for 5900

QString firstPage(quint16 port) {
    return QStringLiteral("/vnc.html?port=%1&path=&autoconnect=true&reconnect=true&"
                          "reconnect_delay=1000&resize=scale")
        .arg(port);
}

// An address of this machine as others write it, for use with a port.
QString hostOf(const QHostAddress& address) {
    constexpr QHostAddress::SpecialAddress everywhere[] = {QHostAddress::Any, QHostAddress::AnyIPv4,
                                                           QHostAddress::AnyIPv6};
    if (std::any_of(std::begin(everywhere), std::end(everywhere),
                    [&address](auto special) { return address == special; })) {
        return QHostInfo::localHostName();
    }
    return address.protocol() == QAbstractSocket::IPv6Protocol
               ? QStringLiteral("[%1]").arg(address.toString())
               : address.toString();
}

QString cannotListen(const QTcpServer& server, const QHostAddress& address, quint16 port) {
    return QStringLiteral("cannot share the panel at %1, port %2: %3; --remote and "
                          "--remote-address take others")
        .arg(address.toString())
        .arg(port)
        .arg(server.errorString());
}

struct Password {
    QByteArray text;
    QString error;
};

Password readPassword(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {
            {},
            QStringLiteral("cannot read the password file %1: %2").arg(path, file.errorString())};
    }
    const QByteArray line = file.readLine().trimmed();
    if (line.isEmpty()) {
        return {{},
                QStringLiteral("the password file %1 has no password in its first line").arg(path)};
    }
    return {line, {}};
}

} // namespace

Remote::Remote(DisplayModule& module)
    : m_module(module),
      m_viewers(new VncServer(QStringLiteral("Front panel"),
                              appearance(toImage(module.picture()), module.panel()),
                              [this] { return look(); })) {
    std::signal(SIGPIPE, SIG_IGN); // viewers go without a word
    m_viewers->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_viewers, &QObject::deleteLater);
    connect(m_viewers, &VncServer::touched, this, &Remote::touched);
    connect(m_viewers, &VncServer::released, this, &Remote::released);
    m_thread.setObjectName(QStringLiteral("remote viewers"));
    m_thread.start();
}

Remote::~Remote() {
    m_thread.quit();
    m_thread.wait();
}

QString Remote::start(const Options& options) {
    if (!VncServer::isAvailable()) {
        return QStringLiteral("this panelsim was built without LibVNCServer, and cannot share the "
                              "panel (CMake's FRONTPANEL_REMOTE)");
    }
    m_options = options;
    Password password;
    if (!options.passwordFile.isEmpty()) {
        password = readPassword(options.passwordFile);
        if (!password.error.isEmpty()) {
            return password.error;
        }
    }
    QString error;
    QMetaObject::invokeMethod(
        m_viewers, [&] { error = listen(options, password.text); }, Qt::BlockingQueuedConnection);
    return error;
}

// On the thread.
QString Remote::listen(const Options& options, const QByteArray& password) {
    m_viewers->setPassword(password);
    if (!m_viewers->listen(options.address, options.port)) {
        return cannotListen(*m_viewers, options.address, options.port);
    }
    m_port = m_viewers->serverPort();
    if (!QFileInfo(options.page).isDir()) {
        return {};
    }
    m_pages = new PageServer(options.page, firstPage(m_port), m_viewers);
    const auto pagePort = static_cast<quint16>(options.port == 0 ? 0 : options.port - pageBefore);
    if (!m_pages->listen(options.address, pagePort)) {
        return cannotListen(*m_pages, options.address, pagePort);
    }
    m_pagePort = m_pages->serverPort();
    return {};
}

// On the thread. A panel that scans nothing has no frames to be told apart by.
std::optional<QImage> Remote::look() {
    const controller::PanelState state = m_module.panel();
    const std::uint32_t frame = m_module.counts().frames;
    const bool isDark = darkness(state).has_value();
    if (m_frame == frame && isDark == m_wasDark && state.scanning) {
        return {};
    }
    m_frame = frame;
    m_wasDark = isDark;
    return appearance(toImage(m_module.picture()), state);
}

QString Remote::announcement() const {
    const QString host = hostOf(m_options.address);
    const QString viewers = QStringLiteral("at %1:%2 for VNC viewers").arg(host).arg(m_port);
    if (m_pagePort == 0) {
        return QStringLiteral("The panel is %1; for browsers, install the package novnc.")
            .arg(viewers);
    }
    return QStringLiteral("The panel is at http://%1:%2/ for browsers, and %3.")
        .arg(host)
        .arg(m_pagePort)
        .arg(viewers);
}

QString Remote::warning() const {
    if (m_options.address.isLoopback() || !m_options.passwordFile.isEmpty()) {
        return {};
    }
    return QStringLiteral("whoever reaches this machine can use the panel; --remote-password asks "
                          "for a password");
}

} // namespace panel
