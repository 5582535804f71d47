#pragma once

#include "flowmodel.h"
#include "picture.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace soak {

// The texts that the panel must show, top to bottom, left to right, blanks at their ends left out;
// nothing where it is not known what it shows.
using Texts = std::vector<std::optional<std::string>>;

// Values that polls bring reach the panel with its next frame only, so that also those of a moment
// ago may be shown.
struct Values {
    Milliseconds since = 0;
    std::optional<FourValues> channels;
    std::optional<FourValues> bins;
};

class PanelCheck {
public:
    // To be called after each event.
    void note(const FlowModel& model, Milliseconds now);

    // What about the panel is not as the model has it; nothing if all is.
    std::optional<std::string> mismatch(const FlowModel& model,
                                        const std::vector<std::string>& texts,
                                        const controller::Picture& picture) const;
    // With the latest values.
    Texts expectedTexts(const FlowModel& model) const;

private:
    std::deque<Values> m_values;
};

} // namespace soak
