#include "scriptline.h"

#include "duration.h"

namespace panel::script {

ScriptLine::ScriptLine(const QString& text) {
    split(text);
}

void ScriptLine::split(const QString& text) {
    int i = 0;
    while (i < text.size()) {
        if (text[i].isSpace()) {
            ++i;
            continue;
        }
        if (text[i] == '#') {
            return;
        }
        const bool quoted = text[i] == '"';
        if (quoted) {
            ++i;
        }
        QString word;
        while (i < text.size() && (quoted ? text[i] != '"' : !text[i].isSpace())) {
            if (quoted && text[i] == '\\' && i + 1 < text.size()) {
                ++i;
            }
            word += text[i++];
        }
        if (quoted) {
            if (i >= text.size()) {
                fail(QStringLiteral("a quotation mark is not closed; end the text with \""));
                return;
            }
            ++i;
        }
        m_words += word;
        m_quoted += quoted;
    }
}

void ScriptLine::fail(const QString& message) {
    if (m_error.isEmpty()) {
        m_error = message;
    }
}

QString ScriptLine::word(const QString& what) {
    if (!m_error.isEmpty()) {
        return {};
    }
    if (atEnd()) {
        fail(QStringLiteral("%1 is missing").arg(what));
        return {};
    }
    return m_words[m_next++];
}

QStringList ScriptLine::rest(const QString& what) {
    QStringList words{word(what)};
    while (!atEnd() && m_error.isEmpty()) {
        words += m_words[m_next++];
    }
    return words;
}

int ScriptLine::integer(const QString& what, int lowest, int highest) {
    const QString text = word(what);
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < lowest || value > highest) {
        fail(QStringLiteral("%1 must be a whole number from %2 to %3, not \"%4\"")
                 .arg(what)
                 .arg(lowest)
                 .arg(highest)
                 .arg(text));
        return lowest;
    }
    return value;
}

std::uint32_t ScriptLine::hexadecimal(const QString& what) {
    const QString text = word(what);
    bool ok = false;
    const std::uint32_t value = text.toUInt(&ok, 16);
    if (!ok) {
        fail(QStringLiteral("%1 must be a hexadecimal word such as 0x00011508, not \"%2\"")
                 .arg(what, text));
    }
    return value;
}

double ScriptLine::number(const QString& what) {
    const QString text = word(what);
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok) {
        fail(QStringLiteral("%1 must be a number, not \"%2\"").arg(what, text));
    }
    return value;
}

std::chrono::milliseconds ScriptLine::time(const QString& what) {
    const QString text = word(what);
    const auto time = server::durationFromText(text);
    if (!time) {
        fail(QStringLiteral("%1 must be a time such as 500ms or 2s, not \"%2\"").arg(what, text));
    }
    return time.value_or(std::chrono::milliseconds(0));
}

bool ScriptLine::oneOf(const QString& what, const QString& yes, const QString& no) {
    const QString text = word(what);
    if (text != yes && text != no) {
        fail(QStringLiteral("%1 must be \"%2\" or \"%3\", not \"%4\"").arg(what, yes, no, text));
    }
    return text == yes;
}

bool ScriptLine::isQuoted() const {
    return m_error.isEmpty() && !atEnd() && m_quoted[m_next];
}

bool ScriptLine::optional(const QString& keyword) {
    if (!m_error.isEmpty() || atEnd() || m_words[m_next] != keyword) {
        return false;
    }
    ++m_next;
    return true;
}

std::optional<std::chrono::milliseconds> ScriptLine::takeLimit() {
    const int at = m_words.size() - 2;
    if (at < 1 || m_words[at] != QStringLiteral("within")) {
        return std::nullopt;
    }
    const auto limit = server::durationFromText(m_words.last());
    if (!limit) {
        fail(QStringLiteral("the limit must be a time such as 500ms or 2s, not \"%1\"")
                 .arg(m_words.last()));
    }
    m_words.erase(m_words.begin() + at, m_words.end());
    return limit;
}

} // namespace panel::script
