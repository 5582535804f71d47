// The least program that uses what the front panel uses of Qt: an event loop and a TCP socket. What
// the front panel's memory is compared with.

#include <QCoreApplication>
#include <QTcpSocket>

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QTcpSocket socket;
    return QCoreApplication::exec();
}
