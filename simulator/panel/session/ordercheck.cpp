#include "ordercheck.h"

#include "fingercommands.h"
#include "framecommands.h"

namespace panel::script {

QString OrderCheck::mistakeIn(const Statement& statement) {
    const QString finger = mistakeInFinger(*statement.action, statement.line);
    return finger.isEmpty() ? mistakeInPicture(*statement.action, statement.line) : finger;
}

QString OrderCheck::mistakeInFinger(const Action& action, int line) {
    const auto* const finger = dynamic_cast<const Finger*>(&action);
    if (finger == nullptr) {
        return {};
    }
    const int downSince = m_downSince;
    const bool putsDown = finger->kind == Finger::Kind::Press || finger->kind == Finger::Kind::Tap;
    if (finger->kind == Finger::Kind::Press) {
        m_downSince = line;
    } else if (finger->kind != Finger::Kind::Move) {
        m_downSince = 0;
    }
    if (putsDown && downSince != 0) {
        return QStringLiteral(
                   "the finger is down since line %1; \"release\" it first, or \"move\" it")
            .arg(downSince);
    }
    if (!putsDown && downSince == 0) {
        return QStringLiteral("the finger is not down; \"press\" first");
    }
    return {};
}

QString OrderCheck::mistakeInPicture(const Action& action, int line) {
    const auto* const screenshot = dynamic_cast<const Screenshot*>(&action);
    if (screenshot == nullptr) {
        return {};
    }
    const auto [first, isNew] = m_pictures.emplace(screenshot->name, line);
    return isNew ? QString()
                 : QStringLiteral(
                       "the picture of line %1 has the name \"%2\", too; give each its own")
                       .arg(first->second)
                       .arg(screenshot->name);
}

} // namespace panel::script
