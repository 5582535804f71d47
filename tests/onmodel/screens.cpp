#include "screens.h"

#include "counterwidget.h"
#include "datareader.h"
#include "errorwidget.h"
#include "inputwidget.h"
#include "logowidget.h"
#include "onmodel.h"
#include "optionwidget.h"
#include "pnrwidget.h"
#include "waitforserver.h"

#include <QString>

using controller::Generation;

namespace {

constexpr DataReaderData sample = {{48210, 20114, 7031, 1205}};

template<class Widget>
void show(Gpu_Hal_Context_t* host) {
    Widget(host).exec();
}

template<class Widget>
void showWithSample(Gpu_Hal_Context_t* host) {
    Widget screen(host);
    screen.exec();
    screen.setStarted(true);
    screen.updateData(sample);
    screen.loop();
}

void showOptions(Gpu_Hal_Context_t* host) {
    DataReader client; // not connected: all parameters are zero
    OptionWidget(host, &client).exec();
}

void showKeypad(Gpu_Hal_Context_t* host) {
    tapAfter(milliseconds(200), 150, 190); // "7"
    tapAfter(milliseconds(600), 380, 237); // "Ok"
    InputWidget::getDouble(host, QStringLiteral("Set level"));
}

} // namespace

const std::vector<Screen>& screens() {
    static const std::vector<Screen> all = {
        {"logo", Generation::E2, show<LogoWidget>},
        {"wait", Generation::E1, show<WaitForServer>},
        {"error", Generation::E1, show<ErrorWidget>},
        {"counter", Generation::E1, show<CounterWidget>},
        {"running_counter", Generation::E1, showWithSample<CounterWidget>},
        {"histogram", Generation::E2, showWithSample<PNRWidget>},
        {"options", Generation::E1, showOptions},
        {"keypad", Generation::E1, showKeypad},
    };
    return all;
}
