#include "pageserver.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTcpSocket>
#include <QTimer>

namespace panel {

namespace {

constexpr int mostBytes = 16384; // of a request
constexpr int browserPatienceMs = 10000;

QByteArray contentType(const QString& suffix) {
    struct Type {
        const char* suffix;
        const char* name;
    };
    constexpr Type types[] = {
        {"html", "text/html; charset=utf-8"},
        {"js", "text/javascript; charset=utf-8"},
        {"css", "text/css; charset=utf-8"},
        {"json", "application/json"},
        {"svg", "image/svg+xml"},
        {"png", "image/png"},
        {"ico", "image/x-icon"},
        {"ttf", "font/ttf"},
        {"woff", "font/woff"},
    };
    for (const Type& type : types) {
        if (suffix == QLatin1String(type.suffix)) {
            return type.name;
        }
    }
    return "application/octet-stream";
}

QByteArray reply(const QByteArray& status, const QByteArray& headers, const QByteArray& content) {
    return "HTTP/1.1 " + status +
           "\r\nConnection: close\r\nContent-Length: " + QByteArray::number(content.size()) +
           "\r\n" + headers + "\r\n" + content;
}

QByteArray refusal(const QByteArray& status) {
    return reply(status, "Content-Type: text/plain\r\n", status + '\n');
}

} // namespace

PageServer::PageServer(const QString& directory, QString firstPage, QObject* parent)
    : QTcpServer(parent), m_directory(QFileInfo(directory).canonicalFilePath() + '/'),
      m_firstPage(std::move(firstPage)) {
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(*socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            QTimer::singleShot(browserPatienceMs, socket, [socket] { socket->abort(); });
        }
    });
}

void PageServer::read(QTcpSocket& socket) const {
    const QByteArray request = socket.peek(mostBytes);
    if (!request.contains("\r\n\r\n") && request.size() < mostBytes) {
        return; // the rest is still to come
    }
    socket.readAll();
    QByteArray answer = replyTo(request.left(request.indexOf('\r')));
    if (request.startsWith("HEAD ")) {
        answer.truncate(answer.indexOf("\r\n\r\n") + 4);
    }
    disconnect(&socket, &QTcpSocket::readyRead, this, nullptr);
    socket.write(answer);
    socket.disconnectFromHost(); // once all is written
}

QByteArray PageServer::replyTo(const QByteArray& requestLine) const {
    const QList<QByteArray> words = requestLine.split(' ');
    if (words.size() != 3 || !words[2].startsWith("HTTP/1.")) {
        return refusal("400 Bad Request");
    }
    if (words[0] != "GET" && words[0] != "HEAD") {
        return refusal("405 Method Not Allowed");
    }
    const QByteArray path = QByteArray::fromPercentEncoding(words[1].split('?').first());
    if (path == "/") {
        return reply("302 Found", "Location: " + m_firstPage.toUtf8() + "\r\n", {});
    }
    QFile file(fileFor(path));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return refusal("404 Not Found");
    }
    return reply("200 OK",
                 "Content-Type: " + contentType(QFileInfo(file.fileName()).suffix()) + "\r\n",
                 file.readAll());
}

QString PageServer::fileFor(const QByteArray& path) const {
    const QFileInfo info(m_directory + QString::fromUtf8(path));
    const QString file = info.canonicalFilePath(); // has followed ".." and links
    return info.isFile() && file.startsWith(m_directory) ? file : QString();
}

} // namespace panel
