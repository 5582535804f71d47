#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <utility>
#include <vector>

namespace panel {

// What starts a program on this machine.
struct Launch {
    using Variables = std::vector<std::pair<std::string, std::string>>; // name, value

    QString program;
    QStringList arguments;
    Variables variables; // to add to the environment
    QString error;       // what is missing, and the mend; empty: nothing
};

// A program for this machine's processor is started as it is. Which one a program is for says the
// head of its file; for another one it is started in an emulator of user programs, and what the
// variables would preload into it (LD_PRELOAD; the last library counts) is replaced by the library
// of the same name for that processor: from the program's own directory, or from where its packages
// put it.
Launch launchOf(const QString& program, const Launch::Variables& variables);

} // namespace panel
