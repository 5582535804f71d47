#include "scriptwriter.h"

#include <algorithm>

namespace panel {

bool ScriptWriter::open(const QString& path) {
    m_error.clear();
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        m_error = m_file.errorString();
    }
    return m_file.isOpen();
}

void ScriptWriter::comment(const QString& text) {
    write(QStringLiteral("# ") + text);
}

void ScriptWriter::line(const QString& command, const QStringList& arguments) {
    write((QStringList(command) + arguments).join(' '));
}

bool ScriptWriter::close() {
    m_file.close();
    return m_error.isEmpty();
}

void ScriptWriter::write(const QString& text) {
    const QByteArray bytes = text.toUtf8() + '\n';
    if (m_file.isOpen() && m_file.write(bytes) != bytes.size() && m_error.isEmpty()) {
        m_error = m_file.errorString();
    }
}

QString ScriptWriter::word(const QString& text) {
    const bool plain =
        !text.isEmpty() && std::none_of(text.begin(), text.end(), [](QChar character) {
            return character.isSpace() || character == '"' || character == '#';
        });
    return plain ? text : quoted(text);
}

QString ScriptWriter::quoted(const QString& text) {
    QString escaped = text;
    escaped.replace('\\', QStringLiteral("\\\\")).replace('"', QStringLiteral("\\\""));
    return '"' + escaped + '"';
}

QString ScriptWriter::pixel(QPoint pixel) {
    return QStringLiteral("%1 %2").arg(pixel.x()).arg(pixel.y());
}

} // namespace panel
