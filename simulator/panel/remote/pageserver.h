#pragma once

#include <QString>
#include <QTcpServer>

class QTcpSocket;

namespace panel {

// Gives browsers the files of one directory, to read, and nothing else: HTTP's GET and HEAD, one
// request a connection.
class PageServer : public QTcpServer {
    Q_OBJECT

public:
    // Who asks for "/" is sent to `firstPage`, a path with or without a query.
    PageServer(const QString& directory, QString firstPage, QObject* parent = nullptr);

private:
    void read(QTcpSocket& socket) const;
    QByteArray replyTo(const QByteArray& requestLine) const;
    // Empty if the directory has no such file.
    QString fileFor(const QByteArray& path) const;

    const QString m_directory; // without links, with a slash at its end
    const QString m_firstPage;
};

} // namespace panel
