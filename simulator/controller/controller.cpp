#include "controller.h"

#include "chip.h"
#include "paneltext.h"

namespace controller {

Controller::Controller(Generation generation, const Options& options)
    : m_chip(std::make_unique<Chip>(generation, options)) {}

Controller::~Controller() = default;

void Controller::setPowerDown(bool high, Nanoseconds now) {
    m_chip->setPowerDown(high, now);
}

void Controller::setChipSelect(bool high, Nanoseconds now) {
    m_chip->setChipSelect(high, now);
}

std::uint8_t Controller::exchange(std::uint8_t sent, Nanoseconds now) {
    return m_chip->exchange(sent, now);
}

void Controller::advance(Nanoseconds now) {
    m_chip->advance(now);
}

Generation Controller::generation() const {
    return m_chip->generation();
}

void Controller::setObserver(Observer* observer) {
    m_chip->setObserver(observer);
}

void Controller::touch(int x, int y, std::size_t finger) {
    m_chip->touch(x, y, finger);
}

void Controller::release(std::size_t finger) {
    m_chip->release(finger);
}

PanelState Controller::panel() const {
    return m_chip->panel();
}

const Frame& Controller::frame() const {
    return m_chip->frame();
}

std::uint32_t Controller::framesScanned() const {
    return m_chip->framesScanned();
}

std::uint32_t Controller::listsSwapped() const {
    return m_chip->listsSwapped();
}

Nanoseconds Controller::time() const {
    return m_chip->now();
}

const DisplayList& Controller::listShown() const {
    return m_chip->listShown();
}

PixelHistory Controller::historyOf(int x, int y) const {
    return m_chip->historyOf(x, y);
}

PixelRect Controller::areaOf(const std::vector<std::size_t>& words) const {
    return m_chip->areaOf(words);
}

std::uint8_t Controller::peek8(std::uint32_t address) const {
    return m_chip->peek8(address);
}

std::uint32_t Controller::peek32(std::uint32_t address) const {
    return m_chip->peek32(address);
}

std::vector<std::string> Controller::textOnPanel() const {
    std::vector<std::string> texts;
    for (PlacedText& placed : placedTextOnPanel()) {
        texts.push_back(std::move(placed.text));
    }
    return texts;
}

std::vector<PlacedText> Controller::placedTextOnPanel() const {
    return stringsOf(generation(), frame());
}

std::uint32_t Controller::touchTagReads() const {
    return m_chip->touchTagReads();
}

std::uint8_t Controller::lastTouchTagRead() const {
    return m_chip->lastTouchTagRead();
}

void Controller::setIdentity(std::uint32_t chipId) {
    m_chip->setIdentity(chipId);
}

void Controller::setOwnIdentity() {
    m_chip->setIdentity(std::nullopt);
}

void Controller::setStartTime(Nanoseconds time) {
    m_chip->setStartTime(time);
}

void Controller::breakCoprocessor() {
    m_chip->breakCoprocessor();
}

void Controller::setAnswering(bool answering) {
    m_chip->setAnswering(answering);
}

void Controller::setCoprocessorStalled(bool stalled) {
    m_chip->setCoprocessorStalled(stalled);
}

void Controller::setCoprocessorHalted(bool halted) {
    m_chip->setCoprocessorHalted(halted);
}

bool Controller::stepCoprocessor() {
    return m_chip->stepCoprocessor();
}

std::int64_t Controller::coprocessorWork() const {
    return m_chip->coprocessorWork();
}

std::vector<std::uint8_t>& Controller::flash() {
    return m_chip->flash();
}

} // namespace controller
