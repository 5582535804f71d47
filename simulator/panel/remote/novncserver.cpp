// In the place of vncserver.cpp where there is no LibVNCServer: nobody can look on.

#include "vncserver.h"

#include <QTcpSocket>

namespace panel {

struct VncServer::Screen {};

VncServer::VncServer(const QString& /*title*/, const QImage& /*first*/, Look look)
    : m_look(std::move(look)) {}

VncServer::~VncServer() = default;

bool VncServer::isAvailable() {
    return false;
}

void VncServer::setPassword(const QByteArray& /*password*/) {}

void VncServer::incomingConnection(qintptr socket) {
    QTcpServer::incomingConnection(socket);
    nextPendingConnection()->abort();
}

} // namespace panel
