#include "panelcheck.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace soak {

namespace {

constexpr Milliseconds memory = 1500;
constexpr std::uint32_t runGreen = 0x1DCC37;
constexpr std::uint32_t stopRed = 0xC60D0D;
constexpr std::uint32_t barFill = 0x00A1DD;
constexpr Pixel runIcon{340, 28};
constexpr double fullBarHeight = 175;
// Longer texts do not fit into the keypad's field; how they are cut is not looked at.
constexpr std::size_t longestKeypadText = 22;

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

// As counter and histogram show it.
std::string shortText(double value) {
    std::string text = inDigits(value, 4);
    for (std::size_t at = text.find("e+0"); at != std::string::npos; at = text.find("e+0")) {
        text.replace(at, 3, "e");
    }
    return text;
}

std::optional<std::string> shortText(const std::optional<FourValues>& values, std::size_t index) {
    return values ? std::optional(shortText((*values)[index])) : std::nullopt;
}

Texts counterTexts(const Values& values) {
    const auto& v = values.channels;
    return {"COUNTER MODE", "0", "1", shortText(v, 0), shortText(v, 1), "2", "3", shortText(v, 2),
            shortText(v, 3)};
}

Texts histogramTexts(const Values& values) {
    const auto& b = values.bins;
    return {"PNR MODE", shortText(b, 0), shortText(b, 1), shortText(b, 2), shortText(b, 3)};
}

Texts optionsTexts(const FlowModel& model) {
    Texts texts{"Options", "Time constant:", std::nullopt, "Set"};
    if (model.shownTimeConst()) {
        texts[2] = inSixDigits(*model.shownTimeConst()) + " sec";
    }
    for (std::size_t i = 0; i < 4; ++i) {
        texts.emplace_back("Trigger[" + std::to_string(i) + "]:");
        texts.emplace_back();
        if (model.shownLevels()) {
            texts.back() = inSixDigits((*model.shownLevels())[i] * 1000.0) + " mV";
        }
        texts.emplace_back("Set");
    }
    return texts;
}

Texts keypadTexts(const FlowModel& model) {
    Texts texts{model.keypadTitle()};
    if (!model.keypadText().empty()) {
        texts.emplace_back(model.keypadText());
    }
    for (const char* key :
         {"1", "2", "3", "4", "5", "6", "7", "8", "9", "0", "<", ".", "-", "Ok"}) {
        texts.emplace_back(key);
    }
    return texts;
}

Texts textsOf(const FlowModel& model, const Values& values) {
    switch (model.screen()) {
    case Screen::Counter:
        return counterTexts(values);
    case Screen::Histogram:
        return histogramTexts(values);
    case Screen::Options:
        return optionsTexts(model);
    case Screen::Keypad:
        break;
    }
    return keypadTexts(model);
}

bool agree(const Texts& expected, const std::vector<std::string>& shown) {
    return std::equal(expected.begin(), expected.end(), shown.begin(), shown.end(),
                      [](const auto& a, const std::string& b) { return !a || *a == trimmed(b); });
}

std::string listed(const Texts& texts) {
    std::string list;
    for (const auto& text : texts) {
        list += (list.empty() ? "" : ", ") + (text ? '"' + *text + '"' : std::string("any"));
    }
    return list;
}

std::uint32_t colorAt(const controller::Picture& picture, Pixel pixel) {
    return picture.at(pixel.x, pixel.y) & 0xFFFFFFU;
}

bool isBackground(std::uint32_t color) { // greys from 0xCACACA to 0xF3F3F3
    return (color & 0xFFU) >= 0xC0 && (color >> 16U) >= 0xC0;
}

std::string hexadecimal(std::uint32_t color) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%06X", color);
    return text;
}

std::optional<std::string> faceMismatch(Screen screen, int heldTag,
                                        const controller::Picture& picture) {
    for (const Item& item : itemsOf(screen)) {
        const bool held = item.tag == heldTag;
        const std::uint32_t color = colorAt(picture, item.face);
        if (color != (held ? item.heldColor : item.color)) {
            return "the button with tag " + std::to_string(item.tag) + " has the colour " +
                   hexadecimal(color) + (held ? " while held" : " while not held");
        }
    }
    return std::nullopt;
}

