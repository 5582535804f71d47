#include "keypadtext.h"

#include <cstdlib>

namespace soak {

void KeypadText::type(char key) {
    if (key >= '0' && key <= '9') {
        m_text += key;
    } else if (key == '.') {
        if (m_text.find('.') == std::string::npos) {
            m_text += key;
        }
    } else if (key == '<') {
        m_text = m_text.substr(0, m_text.empty() ? 0 : m_text.size() - 1);
    } else if (key == '-' && !m_text.empty()) {
        m_text = m_text.front() == '-' ? m_text.substr(1) : '-' + m_text;
    }
}

std::optional<double> KeypadText::number() const {
    if (m_text.find_first_of("0123456789") == std::string::npos) {
        return std::nullopt;
    }
    return std::strtod(m_text.c_str(), nullptr);
}

} // namespace soak
