#pragma once

#include "commandtable.h"
#include "generation.h"

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

namespace panel {

// Turns what is written into the coprocessor's ring back into commands and display-list words,
// one text each: "CMD_TEXT 160 28 30 OPT_CENTER \"COUNTER MODE\"", "COLOR_RGB 0x19190C". A command
// may come in several pieces, each a whole number of words (a last one that is cut is filled up).
//
// Not decoded: the arguments of formatted text, which show as words, and streams other than zlib's,
// which are taken to end with the piece in which they begin.
class CommandDecoder {
public:
    explicit CommandDecoder(controller::Generation generation);
    ~CommandDecoder();

    // `offset` is the piece's place in the ring, in bytes. What is unfinished is forgotten when a
    // piece does not begin where the one before ended.
    QStringList feed(std::uint32_t offset, const QByteArray& bytes);

private:
    class Inflater;
    enum class State { Word, Arguments, Trailer };

    void forget();
    void takeWord(std::uint32_t word, QStringList& done);
    void takeFirstWord(std::uint32_t word, QStringList& done);
    void argumentsAreComplete(QStringList& done);
    bool trailerIsComplete();
    void endPiece(QStringList& done);
    QString commandText() const;
    QString trailerText() const;

    const controller::Generation m_generation;
    std::uint32_t m_nextOffset = 0; // where the next piece should begin
    State m_state = State::Word;
    const controller::CommandInfo* m_command = nullptr;
    std::vector<std::uint32_t> m_arguments;
    QByteArray m_trailer;
    std::unique_ptr<Inflater> m_inflater;
};

} // namespace panel
