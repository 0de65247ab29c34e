// The exchanges of a run, in order.
#pragma once

#include "sim/ipmi.h"

#include <string>

namespace Frudata_Sim {

/// The way by which a request came.
enum class FRONT {
    DIRECT, ///< CSimulatedBmc::Execute called by the host itself
    IMB,
    KCS,
    SESSION,
    BRIDGE ///< Send Message: the request that a controller behind the BMC got
};

struct Exchange {
    FRONT front = FRONT::DIRECT;
    UINT8 channel = 0;       ///< BRIDGE: the channel; else 0
    UINT8 controller = 0x20; ///< slave address of the controller asked; the BMC is 0x20
    IpmiRequest request;
    IpmiAnswer answer;
};

/// One line, for example `IMB 20 netFn 0A lun 0 cmd 11: 00 00 00 08 -> 00: 08 01 00 ...`.
std::string FormatExchange(const Exchange& exchange);
/// One line an exchange.
std::string FormatExchanges(const std::vector<Exchange>& exchanges);

} // namespace Frudata_Sim
