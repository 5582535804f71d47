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
                               bool& returnToCounter) {
    onSignal(counter, &CounterWidget::gotoHistogram, [&] {
        returnToCounter = false;
        counter.setStarted(false);
        client.stop();
        histogram.clear();
        histogram.exec();
    });
    onSignal(histogram, &PNRWidget::gotoCounts, [&] {
        returnToCounter = true;
        histogram.setStarted(false);
        client.stop();
        counter.exec();
    });
}

void connectOptionsScreen(CounterWidget& counter, PNRWidget& histogram, OptionWidget& options,
                          bool& returnToCounter) {
    onSignal(counter, &CounterWidget::gotoOptions, [&] {
        returnToCounter = true;
        options.exec();
    });
    onSignal(histogram, &PNRWidget::gotoOptions, [&] {
        returnToCounter = false;
        options.exec();
    });
    onSignal(options, &OptionWidget::backClicked, [&] {
        if (returnToCounter) {
            counter.exec();
        } else {
            histogram.exec();
        }
    });
}
