// Scripted faults of a BMC, its devices and the way to it, as rules.
#pragma once

#include "sim/ipmi.h"

#include <optional>

namespace Frudata_Sim {

/// The effect of a rule. `value` is the rule's number.
enum class FAULT_ACTION {
    COMPLETION_CODE,  ///< answers completion code `value` without data; nothing is done
    TRANSPORT_ERROR,  ///< the transport fails with `value` (0 counts as 1); nothing is done
    SILENCE,          ///< no answer; nothing is done. Behind the BMC: no message arrives
    DROP_WRITE,       ///< writes only: acknowledged in full, nothing stored
    ACKNOWLEDGE_NONE, ///< writes only: answered as success with a count of 0, nothing stored
    CUT,              ///< writes only: `value` writes are stored, every later one fails in the transport
    SHORT_ANSWER,     ///< the last `value` data bytes are missing
    LONG_ANSWER,      ///< `value` bytes 0xEE follow the data
    NEXT_RECORD,      ///< Get SDR only: the answer names `value` as the next record id
    WRONG_SEQUENCE,   ///< bridged requests only: the message carries the next sequence number
    STALE_MESSAGES    ///< bridged requests only: `value` messages of older requests arrive first
};

/// One rule: the requests that match, which of those, and the effect. Empty fields match anything.
struct FaultRule {
    static constexpr unsigned int FOR_EVER = ~0U;

    FAULT_ACTION action = FAULT_ACTION::COMPLETION_CODE;
    UINT16 value = 0;
    std::optional<UINT8> netFn{};
    std::optional<UINT8> cmd{};
    std::optional<UINT8> device{};     ///< FRU device id, or the slave address of a Master Write-Read
    std::optional<UINT8> controller{}; ///< slave address of the controller asked; the BMC is 0x20
    unsigned int occurrence = 1;       ///< the first matching request affected, counted from 1
    unsigned int times = FOR_EVER;     ///< number of requests affected in a row
};

/// A bridged request counts twice: as the BMC's Send Message (controller 0x20), then as the request to
/// the controller behind it.
class CFaultScript {
  public:
    void Add(const FaultRule& rule) { m_rules.push_back({rule, 0}); }
    void Clear() { m_rules.clear(); }
    /// Counts the request and gives the first rule that applies to it, or null. Valid until Add or Clear.
    const FaultRule* Apply(UINT8 controller, const IpmiRequest& request);

  private:
    struct COUNTED_RULE {
        FaultRule rule;
        unsigned int seen;
    };
    std::vector<COUNTED_RULE> m_rules;
};

/// Whether a request stores bytes in a device.
bool IsDeviceWrite(const IpmiRequest& request);

} // namespace Frudata_Sim
