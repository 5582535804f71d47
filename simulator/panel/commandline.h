#pragma once

#include "settings.h"

#include <QString>
#include <QStringList>

namespace panel {

// What the command line asks for.
struct CommandLine {
    Settings settings;
    QString error; // what is wrong and how to mend it; empty: nothing
    bool wantsHelp = false;
    bool wantsVersion = false;
};

// `arguments` as QCoreApplication::arguments() gives them: the program's path first. The default
// application lies beside it.
CommandLine parseCommandLine(const QStringList& arguments);

QString helpText(); // needs an application object

} // namespace panel
