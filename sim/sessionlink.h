/* What the session library libipmi.so finds in the executable that loads it. */
#ifndef FRUDATA_SIM_SESSIONLINK_H
#define FRUDATA_SIM_SESSIONLINK_H

#include "frudata/types.h"

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/** Whether the host has a BMC to open a session with. @return 1 or 0 */
int FruSimSessionAvailable(void);
/**
 * One request. `answer` (room for `capacity` bytes) takes the completion code and the data.
 * @return the number of bytes in `answer`, or -1
 */
int FruSimSessionRequest(UINT8 netFnLun, UINT8 cmd, const UINT8* data, int length, UINT8* answer, int capacity);

#ifdef __cplusplus
} // extern "C"
#endif
#pragma GCC visibility pop

#endif
