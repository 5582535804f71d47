#include "coprocessor.h"

#include "names.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace controller {

namespace {

// What CMD_READ shows after a fault.
constexpr std::uint32_t faultMark = 0xFFF;
constexpr std::uint32_t ringCapacity = ringBytes - 4;

} // namespace

Coprocessor::Coprocessor(Generation generation, MemoryMap& memory, AddressSpace& bus,
                         Registers& registers, SerialFlash& flash, CoprocessorPort& port)
    : m_machine{generation, memory, bus, registers, flash, port}, m_commands(m_machine) {}

void Coprocessor::reset() {
    m_held = false;
    resetState();
}

// Everything but what the registers hold.
void Coprocessor::resetState() {
    m_resetDue = false;
    m_state = Ready{};
    m_machine.list.moved();
    m_commands.reset();
}

void Coprocessor::hold(bool held) {
    if (held && !m_held) {
        if (m_executing) {
            m_resetDue = true;
        } else {
            resetState();
        }
    }
    m_held = held;
}

std::uint32_t Coprocessor::readOffset() const {
    return m_machine.registers[Register::CmdRead] & (ringBytes - 4);
}

bool Coprocessor::isRingEmpty() const {
    return readOffset() == (m_machine.registers[Register::CmdWrite] & (ringBytes - 4));
}

std::uint32_t Coprocessor::freeBytes() const {
    const std::uint32_t used =
        (m_machine.registers[Register::CmdWrite] - m_machine.registers[Register::CmdRead]) &
        (ringBytes - 4);
    return isFaulty() ? 0 : ringCapacity - used;
}

void Coprocessor::feed(std::uint32_t word) {
    if (freeBytes() == 0) {
        m_machine.port.complain("word written to a full ring: " + displayListWordText(word));
        return;
    }
    const std::uint32_t offset = m_machine.registers[Register::CmdWrite] & (ringBytes - 4);
    m_machine.memory.setRingWord(offset, word);
    m_machine.registers.set(Register::CmdWrite, (offset + 4) & (ringBytes - 1));
}

void Coprocessor::run() {
    if (m_executing) {
        return; // a command has moved the ring's pointers
    }
    m_executing = true;
    m_machine.budget.refill(m_machine.port.now());
    while (!m_machine.budget.isUsedUp() && step()) {
    }
    m_executing = false;
    if (m_resetDue) {
        resetState();
    }
}

bool Coprocessor::runOne() {
    if (m_executing) {
        return false;
    }
    m_executing = true;
    m_machine.budget.refill(m_machine.port.now());
    bool done = false;
    while (!done && !m_machine.budget.isUsedUp() && step()) {
        done = std::holds_alternative<Ready>(m_state);
    }
    m_executing = false;
    if (m_resetDue) {
        resetState();
    }
    return done;
}

Nanoseconds Coprocessor::resumesAt() const {
    const bool goesOn = m_machine.budget.isUsedUp() && !m_held && !isFaulty() && !isRingEmpty();
    return goesOn ? m_machine.budget.refilledAt() : never;
}

// Takes one word if there is one and nothing is waited for.
bool Coprocessor::step() {
    if (m_resetDue) {
        resetState();
    }
    if (m_held || isFaulty() || isRingEmpty()) {
        return false;
    }
    const std::uint32_t offset = readOffset();
    try {
        const std::int64_t pictures = m_machine.port.pictureWork();
        const Progress accepted = accept(m_machine.memory.ringWord(offset));
        m_machine.budget.spend(m_machine.port.pictureWork() - pictures);
        const Progress progress = pay(accepted);
        if (progress == Progress::Waiting) {
            return false;
        }
        if (progress == Progress::Working) {
            return true;
        }
        if (progress == Progress::Done) {
            m_machine.registers.set(Register::CmdRead, (offset + 4) & (ringBytes - 1));
        }
    } catch (const Fault& reason) {
        fail(reason);
        return false;
    }
    if (isRingEmpty()) {
        m_machine.port.ringEmptied();
    }
    return true;
}

Progress Coprocessor::accept(std::uint32_t word) {
    if (Reading* reading = std::get_if<Reading>(&m_state)) {
        return read(*reading, word);
    }
    if (Busy* busy = std::get_if<Busy>(&m_state)) {
        return proceed(*busy);
    }
    if (Taking* taking = std::get_if<Taking>(&m_state)) {
        return take(*taking, word);
    }
    return begin(word);
}

