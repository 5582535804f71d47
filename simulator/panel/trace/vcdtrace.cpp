#include "vcdtrace.h"

#include "memorylayout.h"
#include "registers.h"

#include <algorithm>

namespace panel {

namespace {

struct Signal {
    char code;
    int bits;
    const char* name;
};

constexpr char powerDown = '!';
constexpr char chipSelect = '"';
constexpr char sent = '#';
constexpr char received = '$';
constexpr char ring = '%';
constexpr char frame = '&';
constexpr char list = '\'';
constexpr char finger = '(';

constexpr int byteBits = 8;
constexpr int ringBits = 12;

constexpr Signal signalTable[] = {
    {powerDown, 1, "PD"},     {chipSelect, 1, "CS"},
    {sent, byteBits, "MOSI"}, {received, byteBits, "MISO"},
    {ring, ringBits, "RING"}, {frame, 1, "FRAME"},
    {list, 1, "LIST"},        {finger, 1, "FINGER"},
};

QByteArray inBits(std::uint32_t value, int bits) {
    if (bits == 1) {
        return value != 0 ? "1" : "0";
    }
    return 'b' + QByteArray::number(value, 2) + ' ';
}

} // namespace

void VcdTrace::begin() {
    m_begun = true;
    QByteArray head = "$version panelsim $end\n$timescale 1ns $end\n$scope module panel $end\n";
    QByteArray values = "$dumpvars\n";
    for (const Signal& signal : signalTable) {
        head +=
            "$var wire " + QByteArray::number(signal.bits) + ' ' + signal.code + ' ' + signal.name +
            (signal.bits > 1 ? " [" + QByteArray::number(signal.bits - 1) + ":0]" : QByteArray()) +
            " $end\n";
        values += (signal.bits > 1 ? QByteArray("bx ") : QByteArray("x")) + signal.code + '\n';
    }
    write(head + "$upscope $end\n$enddefinitions $end\n#0\n" + values + "$end\n");
}

void VcdTrace::put(controller::Nanoseconds now, char signal, const QByteArray& change) {
    QByteArray& value = m_values[signal];
    if (value != change) {
        value = change;
        m_waiting.emplace(now, change + signal + '\n');
    }
}

void VcdTrace::set(controller::Nanoseconds now, char signal, std::uint32_t value, int bits) {
    put(now, signal, inBits(value, bits));
    if (!m_inTransaction) {
        writeUntil(now);
    }
}

void VcdTrace::setNothing(controller::Nanoseconds now, char signal) {
    put(now, signal, "bz ");
}

void VcdTrace::writeUntil(controller::Nanoseconds now) {
    if (!m_begun) {
        begin();
    }
    while (!m_waiting.empty() && m_waiting.begin()->first <= now) {
        const auto first = m_waiting.begin();
        if (first->first > m_written) {
            m_written = first->first;
            write('#' + QByteArray::number(static_cast<qulonglong>(m_written)) + '\n');
        }
        write(first->second);
        m_waiting.erase(first);
    }
}

void VcdTrace::sampleRing(controller::Nanoseconds now) {
    const auto read = [this](controller::Register id) {
        return m_controller.peek32(controller::registerInfo(id).address(m_controller.generation()));
    };
    const std::uint32_t used =
        read(controller::Register::CmdWrite) - read(controller::Register::CmdRead);
    set(now, ring, used & (controller::ringBytes - 1), ringBits);
}

void VcdTrace::pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) {
    const bool isSelect = pin == controller::Pin::ChipSelect;
    set(now, isSelect ? chipSelect : powerDown, high ? 1 : 0, 1);
    m_inTransaction = m_inTransaction || (isSelect && !high);
}

void VcdTrace::transactionEnded(const controller::Transaction& transaction) {
    const std::size_t count = transaction.sent.size();
    const controller::Nanoseconds length = transaction.end - transaction.start;
    for (std::size_t i = 0; i < count; ++i) {
        const controller::Nanoseconds at = transaction.start + length * i / count;
        set(at, sent, transaction.sent[i], byteBits);
        set(at, received, transaction.received[i], byteBits);
    }
    setNothing(transaction.end, sent);
    setNothing(transaction.end, received);
    m_inTransaction = false;
    sampleRing(transaction.end);
}

void VcdTrace::commandTaken(const controller::RingCommand& /*command*/,
                            controller::Nanoseconds now) {
    sampleRing(now);
}

void VcdTrace::frameScanned(std::uint32_t /*number*/, controller::Nanoseconds now) {
    m_frame = !m_frame;
    set(now, frame, m_frame ? 1 : 0, 1);
    sampleRing(now);
}

void VcdTrace::listSwapped(controller::Nanoseconds now) {
    m_list = !m_list;
    set(now, list, m_list ? 1 : 0, 1);
}

void VcdTrace::touched(int /*x*/, int /*y*/, controller::Nanoseconds now) {
    set(now, finger, 1, 1);
}

void VcdTrace::released(controller::Nanoseconds now) {
    set(now, finger, 0, 1);
}

void VcdTrace::note(TraceEvent /*event*/, const QString& /*text*/,
                    controller::Nanoseconds /*now*/) {}

bool VcdTrace::finish() {
    m_inTransaction = false;
    writeUntil(controller::Nanoseconds(-1));
    return Trace::finish();
}

} // namespace panel
