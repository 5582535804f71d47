// The controller model must survive whatever comes over its bus: the screens' own streams with bits
// flipped in them. What it then shows is nobody's business, but it must neither crash nor hang, and
// a power cycle must bring it back.

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "onmodel.h"
#include "screens.h"

#include <random>

namespace {

using controller::Generation;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t ringBytes = 4096;
constexpr int damagedStreams = 25; // of each screen

// The same numbers on every run and every machine.
class Random {
public:
    std::uint32_t next() { return static_cast<std::uint32_t>(m_engine()); }
    std::uint32_t below(std::size_t end) { return next() % static_cast<std::uint32_t>(end); }

private:
    std::mt19937 m_engine; // seeded with its default
};

class DamageOnModel : public OnModel {
protected:
    // What a screen sends into the ring.
    Bytes streamOf(const Screen& screen) {
        bringUp(Generation::E3);
        m_stream.clear();
        screen.show(&host);
        return m_stream;
    }

    // Feeds a stream to the coprocessor for as long as that takes anything.
    void feed(const Bytes& stream) {
        std::size_t sent = 0;
        for (int turn = 0; turn < 200 && sent < stream.size(); ++turn) {
            const std::size_t room = std::min<std::size_t>(freeBytes(), stream.size() - sent);
            if (room == 0) {
                modelboard::pass(milliseconds(5));
                continue;
            }
            Gpu_Hal_WrMem(&host, EVE_REG("__RAM_CMD") + m_offset, stream.data() + sent,
                          static_cast<std::uint32_t>(room));
            sent += room;
            m_offset = (m_offset + static_cast<std::uint32_t>(room)) % ringBytes;
            Gpu_Hal_Wr16(&host, EVE_REG("__REG_CMD_WRITE"), static_cast<std::uint16_t>(m_offset));
        }
    }

    // Whether the controller is as good as new after a power cycle.
    bool recovers() {
        App_Common_Init(&host);
        App_Set_CmdBuffer_Index(0);
        return showsAFrame();
    }

    void expectAPictureAndRecovery() {
        modelboard::pass(milliseconds(100));
        EXPECT_EQ(picture().pixels.size(),
                  static_cast<std::size_t>(picture().width * picture().height));
        EXPECT_TRUE(recovers());
    }

    void startRing() { m_offset = host.cmd_write_offset; }

private:
    void transactionEnded(const controller::Transaction& transaction) override {
        const Bytes& sent = transaction.sent;
        const bool writing = sent.size() > 3 && (sent[0] & 0xC0U) == 0x80U;
        // The ring of E3 is the only thing at 0x308000.
        if (writing && (sent[0] & 0x3FU) == 0x30U && (sent[1] & 0xF0U) == 0x80U) {
            m_stream.insert(m_stream.end(), sent.begin() + 3, sent.end());
        }
    }

    // As the controller says; a damaged stream may have moved its own read offset.
    std::uint32_t freeBytes() {
        const std::uint32_t read = Gpu_Hal_Rd16(&host, EVE_REG("__REG_CMD_READ"));
        return (read - m_offset - 4) % ringBytes & ~3U;
    }

    Bytes m_stream;
    std::uint32_t m_offset = 0;
};

class DamagedScreenOnModel : public DamageOnModel, public testing::WithParamInterface<Screen> {};

INSTANTIATE_TEST_SUITE_P(Screens, DamagedScreenOnModel, testing::ValuesIn(screens()),
                         [](const auto& screen) { return screen.param.name; });

TEST_P(DamagedScreenOnModel, FlippedBitsNeitherCrashNorHangIt) {
    const Bytes stream = streamOf(GetParam());
    ASSERT_GT(stream.size(), 100U);
    Random random;
    std::size_t upset = 0;
    for (int trial = 0; trial < damagedStreams; ++trial) {
        SCOPED_TRACE(trial);
        bringUp(Generation::E3);
        startRing();
        Bytes damaged = stream;
        for (int flips = 1 + trial % 8; flips > 0; --flips) {
            damaged[random.below(damaged.size())] ^=
                static_cast<std::uint8_t>(1U << random.below(8));
        }
        feed(damaged);
        expectAPictureAndRecovery();
        upset += takeComplaints().empty() ? 0 : 1;
    }
    EXPECT_GT(upset, 0U); // the damage did reach it
}

TEST_F(DamageOnModel, RandomWordsNeitherCrashNorHangIt) {
    Random random;
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        bringUp(Generation::E3);
        startRing();
        // Display-list words of every opcode, and commands among them.
        Bytes noise;
        for (int word = 0; word < 300; ++word) {
            const bool isCommand = random.below(8) == 0;
            const std::uint32_t value =
                isCommand ? 0xFFFFFF00U | random.below(0x60) : random.next();
            for (int byte = 0; byte < 4; ++byte) {
                noise.push_back(static_cast<std::uint8_t>(value >> 8 * byte));
            }
        }
        feed(noise);
        expectAPictureAndRecovery();
        takeComplaints();
    }
}

} // namespace