Progress Coprocessor::begin(std::uint32_t word) {
    if (word >> 24U != 0xFFU) {
        if (m_machine.port.wantsCommands()) {
            tell({nullptr, 0, 0, {word}, {}}, readOffset());
        }
        m_machine.list.put(word);
        return Progress::Done;
    }
    const CommandInfo* command = commandInfo(m_machine.generation, word);
    if (!command) {
        fault("unknown command " + displayListWordText(word));
    }
    const Reading& reading =
        m_state.emplace<Reading>(Reading{CallReader(*command, m_machine.generation), readOffset()});
    return reading.reader.isComplete() ? execute(reading.reader.call(), reading.start)
                                       : Progress::Done;
}

Progress Coprocessor::read(Reading& reading, std::uint32_t word) {
    reading.reader.take(word, readOffset());
    return reading.reader.isComplete() ? execute(reading.reader.call(), reading.start)
                                       : Progress::Done;
}

// Says what is about to be carried out, whose last word is the next one of the ring.
void Coprocessor::tell(RingCommand command, std::uint32_t start) {
    command.offset = start;
    command.length = ((readOffset() - start) & (ringBytes - 4)) + 4;
    m_machine.port.commandTaken(command);
}

Progress Coprocessor::execute(const Call& call, std::uint32_t start) {
    if (m_machine.port.wantsCommands()) {
        tell({call.info, 0, 0, call.words, call.text}, start);
    }
    const CommandInfo* command = call.info;
    const std::uint32_t length = command->trailer == Trailer::Bytes ? call[command->lengthWord] : 0;
    m_machine.budget.spend(WorkBudget::command);
    Outcome outcome = m_commands.execute(call);
    if (Task* task = std::get_if<Task>(&outcome)) {
        return proceed(m_state.emplace<Busy>(Busy{command, std::move(*task)}));
    }
    DataSink* sink = std::get_if<DataSink>(&outcome);
    if (sink && (length > 0 || command->trailer == Trailer::Stream)) {
        m_state = Taking{command, std::move(*sink), length};
        return Progress::Done;
    }
    m_state = Ready{};
    return sink ? Progress::Done : std::get<Progress>(outcome);
}

Progress Coprocessor::proceed(Busy& busy) {
    const Progress progress = busy.task();
    if (progress == Progress::Done || progress == Progress::Restarted) {
        m_state = Ready{};
    }
    return progress;
}

// What is done but was more than the slice had left is over when later slices have paid for it.
Progress Coprocessor::pay(Progress progress) {
    const std::int64_t counted = m_machine.bus.work() + m_machine.flash.work();
    m_machine.budget.spend(WorkBudget::ringWord + counted - std::exchange(m_paid, counted));
    const bool isOver = progress == Progress::Done && std::holds_alternative<Ready>(m_state);
    if (!isOver || !m_machine.budget.isUsedUp()) {
        return progress;
    }
    m_state = Busy{nullptr, [] { return Progress::Done; }};
    return Progress::Working;
}

Progress Coprocessor::take(Taking& taking, std::uint32_t word) {
    std::array<std::uint8_t, wordBytes> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = byteOf(word, i);
    }
    std::size_t count = bytes.size();
    const bool counted = taking.command->trailer == Trailer::Bytes;
    if (counted) {
        count = std::min<std::size_t>(count, taking.left);
        taking.left -= static_cast<std::uint32_t>(count);
    }
    const bool complete = taking.sink(bytes.data(), count);
    if (counted ? taking.left == 0 : complete) {
        m_state = Ready{};
    }
    return Progress::Done;
}

const CommandInfo* Coprocessor::currentCommand() const {
    if (const Reading* reading = std::get_if<Reading>(&m_state)) {
        return reading->reader.call().info;
    }
    if (const Busy* busy = std::get_if<Busy>(&m_state)) {
        return busy->command;
    }
    const Taking* taking = std::get_if<Taking>(&m_state);
    return taking ? taking->command : nullptr;
}

void Coprocessor::fail(const Fault& reason) {
    const CommandInfo* command = currentCommand();
    const std::string text =
        command ? std::string(command->name) + ": " + reason.text : reason.text;
    m_state = Faulty{};
    m_machine.registers.set(Register::CmdRead, faultMark);
    if (const std::uint32_t address = m_machine.memory.layout().faultText) {
        for (std::uint32_t i = 0; i < faultTextBytes; ++i) {
            const bool inside = i < text.size() && i + 1 < faultTextBytes;
            m_machine.memory.write8(address + i, inside ? static_cast<std::uint8_t>(text[i]) : 0);
        }
    }
    m_machine.port.complain("coprocessor fault: " + text);
}

void Coprocessor::breakDown() {
    if (!isFaulty()) {
        m_state = Ready{}; // whichever command it was at has nothing to do with it
        fail(Fault{"on demand"});
    }
}

void Coprocessor::frameEnded() {
    if (!m_held && !isFaulty()) {
        m_executing = true;
        m_commands.frameEnded();
        m_executing = false;
    }
    run();
}

} // namespace controller
