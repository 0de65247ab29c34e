#include "sim/devices.h"

#include <algorithm>

namespace Frudata_Sim {

namespace {

/// The DS1624's command that opens its memory; its other commands are the thermometer's.
constexpr UINT8 ACCESS_MEMORY = 0x17;
/// Access by bytes, not words.
constexpr UINT8 BYTE_ACCESS = 0x00;

} // namespace

IpmiAnswer CFruDevice::AreaInfo() const {
    if (m_options.failure != CC_SUCCESS)
        return Refuse(m_options.failure);
    const auto size = static_cast<UINT16>(std::min<std::size_t>(m_storage.Size(), 0xFFFF));
    return {.data = {static_cast<UINT8>(size & 0xFF), static_cast<UINT8>(size >> 8), BYTE_ACCESS}};
}

IpmiAnswer CFruDevice::Read(UINT16 offset, UINT8 count) const {
    if (m_options.failure != CC_SUCCESS)
        return Refuse(m_options.failure);
    if (count == 0 || count > m_options.maxRead)
        return Refuse(m_options.readRefusal);
    if (offset >= m_storage.Size())
        return Refuse(CC_OUT_OF_RANGE);
    const std::size_t available = std::min<std::size_t>(count, m_storage.Size() - offset);
    if (available < count && !m_options.partialReads)
        return Refuse(CC_OUT_OF_RANGE);
    IpmiAnswer answer{.data = {static_cast<UINT8>(available)}};
    Append(answer.data, std::span(m_storage.Bytes()).subspan(offset, available));
    return answer;
}

IpmiAnswer CFruDevice::Write(UINT16 offset, std::span<const UINT8> data, bool store) {
    if (m_options.failure != CC_SUCCESS)
        return Refuse(m_options.failure);
    if (data.empty() || data.size() > m_options.maxWrite)
        return Refuse(m_options.writeRefusal);
    if (offset + data.size() > m_storage.Size())
        return Refuse(CC_OUT_OF_RANGE);
    if (m_options.readOnly)
        return Refuse(CC_WRITE_PROTECTED_OFFSET);
    if (store && !m_storage.Write(offset, data))
        return Refuse(CC_UNSPECIFIED);
    return {.data = {static_cast<UINT8>(data.size())}};
}

IpmiAnswer CEeprom::Transfer(std::span<const UINT8> data, UINT8 count, bool store) {
    if (m_options.failure != CC_SUCCESS)
        return Refuse(m_options.failure);
    if (count > m_options.maxRead)
        return Refuse(m_options.readRefusal);
    if (data.size() > m_options.maxWrite)
        return Refuse(m_options.writeRefusal);
    if (m_storage.Size() == 0 || !SetPointer(data))
        return Refuse(CC_NAK_ON_WRITE);
    if (store && !Program(data))
        return Refuse(CC_UNSPECIFIED);
    IpmiAnswer answer;
    for (unsigned int byte = 0; byte < count; ++byte) {
        answer.data.push_back(m_storage.Bytes()[m_pointer]);
        m_pointer = (m_pointer + 1) % m_storage.Size();
    }
    return answer;
}

/// Takes the offset bytes off `data`; an incomplete offset leaves the pointer where it stands.
bool CEeprom::SetPointer(std::span<const UINT8>& data) {
    if (m_kind == EEPROM_KIND::DS1624S && !data.empty() && data[0] != ACCESS_MEMORY)
        return false;
    if (data.size() >= 2) {
        const unsigned int high = m_kind == EEPROM_KIND::AT24 ? data[0] : 0U;
        m_pointer = (high << 8 | data[1]) % m_storage.Size();
    }
    data = data.subspan(std::min<std::size_t>(2, data.size()));
    return true;
}

bool CEeprom::Program(std::span<const UINT8> data) {
    const std::size_t page = m_options.pageSize ? m_options.pageSize : m_storage.Size();
    const std::size_t start = m_pointer - m_pointer % page;
    for (const UINT8& byte : data) {
        if (!m_storage.Write(m_pointer, {&byte, 1}))
            return false;
        m_pointer = start + (m_pointer + 1 - start) % page;
    }
    return true;
}

} // namespace Frudata_Sim
