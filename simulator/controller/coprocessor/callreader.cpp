#include "callreader.h"

#include "painter.h"

namespace controller {

namespace {

// Bytes of a string that are kept; the rest is taken and dropped.
constexpr std::size_t longestText = 4096;

// How many argument words a format string takes: one for each percent sign but doubled ones.
std::size_t formatWordCount(const std::string& format) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '%') {
            if (i + 1 < format.size() && format[i + 1] == '%') {
                ++i;
            } else {
                ++count;
            }
        }
    }
    return count;
}

} // namespace

CallReader::CallReader(const CommandInfo& command, Generation generation)
    : m_generation(generation) {
    m_call.info = &command;
    if (command.words == 0) {
        wordsComplete();
    }
}

void CallReader::take(std::uint32_t word, std::uint32_t place) {
    switch (m_phase) {
    case Phase::Words:
        m_call.words.push_back(word);
        m_call.places.push_back(place);
        if (m_call.words.size() == m_call.info->words) {
            wordsComplete();
        }
        break;
    case Phase::Text:
        takeText(word);
        break;
    case Phase::FormatWords:
        m_call.formatWords.push_back(word);
        if (m_call.formatWords.size() == m_formatWords) {
            m_phase = Phase::Complete;
        }
        break;
    case Phase::Complete:
        break;
    }
}

void CallReader::wordsComplete() {
    m_phase = m_call.info->trailer == Trailer::Text ? Phase::Text : Phase::Complete;
}

void CallReader::takeText(std::uint32_t word) {
    for (std::size_t i = 0; i < wordBytes; ++i) {
        const std::uint8_t byte = byteOf(word, i);
        if (byte == 0) {
            textComplete();
            return;
        }
        if (m_call.text.size() < longestText) {
            m_call.text += static_cast<char>(byte);
        }
    }
}

void CallReader::textComplete() {
    const bool formatted = m_generation == Generation::E3 &&
                           m_call.info->command != Command::Keys &&
                           (m_call.textOptions() & option::format) != 0;
    m_formatWords = formatted ? formatWordCount(m_call.text) : 0;
    m_phase = m_formatWords > 0 ? Phase::FormatWords : Phase::Complete;
}

} // namespace controller
