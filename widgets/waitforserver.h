#pragma once

#include "ftwidget.h"

// "Please wait" with a spinner that the controller turns by itself until the next screen. exec()
// draws it and returns.
class WaitForServer : public FTWidget {
    Q_OBJECT

public:
    using FTWidget::FTWidget;

    void setup() override;
};
