#pragma once

#include "ftwidget.h"

// Plays the logo animation inside exec(), which blocks for about 1.7 s, and ends.
class LogoWidget : public FTWidget {
    Q_OBJECT

public:
    using FTWidget::FTWidget;

    void setup() override;
};
