#pragma once

#include "ftwidget.h"

// A warning sign and the message that the server can't be reached. exec() draws it and returns;
// the picture stays on the display.
class ErrorWidget : public FTWidget {
    Q_OBJECT

public:
    using FTWidget::FTWidget;

    void setup() override;
};
