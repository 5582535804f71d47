#include "commanddecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace panel {
namespace {

using testing::ElementsAre;

// Words as the bus carries them, and bytes.
class Ring {
public:
    Ring& word(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) {
            m_bytes += static_cast<char>(value >> shift);
        }
        return *this;
    }
    Ring& pair(int low, int high) {
        return word((static_cast<std::uint32_t>(low) & 0xFFFF) |
                    (static_cast<std::uint32_t>(high) << 16));
    }
    Ring& command(std::uint32_t code) { return word(0xFFFFFF00 | code); }
    Ring& bytes(const QByteArray& bytes) {
        m_bytes += bytes;
        return *this;
    }
    operator QByteArray() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

class CommandDecoderTest : public testing::Test {
protected:
    std::vector<std::string> feed(std::uint32_t offset, const QByteArray& bytes) {
        std::vector<std::string> texts;
        for (const QString& text : m_decoder.feed(offset, bytes)) {
            texts.push_back(text.toStdString());
        }
        return texts;
    }

    CommandDecoder m_decoder{controller::Generation::E3};
};

TEST_F(CommandDecoderTest, NamesCommandsAndDisplayListWords) {
    EXPECT_THAT(feed(0, Ring().command(0x00).word(0x04CACACA).command(0x01)),
                ElementsAre("CMD_DLSTART", "COLOR_RGB 0xCACACA", "CMD_SWAP"));
}

TEST_F(CommandDecoderTest, ShowsArgumentsAsTheyAreMeant) {
    EXPECT_THAT(
        feed(0, Ring().command(0x0B).pair(21, 13).word(0xCACACA).pair(455, -1).word(0xF3F3F3)),
        ElementsAre("CMD_GRADIENT 21 13 0xCACACA 455 -1 0xF3F3F3"));
    EXPECT_THAT(feed(20, Ring().command(0x1E).word(100000).word(400)),
                ElementsAre("CMD_APPEND 0x186A0 400"));
}

TEST_F(CommandDecoderTest, ReadsTextsToTheirPadding) {
    EXPECT_THAT(feed(0, Ring()
                            .command(0x0C)
                            .pair(160, 28)
                            .pair(30, 1536)
                            .bytes(QByteArray("Ok\0\0", 4))
                            .word(0x21000000)),
                ElementsAre("CMD_TEXT 160 28 30 OPT_CENTER \"Ok\"", "END"));
    EXPECT_THAT(
        feed(20, Ring().command(0x0C).pair(1, 2).pair(3, 4).bytes(QByteArray("Full\0\0\0\0", 8))),
        ElementsAre("CMD_TEXT 1 2 3 0x4 \"Full\""));
}

TEST_F(CommandDecoderTest, PutsPiecesTogether) {
    EXPECT_THAT(feed(4092, Ring().command(0x0C)), ElementsAre("CMD_TEXT ..."));
    EXPECT_THAT(feed(0, Ring().pair(1, 2).pair(3, 4)), ElementsAre("CMD_TEXT 1 2 3 0x4 \"\" ..."));
    EXPECT_THAT(feed(8, QByteArray("a\0\0\0", 4)), ElementsAre("CMD_TEXT 1 2 3 0x4 \"a\""));
}

TEST_F(CommandDecoderTest, ForgetsWhatIsUnfinishedAfterAJump) {
    feed(0, Ring().command(0x0C));
    EXPECT_THAT(feed(100, Ring().word(0x21000000)), ElementsAre("END"));
}

TEST_F(CommandDecoderTest, CountsTheBytesOfAMemoryWrite) {
    EXPECT_THAT(feed(0, Ring().command(0x1A).word(0).word(5).bytes("12345678").command(0x01)),
                ElementsAre("CMD_MEMWRITE 0x0 5 (8 bytes)", "CMD_SWAP"));
    EXPECT_THAT(feed(24, Ring().command(0x1A).word(0).word(0).command(0x01)),
                ElementsAre("CMD_MEMWRITE 0x0 0", "CMD_SWAP"));
}

TEST_F(CommandDecoderTest, FindsTheEndOfAZlibStream) {
    const QByteArray stream = qCompress(QByteArray(1000, 'x')).mid(4); // without Qt's length
    QByteArray padded = stream;
    padded.resize((stream.size() + 3) / 4 * 4);
    const QByteArray first = padded.left(8);
    const std::string size = std::to_string(padded.size());

    EXPECT_THAT(feed(0, Ring().command(0x22)), ElementsAre("CMD_INFLATE ..."));
    EXPECT_THAT(feed(4, Ring().word(0)), ElementsAre("CMD_INFLATE 0x0 (0 bytes) ..."));
    EXPECT_THAT(feed(8, first), ElementsAre("CMD_INFLATE 0x0 (8 bytes) ..."));
    EXPECT_THAT(feed(16, Ring().bytes(padded.mid(8)).command(0x00)),
                ElementsAre("CMD_INFLATE 0x0 (" + size + " bytes)", "CMD_DLSTART"));
}

TEST_F(CommandDecoderTest, FillsUpACutLastWord) {
    EXPECT_THAT(feed(0, QByteArray("\x00\x00\x00\x21\x00\xFF\xFF", 7)),
                ElementsAre("END", testing::_));
    EXPECT_THAT(feed(8, Ring().command(0x01)), ElementsAre("CMD_SWAP"));
}

TEST_F(CommandDecoderTest, MarksUnknownCommands) {
    EXPECT_THAT(feed(0, Ring().command(0xEE).command(0x01)), ElementsAre("CMD_ee?", "CMD_SWAP"));
}

TEST_F(CommandDecoderTest, KnowsTheGenerationsCommands) {
    CommandDecoder first(controller::Generation::E1);
    EXPECT_EQ(first.feed(0, Ring().command(0x43)), QStringList({"CMD_43?"}));
}

} // namespace
} // namespace panel
