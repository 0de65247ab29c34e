// The simulated BMC: all requests about FRU inventory, with the refusals of a real BMC.
//
// Build one in memory with the Add functions, or load a directory (sim/directory.h); reach it through
// Execute or a front (sim/fronts.h, sim/kcsmodel.h). Not for several threads at once.
#pragma once

#include "sim/controller.h"
#include "sim/faults.h"
#include "sim/messagequeue.h"
#include "sim/recorder.h"
#include "sim/sdrrepository.h"

#include <functional>
#include <memory>
#include <utility>

namespace Frudata_Sim {

/// Slave address of the BMC.
inline constexpr UINT8 BMC_ADDRESS = 0x20;

class CSimulatedBmc : public CManagementController {
  public:
    /// A host's own answers to requests on any front, asked before faults and devices; without a value the BMC
    /// answers itself.
    using SCRIPT = std::function<std::optional<IpmiAnswer>(const IpmiRequest&)>;

    explicit CSimulatedBmc(DeviceIdentity identity = {}) : CManagementController(identity) {}
    CSimulatedBmc(const CSimulatedBmc&) = delete;
    CSimulatedBmc& operator=(const CSimulatedBmc&) = delete;

    /// Adds a controller behind the BMC, reached with Send Message. The reference stays valid.
    CManagementController& AddController(UINT8 channel, UINT8 address, DeviceIdentity identity = {});
    /// Throws std::out_of_range for an unknown controller.
    CManagementController& Controller(UINT8 channel, UINT8 address);
    /// Appends an SDR (sim/sdrrecords.h composes them). @return its record id
    UINT16 AddSdr(BYTES record) { return m_sdrs.Add(std::move(record)); }
    CSdrRepository& Sdrs() { return m_sdrs; }
    void AddFault(const FaultRule& rule) { m_faults.Add(rule); }
    void ClearFaults() { m_faults.Clear(); }
    void SetScript(SCRIPT script) { m_script = std::move(script); }
    /// Whether a message waits for Get Message: the SMS attention flag.
    bool HasMessage() const { return !m_messages.IsEmpty(); }

    /// One request from the host. Faults apply; the exchange is recorded.
    IpmiAnswer Execute(const IpmiRequest& request, FRONT front = FRONT::DIRECT);

    /// Recording is off at first.
    void SetRecording(bool on) { m_recording = on; }
    const std::vector<Exchange>& Exchanges() const { return m_exchanges; }
    void ClearExchanges() { m_exchanges.clear(); }

    IpmiAnswer Handle(const IpmiRequest& request, bool store) override;

  private:
    IpmiAnswer HandleMessaging(const IpmiRequest& request);
    IpmiAnswer HandleSdr(const IpmiRequest& request);
    IpmiAnswer SendMessage(const IpmiRequest& request);
    void Bridge(CManagementController& controller, const BridgedRequest& bridged);

    std::map<std::pair<UINT8, UINT8>, CManagementController> m_controllers;
    CSdrRepository m_sdrs;
    CMessageQueue m_messages;
    CFaultScript m_faults;
    SCRIPT m_script;
    bool m_recording = false;
    std::vector<Exchange> m_exchanges;
};

} // namespace Frudata_Sim
