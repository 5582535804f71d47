#pragma once

#include "inspector.h"

#include <QString>
#include <QStringList>

namespace panel {

// The inspector as a prompt: a line asks, lines answer.
class Console {
public:
    explicit Console(Inspector& inspector) : m_inspector(inspector) {}

    // The answer to a line, which may be several lines, each ended by a line feed. Nothing for an
    // empty line or a comment.
    QString answer(const QString& line);

    // What there is to ask, a line each.
    static QString help();

private:
    QStringList pixel(const QStringList& words);
    QStringList list(const QStringList& words);
    QStringList registers(const QStringList& words);
    QStringList memory(const QStringList& words);
    QStringList pause(const QStringList& words);
    QStringList go(const QStringList& words);
    QStringList frame(const QStringList& words);
    QStringList command(const QStringList& words);
    QStringList speed(const QStringList& words);
    QStringList helpLines(const QStringList& words);

    struct Question {
        const char* name;
        const char* arguments;
        const char* help;
        QStringList (Console::*ask)(const QStringList& words);
    };
    static const std::vector<Question>& questions();

    Inspector& m_inspector;
};

} // namespace panel
