// The front panel: brings the display up, connects to the measurement server and lets the user move
// between the screens. Everything lives on the frame of main().

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "counterwidget.h"
#include "datareader.h"
#include "errorwidget.h"
#include "logowidget.h"
#include "optionwidget.h"
#include "platform.h"
#include "pnrwidget.h"
#include "screenflow.h"
#include "servicemanager.h"
#include "startup.h"
#include "touchpoll.h"
#include "waitforserver.h"

#include <QCoreApplication>
#include <QDebug>

#include <chrono>
#include <cstdlib>

namespace {

constexpr uint32_t waitScreenMs = 1000;
constexpr std::chrono::seconds displayPatience{20}; // a few times what the display takes

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    ServiceManager manager;
    registerRecords();
    qDebug() << "Start client application";
    manager.starting("bringing the display up", displayPatience);
    detectController();
    platform_spi_deinit();

    Gpu_Hal_Context_t host;
    App_Common_Init(&host);
    writeTouchTransform(&host);

    LogoWidget logo(&host);
    logo.exec();
    WaitForServer wait(&host);
    wait.exec();
    Gpu_Hal_Sleep(waitScreenMs);

    DataReader client;
    if (!connectToServer(client, manager)) {
        qDebug() << "Can't connect to server";
        manager.starting("no measurement server", displayPatience);
        ErrorWidget error(&host);
        error.exec();
        std::exit(EXIT_FAILURE); // tears nothing down: the picture stays on the display
    }
    client.updateParams();

    CounterWidget counter(&host);
    PNRWidget histogram(&host);
    WayBack wayBack;
    connectToClient(counter, client);
    connectToClient(histogram, client);
    connectMeasurementScreens(counter, histogram, client, wayBack);
    OptionWidget options(&host, &client);
    connectOptionsScreen(counter, histogram, options, wayBack);

    onTouchPoll([&manager] { manager.alive(); });
    counter.exec();
    manager.ready("running");
    return QCoreApplication::exec();
}
