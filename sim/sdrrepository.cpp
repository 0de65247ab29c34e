#include "sim/sdrrepository.h"

#include <algorithm>

namespace Frudata_Sim {

namespace {

constexpr UINT16 FIRST_RECORD = 0x0000; ///< a name for whichever record is first
constexpr UINT16 LAST_RECORD = 0xFFFF;  ///< the same for the last, and the end of the walk
constexpr UINT8 WHOLE_RECORD = 0xFF;
constexpr std::size_t GET_SDR_LENGTH = 6;

UINT16 Word(const BYTES& data, std::size_t position) {
    return static_cast<UINT16>(data[position] | data[position + 1] << 8);
}

} // namespace

UINT16 CSdrRepository::Add(BYTES record) {
    const auto id = static_cast<UINT16>(m_records.size() + 1);
    record.resize(std::max<std::size_t>(record.size(), 2));
    record[0] = static_cast<UINT8>(id & 0xFF);
    record[1] = static_cast<UINT8>(id >> 8);
    m_records.push_back(std::move(record));
    CancelReservation();
    return id;
}

void CSdrRepository::Clear() {
    m_records.clear();
    CancelReservation();
}

IpmiAnswer CSdrRepository::Info() const {
    const auto count = static_cast<UINT16>(m_records.size());
    IpmiAnswer answer;
    answer.data = {0x51, static_cast<UINT8>(count & 0xFF), static_cast<UINT8>(count >> 8), 0xFF, 0xFF};
    answer.data.resize(13);
    answer.data.push_back(0x22); // non-modal updates, Reserve supported
    return answer;
}

IpmiAnswer CSdrRepository::Reserve() {
    if (++m_reservation == 0)
        m_reservation = 1;
    m_reserved = true;
    return {.data = {static_cast<UINT8>(m_reservation & 0xFF), static_cast<UINT8>(m_reservation >> 8)}};
}

IpmiAnswer CSdrRepository::Get(const BYTES& data) const {
    if (data.size() != GET_SDR_LENGTH)
        return Refuse(CC_BAD_LENGTH);
    const UINT16 reservation = Word(data, 0);
    const std::size_t offset = data[4];
    // Without a reservation a record is readable only from its start.
    if (!IsReservedAs(reservation) && (reservation != 0 || offset != 0))
        return Refuse(CC_RESERVATION_CANCELLED);
    UINT16 id = Word(data, 2);
    if (id == FIRST_RECORD)
        id = 1;
    else if (id == LAST_RECORD)
        id = static_cast<UINT16>(m_records.size());
    if (id == 0 || id > m_records.size())
        return Refuse(CC_NOT_PRESENT);
    const BYTES& record = m_records[id - 1U];
    if (offset > record.size())
        return Refuse(CC_OUT_OF_RANGE);
    const std::size_t count = data[5] == WHOLE_RECORD ? record.size() - offset : data[5];
    if (count > m_maxRead)
        return Refuse(CC_CANNOT_RETURN_BYTES);
    if (count > record.size() - offset)
        return Refuse(CC_OUT_OF_RANGE);
    const UINT16 next = id < m_records.size() ? static_cast<UINT16>(id + 1) : LAST_RECORD;
    IpmiAnswer answer{.data = {static_cast<UINT8>(next & 0xFF), static_cast<UINT8>(next >> 8)}};
    Append(answer.data, std::span(record).subspan(offset, count));
    return answer;
}

} // namespace Frudata_Sim
