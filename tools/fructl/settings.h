// What the global options say.
#pragma once

#include "frudata/types.h"

#include <optional>
#include <string>

namespace Fructl {

/// The options of the session over LAN; 0 or empty stands for the default (LAN_SESSION_OPTIONS).
struct LAN_SETTINGS {
    std::string host; ///< empty: no such session
    UINT16 port = 0;  ///< UDP
    std::string user;
    UINT8 cipherSuite = 0;
    bool isIpmi15 = false;
    UINT8 privilege = 0;
    std::string passwordFile;
    UINT32 timeout = 0; ///< milliseconds for an answer
};

struct SETTINGS {
    std::string simDirectory; ///< empty: the machine's own BMC
    std::string interface;    ///< one of WayNames(); empty: the usual ones in their order
    LAN_SETTINGS lan;
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
