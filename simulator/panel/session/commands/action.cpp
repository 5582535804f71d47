#include "action.h"

namespace panel::script {

Progress FrameStep::play(Stage& stage) const {
    if (stage.isFirstCall()) {
        stage.playFrames();
    }
    return Progress::Waiting; // the stage goes on by itself
}

} // namespace panel::script
