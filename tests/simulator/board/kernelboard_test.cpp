#include "kernelboard.h"
#include "panelboard.h"
#include "recordingwires.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr unsigned lineInterrupt = 55;

// The module's end of the device: a socket that keeps records apart, as the device does.
class KernelBoardTest : public testing::Test {
protected:
    KernelBoardTest() {
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        m_module = ends[0];
        timeval longest{60, 0};
        setsockopt(m_module, SOL_SOCKET, SO_RCVTIMEO, &longest, sizeof longest);
        m_board = std::make_unique<board::KernelBoard>(wires, nonBlocking(ends[1]));
    }
    ~KernelBoardTest() override {
        m_board.reset();
        close(m_module);
    }

    void level(unsigned line, bool high) {
        panelboard_event event{};
        event.kind = PANELBOARD_LEVEL;
        event.number = line;
        event.level = high ? 1 : 0;
        post(event, "");
    }

    void message(unsigned number, unsigned length, const std::string& sent, bool wantsData) {
        panelboard_event event{};
        event.kind = PANELBOARD_TRANSFER;
        event.number = number;
        event.length = length;
        event.has_data = sent.empty() ? 0 : 1;
        event.wants_data = wantsData ? 1 : 0;
        post(event, sent);
    }

    struct Answer {
        panelboard_answer head{};
        std::string received;
    };
    Answer answer() const {
        std::array<char, 8192> buffer{};
        const ssize_t length = read(m_module, buffer.data(), buffer.size());
        Answer answer;
        if (length < static_cast<ssize_t>(sizeof answer.head)) {
            ADD_FAILURE() << "no answer: " << length;
            return answer;
        }
        std::memcpy(&answer.head, buffer.data(), sizeof answer.head);
        answer.received.assign(buffer.data() + sizeof answer.head, buffer.data() + length);
        return answer;
    }

    std::vector<std::string> log() {
        m_board->sync();
        return wires.log();
    }

    board::KernelBoard& kernelBoard() { return *m_board; }

    RecordingWires wires;

private:
    static int nonBlocking(int socket) {
        timeval atOnce{0, 1}; // as good as O_NONBLOCK
        setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &atOnce, sizeof atOnce);
        return socket;
    }

    void post(const panelboard_event& event, const std::string& data) const {
        std::string record(reinterpret_cast<const char*>(&event), sizeof event);
        record += data;
        EXPECT_EQ(write(m_module, record.data(), record.size()),
                  static_cast<ssize_t>(record.size()));
    }

    int m_module = -1;
    std::unique_ptr<board::KernelBoard> m_board;
};

TEST_F(KernelBoardTest, ShowsTheWiresWhatHappensInOrder) {
    level(54, false);
    level(54, true);
    level(56, true);
    level(56, false);
    message(1, 3, "abc", false);
    message(2, 1, "d", true);
    message(3, 2, "", true);
    level(56, true);
    EXPECT_THAT(log(), ElementsAre("PD 0", "PD 1", "CS 1", "CS 0", "sends 616263", "exchanges 64",
                                   "receives 2", "CS 1"));
}

TEST_F(KernelBoardTest, AnswersMessagesByTheirNumberWithWhatWasReceived) {
    message(7, 1, "d", true);
    const Answer exchanged = answer();
    EXPECT_EQ(exchanged.head.number, 7U);
    EXPECT_EQ(exchanged.head.result, 0);
    EXPECT_EQ(exchanged.received, "Z"); // as the recording wires answer

    message(8, 3, "abc", false);
    const Answer sent = answer();
    EXPECT_EQ(sent.head.number, 8U);
    EXPECT_EQ(sent.head.result, 0);
    EXPECT_EQ(sent.received, "");
}

TEST_F(KernelBoardTest, FailsMessagesOnRequestWithoutTheWires) {
    kernelBoard().setTransfersFail(true);
    message(1, 1, "d", true);
    EXPECT_EQ(answer().head.result, -EIO);
    EXPECT_THAT(log(), IsEmpty());
    kernelBoard().setTransfersFail(false);
    message(2, 1, "d", true);
    EXPECT_EQ(answer().head.result, 0);
}

TEST_F(KernelBoardTest, OtherLinesAreNoConcernOfTheWires) {
    level(lineInterrupt, false);
    level(lineInterrupt, true);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(KernelBoardTest, CountsMessagesAndBytes) {
    message(1, 3, "abc", false);
    message(2, 2, "", true);
    kernelBoard().sync();
    EXPECT_EQ(kernelBoard().traffic().messages, 2U);
    EXPECT_EQ(kernelBoard().traffic().bytes, 5U);
}

TEST_F(KernelBoardTest, NeedsNothingInTheEnvironment) {
    EXPECT_THAT(kernelBoard().environment(), IsEmpty());
}

TEST(KernelBoardDevice, ThatIsNotThereIsNamed) {
    RecordingWires wires;
    try {
        const board::KernelBoard board(wires, "/no/such/device");
        FAIL() << "a board without a device";
    } catch (const board::BoardError& error) {
        EXPECT_THAT(error.what(), HasSubstr("cannot open /no/such/device: No such file"));
    }
}

} // namespace
