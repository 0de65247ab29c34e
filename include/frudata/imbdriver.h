/** @file
 * frudata: an IMB driver, the host's own way to the BMC. Usable from C and C++.
 *
 * These three functions are not the library's. A host that defines them gives the library its way to the BMC, for every
 * request; the library looks them up when it is loaded and uses the ports without them. With this header their
 * signatures are checked where the host is compiled, and the library finds them there although the host hides its
 * symbols. `libfrudata-openipmi` defines them for the kernel's driver (openipmi.h).
 */
#ifndef FRUDATA_IMBDRIVER_H
#define FRUDATA_IMBDRIVER_H

#include "frudata/bmclib.h"

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/** Opens the way to the BMC. @return not 0: the driver is there; 0: the library uses the ports */
int open_imb(void);

/** Closes it; a driver may lack this function. @return the result of BmcLibDeinitialize */
int close_imb(void);

/**
 * Sends one request to the BMC and waits for the answer.
 * @param request asked; the caller's, like its data
 * @param timeout milliseconds
 * @param responseData takes the data of the answer, without the completion code
 * @param responseLength bytes of room in `responseData` on entry, bytes of data on return
 * @param completionCode takes the completion code (IPMI 2.0, section 5.2)
 * @return 0 when the BMC has answered; any other value fails the request and is the result of ProcessMessage
 */
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                         UINT8* completionCode);

#ifdef __cplusplus
} // extern "C"
#endif
#pragma GCC visibility pop

#endif
