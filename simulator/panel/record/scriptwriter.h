#pragma once

#include <QFile>
#include <QPoint>
#include <QString>
#include <QStringList>

namespace panel {

// Writes a script, line by line: whatever ends this process, the lines until then are in the file.
class ScriptWriter {
public:
    // False when it cannot be written; error() says why.
    bool open(const QString& path);
    bool isOpen() const { return m_file.isOpen(); }
    QString path() const { return m_file.fileName(); }

    void comment(const QString& text);
    void line(const QString& command, const QStringList& arguments = {});

    // False when not everything has reached the file.
    bool close();
    QString error() const { return m_error; }

    // As one word of a script: in quotation marks if it needs them to be.
    static QString word(const QString& text);
    // In quotation marks whether it needs them or not.
    static QString quoted(const QString& text);
    static QString pixel(QPoint pixel); // "X Y"

private:
    void write(const QString& text);

    QFile m_file;
    QString m_error;
};

} // namespace panel
