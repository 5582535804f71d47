#pragma once

#include <QString>

class QTcpServer;

namespace server {

// Why `server` cannot listen on `port` of 127.0.0.1, and what to do about it.
QString portError(const QTcpServer& server, quint16 port);

} // namespace server
