#pragma once

#include "action.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <vector>

// A session as text: what each line of a script asks for. help() tells how it is written.
namespace panel::script {

// How long one wait may take unless the line says otherwise ("within TIME").
constexpr std::chrono::milliseconds defaultWaitLimit{30000};

struct Statement {
    int line = 0; // in the script, from 1
    QString text; // as written, for messages
    ActionPtr action;
    std::chrono::milliseconds limit = defaultWaitLimit; // how long it may take
};

struct Script {
    std::vector<Statement> statements;
    QStringList errors; // all mistakes, each "NAME:LINE: what is wrong; how to mend it"
};

// `name` is what error messages call the script.
Script parse(const QString& text, const QString& name);

// What a script may hold, one line for each command, for `--help`.
QString help();

} // namespace panel::script
