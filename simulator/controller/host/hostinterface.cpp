#include "hostinterface.h"

#include "addressspace.h"
#include "names.h"

namespace controller {

void HostInterface::select() {
    m_selected = true;
    m_count = 0;
}

HostInterface::Kind HostInterface::kind() const {
    switch (m_header[0] >> 6U) {
    case 0:
        return Kind::Read;
    case 1:
        return Kind::Command;
    case 2:
        return Kind::Write;
    default:
        return Kind::Nonsense;
    }
}

void HostInterface::startData() {
    m_address = (static_cast<std::uint32_t>(m_header[0] & 0x3FU) << 16U) |
                (static_cast<std::uint32_t>(m_header[1]) << 8U) | m_header[2];
    m_dataStart = headerSize + (kind() == Kind::Read ? m_target.dummyBytes() : 0);
}

std::uint8_t HostInterface::exchange(std::uint8_t sent) {
    if (!m_selected) {
        return 0;
    }
    const std::size_t position = m_count++;
    if (position < headerSize) {
        m_header[position] = sent;
        if (m_count == headerSize) {
            startData();
        }
        return 0;
    }
    if (position < m_dataStart) {
        return 0;
    }
    std::uint8_t received = 0;
    if (kind() == Kind::Read) {
        received = m_target.hostRead(m_address);
        m_address = AddressSpace::nextRead(m_address);
    } else if (kind() == Kind::Write) {
        m_target.hostWrite(m_address, sent);
        m_address = m_target.nextHostWrite(m_address);
    }
    return received;
}

void HostInterface::deselect() {
    if (!m_selected) {
        return;
    }
    m_selected = false;
    if (m_count == 0) {
        return;
    }
    const bool isActive =
        m_count == headerSize && m_header[0] == 0 && m_header[1] == 0 && m_header[2] == 0;
    switch (kind()) {
    case Kind::Read:
    case Kind::Write:
        if (isActive) {
            m_target.hostCommand(0, 0);
        } else if (m_count < headerSize) {
            m_target.complain("transaction of " + std::to_string(m_count) + " bytes is no address");
        }
        m_target.hostBurstEnded();
        break;
    case Kind::Command:
        endCommand();
        break;
    case Kind::Nonsense:
        m_target.complain("transaction is neither read, write nor host command");
        break;
    }
}

void HostInterface::endCommand() {
    if (m_count != headerSize) {
        m_target.complain("host command " + hostCommandName(m_header[0]) + " of " +
                          std::to_string(m_count) + " bytes");
        return;
    }
    m_target.hostCommand(m_header[0], m_header[1]);
}

} // namespace controller
