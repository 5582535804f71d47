#pragma once

#include <optional>
#include <string>

namespace soak {

// The number typed on the keypad.
class KeypadText {
public:
    void type(char key); // a digit, '.', '-' or '<'; anything else changes nothing
    const std::string& text() const { return m_text; }
    std::optional<double> number() const; // none if the text is no number

private:
    std::string m_text;
};

} // namespace soak
