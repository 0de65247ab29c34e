#include "sim/faults.h"

#include "sim/simulatedbmc.h"

namespace Frudata_Sim {

namespace {

bool IsFruCommand(const IpmiRequest& request) {
    return request.netFn == NETFN_STORAGE && request.cmd >= CMD_GET_FRU_AREA_INFO && request.cmd <= CMD_WRITE_FRU_DATA;
}

bool IsMasterWriteRead(const IpmiRequest& request) {
    return request.netFn == NETFN_APP && request.cmd == CMD_MASTER_WRITE_READ;
}

bool IsForDevice(UINT8 device, const IpmiRequest& request) {
    if (IsFruCommand(request))
        return !request.data.empty() && request.data[0] == device;
    return IsMasterWriteRead(request) && request.data.size() > 1 && request.data[1] == device;
}

/// Whether the action applies to the request.
bool IsApplicable(FAULT_ACTION action, UINT8 controller, const IpmiRequest& request) {
    switch (action) {
    case FAULT_ACTION::DROP_WRITE:
    case FAULT_ACTION::ACKNOWLEDGE_NONE:
    case FAULT_ACTION::CUT:
        return IsDeviceWrite(request);
    case FAULT_ACTION::NEXT_RECORD:
        return request.netFn == NETFN_STORAGE && request.cmd == CMD_GET_SDR;
    case FAULT_ACTION::WRONG_SEQUENCE:
    case FAULT_ACTION::STALE_MESSAGES:
        return controller != BMC_ADDRESS;
    default:
        return true;
    }
}

bool IsMatch(const FaultRule& rule, UINT8 controller, const IpmiRequest& request) {
    return rule.netFn.value_or(request.netFn) == request.netFn && rule.cmd.value_or(request.cmd) == request.cmd &&
           rule.controller.value_or(controller) == controller && (!rule.device || IsForDevice(*rule.device, request)) &&
           IsApplicable(rule.action, controller, request);
}

} // namespace

bool IsDeviceWrite(const IpmiRequest& request) {
    if (request.netFn == NETFN_STORAGE)
        return request.cmd == CMD_WRITE_FRU_DATA;
    // Bus, address, count, two offset bytes: only bytes behind them are stored.
    return IsMasterWriteRead(request) && request.data.size() > 5;
}

const FaultRule* CFaultScript::Apply(UINT8 controller, const IpmiRequest& request) {
    const FaultRule* applied = nullptr;
    for (COUNTED_RULE& counted : m_rules) {
        const FaultRule& rule = counted.rule;
        if (!IsMatch(rule, controller, request))
            continue;
        ++counted.seen;
        const unsigned int spared = rule.action == FAULT_ACTION::CUT ? rule.value : 0U;
        const unsigned int first = rule.occurrence + spared;
        if (!applied && counted.seen >= first && counted.seen - first < rule.times)
            applied = &rule;
    }
    return applied;
}

} // namespace Frudata_Sim
