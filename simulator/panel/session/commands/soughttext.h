#pragma once

#include "panelcontent.h"
#include "scriptline.h"

#include <optional>

namespace panel::script {

// A text that a script looks for on the panel: TEXT [at X Y | in X Y WIDTH HEIGHT].
struct SoughtText {
    QString pattern;               // matchesPattern()
    std::optional<QPoint> at = {}; // a pixel that the text's box covers
    std::optional<QRect> in = {};  // a box in which the text stands wholly

    bool isMetBy(const PanelText& text) const;
    std::vector<PanelText> among(const std::vector<PanelText>& texts) const;
    // "the panel shows "Ok", "1" (3 times)", those most like the pattern first.
    QString listOf(const std::vector<PanelText>& texts) const;
};

// ""Ok" at 379 237, "Ok" at 30 40": where each of them stands.
QString placesOf(const std::vector<PanelText>& texts);

// Takes the words of one from a line.
SoughtText takeSoughtText(ScriptLine& line);

// Takes "X Y", a pixel of the panel.
QPoint takePixel(ScriptLine& line);

} // namespace panel::script
