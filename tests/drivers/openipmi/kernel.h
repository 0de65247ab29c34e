// The kernel's side of the IPMI device, scripted by the test: what arrives, and when.
#pragma once

#include "frudata/types.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

using BYTES = std::vector<UINT8>;

enum ARRIVAL {
    ARRIVES,              // the answer to the request sent last
    ARRIVES_FOR_PREVIOUS, // to the one before
    ARRIVES_AS_EVENT,     // a message of another kind under the same number
    PAUSE,                // half a second in which nothing arrives
    POLL_INTERRUPTED,
    TAKE_INTERRUPTED,
    TAKEN_BY_OTHERS,
    DEVICE_CLOSED,
    DEVICE_GONE
};

struct STEP {
    ARRIVAL what;
    BYTES bytes = {};
    bool isEndless = false; // half a second each time
};

struct SENT {
    int addressType;
    int channel;
    int slave; // IPMB only
    int lun;
    int netFn;
    int cmd;
    BYTES data;
    bool operator==(const SENT&) const = default;
};

struct KERNEL {
    std::map<std::string, int> errors; // of open; a path without one is absent, 0 opens
    mode_t mode = 0600;
    gid_t owner = 0;
    pid_t process = 1;
    int flags = 0; // of the last open
    int opened = 0;
    int sendError = 0;
    std::deque<STEP> script;
    std::vector<SENT> sent;
    std::vector<long> ids;
    unsigned int patience = 0; // of the last request, all its tries together
    long long milliseconds = 0;
};

extern KERNEL g_kernel;
