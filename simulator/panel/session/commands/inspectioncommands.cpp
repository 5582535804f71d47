#include "inspectioncommands.h"

#include "rig.h"

namespace panel::script {

namespace {

ActionPtr parseExpectRegister(ScriptLine& line) {
    const QString name = line.word(QStringLiteral("the register"));
    const auto id = controller::registerNamed(name.toStdString());
    if (!id) {
        line.fail(QStringLiteral("the controller has no register \"%1\"").arg(name));
    }
    const int value = line.integer(QStringLiteral("its value"), INT32_MIN, INT32_MAX);
    return make<ExpectRegister>(id.value_or(controller::Register{}), value);
}

} // namespace

const CommandTable& inspectionCommands() {
    static const CommandTable table{
        {"expect register", parseExpectRegister, "NAME VALUE",
         "the controller's register holds VALUE, signed"},
    };
    return table;
}

Progress ExpectRegister::play(Stage& stage) const {
    const std::int32_t held = stage.rig().module().registerValue(id);
    if (held != value) {
        stage.fail(QStringLiteral("it holds %1").arg(held));
    }
    return Progress::Done;
}

} // namespace panel::script
