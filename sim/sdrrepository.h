// The SDR repository with its reservations (IPMI 2.0, section 33).
#pragma once

#include "sim/ipmi.h"

namespace Frudata_Sim {

class CSdrRepository {
  public:
    /// Appends a record (5-byte header and body, taken as it is, right or wrong), gives it the next record
    /// id, writes that id into its first two bytes and cancels the reservation. @return the id, from 1 on
    UINT16 Add(BYTES record);
    void Clear();
    const std::vector<BYTES>& Records() const { return m_records; }

    /// Most bytes of a record that one Get SDR returns; more answers 0xCA.
    void SetMaxRead(UINT8 count) { m_maxRead = count; }
    /// Cancels the host's reservation, as a change by someone else does.
    void CancelReservation() { m_reserved = false; }

    IpmiAnswer Info() const;
    IpmiAnswer Reserve();
    IpmiAnswer Get(const BYTES& data) const;

  private:
    bool IsReservedAs(UINT16 reservation) const { return m_reserved && reservation == m_reservation; }

    std::vector<BYTES> m_records;
    UINT16 m_reservation = 0;
    bool m_reserved = false;
    UINT8 m_maxRead = 32;
};

} // namespace Frudata_Sim
