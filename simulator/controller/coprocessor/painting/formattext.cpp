#include "formattext.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace controller {

namespace {

constexpr int widest = 99;

struct Conversion {
    bool left = false;
    bool zeros = false;
    bool prefixed = false;
    char sign = 0; // what stands before a positive number: '+', ' ' or nothing
    int width = 0;
    int precision = -1; // -1: not given
    char kind = 0;
};

std::string digits(std::uint32_t number, unsigned base, bool upper) {
    const std::string symbols = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text;
    do {
        text.insert(text.begin(), symbols[number % base]);
        number /= base;
    } while (number != 0);
    return text;
}

class Formatter {
public:
    Formatter(const std::string& format, const std::vector<std::uint32_t>& arguments,
              const std::function<std::string(std::uint32_t)>& stringAt)
        : m_format(format), m_arguments(arguments), m_stringAt(stringAt) {}

    std::string run();

private:
    char peek() const { return m_at < m_format.size() ? m_format[m_at] : '\0'; }
    std::uint32_t nextArgument() { return m_used < m_arguments.size() ? m_arguments[m_used++] : 0; }
    void readFlags(Conversion& conversion);
    int readNumber();
    Conversion readConversion();
    std::string converted(const Conversion& conversion);
    static std::string number(const Conversion& conversion, const std::string& prefix,
                              std::string text);

    const std::string& m_format;
    const std::vector<std::uint32_t>& m_arguments;
    const std::function<std::string(std::uint32_t)>& m_stringAt;
    std::size_t m_at = 0;
    std::size_t m_used = 0;
};

void Formatter::readFlags(Conversion& conversion) {
    for (;; ++m_at) {
        switch (peek()) {
        case '-':
            conversion.left = true;
            break;
        case '0':
            conversion.zeros = true;
            break;
        case '#':
            conversion.prefixed = true;
            break;
        case '+':
        case ' ':
            conversion.sign = peek();
            break;
        default:
            return;
        }
    }
}

int Formatter::readNumber() {
    if (peek() == '*') {
        ++m_at;
        return static_cast<int>(std::min<std::uint32_t>(nextArgument(), widest));
    }
    int number = 0;
    for (; std::isdigit(static_cast<unsigned char>(peek())) != 0; ++m_at) {
        number = std::min(number * 10 + (peek() - '0'), widest);
    }
    return number;
}

Conversion Formatter::readConversion() {
    Conversion conversion;
    readFlags(conversion);
    conversion.width = readNumber();
    if (peek() == '.') {
        ++m_at;
        conversion.precision = readNumber();
    }
    conversion.kind = peek();
    if (conversion.kind != '\0') {
        ++m_at;
    }
    return conversion;
}

std::string Formatter::number(const Conversion& conversion, const std::string& prefix,
                              std::string text) {
    std::size_t wanted =
        conversion.precision > 0 ? static_cast<std::size_t>(conversion.precision) : 0;
    if (conversion.zeros && !conversion.left && conversion.precision < 0) {
        const auto width = static_cast<std::size_t>(conversion.width);
        wanted = width > prefix.size() ? width - prefix.size() : 0;
    }
    if (text.size() < wanted) {
        text.insert(0, wanted - text.size(), '0');
    }
    return prefix + text;
}

std::string Formatter::converted(const Conversion& conversion) {
    switch (conversion.kind) {
    case 'd':
    case 'i': {
        const std::uint32_t value = nextArgument();
        const bool negative = (value & 0x80000000U) != 0;
        std::string prefix;
        if (negative) {
            prefix = "-";
        } else if (conversion.sign != 0) {
            prefix = conversion.sign;
        }
        return number(conversion, prefix, digits(negative ? 0U - value : value, 10, false));
    }
    case 'u':
        return number(conversion, "", digits(nextArgument(), 10, false));
    case 'o':
        return number(conversion, conversion.prefixed ? "0" : "", digits(nextArgument(), 8, false));
    case 'x':
        return number(conversion, conversion.prefixed ? "0x" : "",
                      digits(nextArgument(), 16, false));
    case 'X':
        return number(conversion, conversion.prefixed ? "0X" : "",
                      digits(nextArgument(), 16, true));
    case 'p':
        return number(conversion, "0x", digits(nextArgument(), 16, false));
    case 'c':
        return std::string(1, static_cast<char>(nextArgument()));
    case 's': {
        std::string text = m_stringAt(nextArgument());
        if (conversion.precision >= 0) {
            text.resize(std::min(text.size(), static_cast<std::size_t>(conversion.precision)));
        }
        return text;
    }
    default:
        return {};
    }
}

std::string Formatter::run() {
    std::string result;
    while (m_at < m_format.size() && result.size() < longestFormattedText) {
        const char c = m_format[m_at++];
        if (c != '%') {
            result += c;
        } else if (peek() == '%') {
            ++m_at;
            result += '%';
        } else {
            const Conversion conversion = readConversion();
            std::string text = converted(conversion);
            const auto width = static_cast<std::size_t>(conversion.width);
            if (text.size() < width) {
                text.insert(conversion.left ? text.size() : 0, width - text.size(), ' ');
            }
            result += text;
        }
    }
    result.resize(std::min(result.size(), longestFormattedText));
    return result;
}

} // namespace

std::string formatText(const std::string& format, const std::vector<std::uint32_t>& arguments,
                       const std::function<std::string(std::uint32_t)>& stringAt) {
    return Formatter(format, arguments, stringAt).run();
}

} // namespace controller
