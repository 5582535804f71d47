#include "commanddecoder.h"

#include "commandtext.h"
#include "memorylayout.h"
#include "names.h"

#include <array>
#include <zlib.h>

namespace panel {

using controller::Command;
using controller::Trailer;

namespace {

constexpr std::uint32_t commandPrefix = 0xFFFFFF00;
constexpr std::uint32_t wordBytes = 4;

std::uint32_t wordAt(const QByteArray& bytes, int at) {
    std::uint32_t word = 0;
    for (int i = 0; i < 4 && at + i < bytes.size(); ++i) {
        word |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[at + i])) << (8 * i);
    }
    return word;
}

} // namespace

// Finds the end of a zlib stream by unpacking it to nowhere.
class CommandDecoder::Inflater {
public:
    Inflater() { inflateInit(&m_stream); }
    ~Inflater() { inflateEnd(&m_stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    // True when the stream has ended with these bytes, or is none.
    bool endsWith(const QByteArray& bytes) {
        QByteArray input = bytes; // zlib wants it writable
        m_stream.next_in = reinterpret_cast<Bytef*>(input.data());
        m_stream.avail_in = static_cast<uInt>(input.size());
        std::array<Bytef, 4096> nowhere{};
        int result = Z_OK;
        do {
            m_stream.next_out = nowhere.data();
            m_stream.avail_out = static_cast<uInt>(nowhere.size());
            result = inflate(&m_stream, Z_NO_FLUSH);
        } while (result == Z_OK && (m_stream.avail_in > 0 || m_stream.avail_out == 0));
        return result != Z_OK && result != Z_BUF_ERROR;
    }

private:
    z_stream m_stream{};
};

CommandDecoder::CommandDecoder(controller::Generation generation) : m_generation(generation) {}

CommandDecoder::~CommandDecoder() = default;

QStringList CommandDecoder::feed(std::uint32_t offset, const QByteArray& bytes) {
    if (offset != m_nextOffset) {
        forget();
    }
    QStringList done;
    for (int at = 0; at < bytes.size(); at += static_cast<int>(wordBytes)) {
        takeWord(wordAt(bytes, at), done);
    }
    endPiece(done);
    const auto length =
        (static_cast<std::uint32_t>(bytes.size()) + wordBytes - 1) & ~(wordBytes - 1);
    m_nextOffset = (offset + length) % controller::ringBytes;
    return done;
}

void CommandDecoder::forget() {
    m_state = State::Word;
    m_command = nullptr;
    m_arguments.clear();
    m_trailer.clear();
    m_inflater.reset();
}

void CommandDecoder::takeWord(std::uint32_t word, QStringList& done) {
    switch (m_state) {
    case State::Word:
        takeFirstWord(word, done);
        break;
    case State::Arguments:
        m_arguments.push_back(word);
        argumentsAreComplete(done);
        break;
    case State::Trailer:
        for (unsigned i = 0; i < wordBytes; ++i) {
            m_trailer += static_cast<char>(word >> (8 * i));
        }
        if (trailerIsComplete()) {
            done += commandText() + trailerText();
            forget();
        }
        break;
    }
}

void CommandDecoder::takeFirstWord(std::uint32_t word, QStringList& done) {
    m_command = controller::commandInfo(m_generation, word);
    if (m_command != nullptr) {
        argumentsAreComplete(done);
    } else if ((word & commandPrefix) == commandPrefix) {
        done += QStringLiteral("CMD_%1?").arg(word & 0xFF, 2, 16, QLatin1Char('0'));
    } else {
        done += QString::fromStdString(controller::displayListWordText(m_generation, word));
    }
}

// Goes on to what follows the arguments when they are all there.
void CommandDecoder::argumentsAreComplete(QStringList& done) {
    if (m_arguments.size() < m_command->words) {
        m_state = State::Arguments;
        return;
    }
    if (m_command->trailer == Trailer::None ||
        (m_command->trailer == Trailer::Bytes && m_arguments[m_command->lengthWord] == 0)) {
        done += commandText();
        forget();
        return;
    }
    m_state = State::Trailer;
    if (m_command->command == Command::Inflate || m_command->command == Command::Inflate2) {
        m_inflater = std::make_unique<Inflater>();
    }
}

// Looks at the word that m_trailer has just got.
bool CommandDecoder::trailerIsComplete() {
    const QByteArray word = m_trailer.right(static_cast<int>(wordBytes));
    switch (m_command->trailer) {
    case Trailer::Text:
        return word.contains('\0');
    case Trailer::Bytes:
        return static_cast<std::uint32_t>(m_trailer.size()) >= m_arguments[m_command->lengthWord];
    case Trailer::Stream:
        return m_inflater && m_inflater->endsWith(word);
    case Trailer::None:
        break;
    }
    return true;
}

// Says what a piece has brought of a command that goes on in the next one.
void CommandDecoder::endPiece(QStringList& done) {
    if (m_command == nullptr) {
        return;
    }
    if (m_state == State::Arguments) {
        done += commandText() + QStringLiteral(" ...");
        return;
    }
    done += commandText() + trailerText() + QStringLiteral(" ...");
    if (m_command->trailer == Trailer::Stream && !m_inflater) {
        forget();
    }
}

QString CommandDecoder::commandText() const {
    return QString::fromStdString(controller::commandText(m_generation, *m_command, m_arguments));
}

QString CommandDecoder::trailerText() const {
    switch (m_command->trailer) {
    case Trailer::Text:
        return QStringLiteral(" \"%1\"").arg(
            QString::fromLatin1(m_trailer.left(m_trailer.indexOf('\0'))));
    case Trailer::Bytes:
    case Trailer::Stream:
        return QStringLiteral(" (%1 bytes)").arg(m_trailer.size());
    case Trailer::None:
        break;
    }
    return {};
}

} // namespace panel
