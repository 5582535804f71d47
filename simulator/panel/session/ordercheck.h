#pragma once

#include "script.h"

#include <map>

namespace panel::script {

// Finds what is right in itself but makes no sense after the statements before it.
class OrderCheck {
public:
    // To be called with every statement, in order. Empty, or what is wrong and how to mend it.
    QString mistakeIn(const Statement& statement);

private:
    QString mistakeInFinger(const Action& action, int line);
    QString mistakeInPicture(const Action& action, int line);

    int m_downSince = 0;               // the line that put the finger down; 0: it is up
    std::map<QString, int> m_pictures; // their names, and in which line they are taken
};

} // namespace panel::script
