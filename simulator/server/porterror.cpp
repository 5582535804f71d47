#include "porterror.h"

#include <QTcpServer>

namespace server {

QString portError(const QTcpServer& server, quint16 port) {
    const QString what = QStringLiteral("cannot listen on 127.0.0.1:%1: ").arg(port);
    if (server.serverError() != QAbstractSocket::AddressInUseError)
        return what + server.errorString();
    return what + QStringLiteral("the port is taken; end the program that holds it "
                                 "(ss -ltnp sport = :%1 shows which one)")
                      .arg(port);
}

} // namespace server
