#include "applicationcommands.h"

#include "rig.h"

namespace panel::script {

const CommandTable& applicationCommands() {
    static const CommandTable table{
        {"application start", [](ScriptLine& /*line*/) { return make<ApplicationSwitch>(true); },
         "",
         "start it (again); until it has come up, the panel\n"
         "shows what the last run left"},
        {"application kill", [](ScriptLine& /*line*/) { return make<ApplicationSwitch>(false); },
         "", "kill it"},
    };
    return table;
}

Progress ApplicationSwitch::play(Stage& stage) const {
    Application& application = stage.rig().application();
    if (!on) {
        application.kill();
    } else if (!application.start()) {
        stage.fail(application.error(), ExitStatus::ApplicationNotStarted);
    }
    return Progress::Done;
}

} // namespace panel::script
