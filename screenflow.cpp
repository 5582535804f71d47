#include "screenflow.h"

#include "counterwidget.h"
#include "optionwidget.h"
#include "pnrwidget.h"

namespace {

// Calls `handler` from inside the sender's signal.
template<class Sender, class Handler>
void onSignal(Sender& sender, void (Sender::*signal)(), Handler handler) {
    QObject::connect(&sender, signal, &sender, handler, Qt::DirectConnection);
}

} // namespace

void connectMeasurementScreens(CounterWidget& counter, PNRWidget& histogram, DataReader& client,
                               WayBack& wayBack) {
    onSignal(counter, &CounterWidget::gotoHistogram, [&] {
        wayBack.toCounter = false;
        counter.setStarted(false);
        client.stop();
        histogram.clear();
        histogram.exec();
    });
    onSignal(histogram, &PNRWidget::gotoCounts, [&] {
        wayBack.toCounter = true;
        histogram.setStarted(false);
        client.stop();
        counter.exec();
    });
}

void connectOptionsScreen(CounterWidget& counter, PNRWidget& histogram, OptionWidget& options,
                          WayBack& wayBack) {
    onSignal(counter, &CounterWidget::gotoOptions, [&] {
        wayBack.toCounter = true;
        options.exec();
    });
    onSignal(histogram, &PNRWidget::gotoOptions, [&] {
        wayBack.toCounter = false;
        options.exec();
    });
    onSignal(options, &OptionWidget::backClicked, [&] {
        if (wayBack.toCounter) {
            counter.exec();
        } else {
            histogram.exec();
        }
    });
}