std::optional<std::string> faceMismatch(const FlowModel& model,
                                        const controller::Picture& picture) {
    std::optional<std::string> found;
    for (const int held : model.tagsShownHeld()) {
        found = faceMismatch(model.screen(), held, picture);
        if (!found) {
            break;
        }
    }
    return found;
}

std::optional<std::string> runIconMismatch(const FlowModel& model,
                                           const controller::Picture& picture) {
    const std::uint32_t expected = model.isRunShown() ? stopRed : runGreen;
    const std::uint32_t color = colorAt(picture, runIcon);
    if (color == expected) {
        return std::nullopt;
    }
    return std::string("the run button shows the colour ") + hexadecimal(color) + " and not the " +
           (model.isRunShown() ? "stop square" : "start triangle");
}

// The integral sign is higher than the sign for the latest sample only.
std::optional<std::string> modeIconMismatch(const FlowModel& model,
                                            const controller::Picture& picture) {
    bool dark = false;
    for (const int y : {10, 11, 12, 13, 43, 44, 45}) {
        for (int x = 19; x < 43; ++x) {
            dark = dark || (colorAt(picture, {x, y}) & 0xFFU) < 0x60;
        }
    }
    if (dark == model.accumulates()) {
        return std::nullopt;
    }
    return std::string("the mode button shows the wrong sign");
}

std::optional<std::string> barMismatch(const FourValues& bins, const controller::Picture& picture) {
    const double largest = std::max(1.0, *std::max_element(bins.begin(), bins.end()));
    for (std::size_t k = 0; k < bins.size(); ++k) {
        const int x = 75 + 110 * static_cast<int>(k);
        const double height = bins[k] * fullBarHeight / largest;
        const int middle = 259 - static_cast<int>(std::max(height, 0.0) / 2);
        const int above = 259 - static_cast<int>(std::max(height, 0.0)) - 4;
        const bool filled = height < 12 || colorAt(picture, {x, middle}) == barFill;
        const bool ends = above < 86 || isBackground(colorAt(picture, {x, above}));
        if (!filled || !ends) {
            return "the bar of bin " + std::to_string(k) + " is not " + std::to_string(height) +
                   " pixels high";
        }
    }
    return std::nullopt;
}

std::optional<std::string> valuesMismatch(const FlowModel& model, const Values& values,
                                          const std::vector<std::string>& shown,
                                          const controller::Picture& picture) {
    const Texts expected = textsOf(model, values);
    if (!agree(expected, shown)) {
        return "the panel shows " + listed(Texts(shown.begin(), shown.end())) + " and not " +
               listed(expected);
    }
    if (model.screen() == Screen::Histogram && values.bins) {
        return barMismatch(*values.bins, picture);
    }
    return std::nullopt;
}

} // namespace

void PanelCheck::note(const FlowModel& model, Milliseconds now) {
    if (m_values.empty() || m_values.back().channels != model.values() ||
        m_values.back().bins != model.bins()) {
        m_values.push_back({now, model.values(), model.bins()});
    }
    while (m_values.size() > 1 && m_values[1].since < now - memory) {
        m_values.pop_front();
    }
}

Texts PanelCheck::expectedTexts(const FlowModel& model) const {
    return textsOf(model, m_values.empty() ? Values{} : m_values.back());
}

std::optional<std::string> PanelCheck::mismatch(const FlowModel& model,
                                                const std::vector<std::string>& texts,
                                                const controller::Picture& picture) const {
    if (model.screen() == Screen::Keypad && model.keypadText().size() > longestKeypadText) {
        return std::nullopt;
    }
    std::optional<std::string> found;
    for (auto values = m_values.rbegin(); values != m_values.rend(); ++values) {
        const auto each = valuesMismatch(model, *values, texts, picture);
        if (!each) {
            found.reset();
            break;
        }
        if (!found) {
            found = each; // with the latest values
        }
    }
    if (!found) {
        found = faceMismatch(model, picture);
    }
    const bool measures = model.screen() == Screen::Counter || model.screen() == Screen::Histogram;
    if (!found && measures) {
        found = runIconMismatch(model, picture);
    }
    if (!found && model.screen() == Screen::Histogram) {
        found = modeIconMismatch(model, picture);
    }
    return found;
}

} // namespace soak
