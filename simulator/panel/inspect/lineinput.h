#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

namespace panel {

// The lines that come from a file, a pipe or a terminal, without ever waiting for one.
class LineInput : public QObject {
    Q_OBJECT

public:
    // `descriptor` is not owned.
    explicit LineInput(int descriptor, QObject* parent = nullptr);

signals:
    void line(const QString& text); // without its line feed
    void ended();

private:
    void read();

    const int m_descriptor;
    QSocketNotifier m_notifier;
    QByteArray m_begun; // a line that has not come to its end
};

} // namespace panel
