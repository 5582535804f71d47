#include "keys.h"

namespace panel {

QString keyHelp() {
    QString help;
    for (const KeyBinding& binding : keyBindings) {
        help += QStringLiteral("  %1  %2\n").arg(binding.key, binding.text);
    }
    return help;
}

} // namespace panel
