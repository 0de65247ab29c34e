// What the global options say.
#pragma once

#include "frudata/bmclib.h"

#include <optional>
#include <string>

namespace Fructl {

struct SETTINGS {
    std::string simDirectory; ///< empty: the machine's own BMC
    _IPMI_INTERFACE_TYPE interface = IPMI_INTERFACE_KCS;
    std::optional<unsigned> kcsPort;
    int platform = 0;
    std::string language; ///< one of Languages()
    unsigned debugLevel = 0;
    bool json = false;
    bool color = false; ///< on standard output
    bool quiet = false;
    bool force = false;
    unsigned wait = 60; ///< seconds for which a writer waits for another one
};

/// The settings of this run, filled by main.
SETTINGS& Settings();

} // namespace Fructl
