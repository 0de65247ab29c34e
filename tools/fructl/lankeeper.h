// The process that keeps a run's one session over LAN: the module has a thread, which no process that is forked later
// would have, and a session belongs to the process that has opened it.
#pragma once

#include "drivers/lan/lan.h"

#include <sys/types.h>

namespace Fructl {

enum class LAN_TASK : UINT8 {
    OPEN, ///< opens a session, unless the one from before still serves
    SEND  ///< a request over it
};

/// Data of a request or an answer; what a session carries is shorter, and refuses what is longer itself.
constexpr UINT32 LAN_DATA_SIZE = 1024;

struct LAN_QUESTION {
    pid_t asker;
    UINT32 number; ///< of the asker's questions
    LAN_TASK task;
    UINT8 netFn;
    UINT8 lun;
    UINT8 cmd;
    int timeout;
    UINT32 length;
    UINT8 data[LAN_DATA_SIZE];
};

struct LAN_ANSWER {
    pid_t asker; ///< as in the question
    UINT32 number;
    int result; ///< a LAN_RESULT
    UINT8 completionCode;
    UINT32 length;
    UINT8 data[LAN_DATA_SIZE];
    char text[LAN_DATA_SIZE]; ///< a failure's message; of an opening the way taken
};

/// Answers questions from the socket until its other ends are closed, with the settings and the password of the run.
/// Then it closes the session and ends the process.
[[noreturn]] void KeepLanSession(int socket);

} // namespace Fructl
