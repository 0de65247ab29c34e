/** @file
 * frudata-openipmi: the Linux kernel's IPMI driver as the way to the BMC. Usable from C and C++.
 *
 * On most servers the kernel's driver owns the system interface, and nothing else may use its ports. A host that is
 * linked with `libfrudata-openipmi.so` (before `libfrudata.so`, or preloads it) reaches the BMC through that driver
 * without a change of its own: the library finds `open_imb`, `close_imb` and `SendTimedImbpRequest` there. They do
 * what the functions below do; a host calls these itself to tell which way it has, or why it has none. While the
 * device is open, ports read 0xFF and writes to them go nowhere; otherwise the library's own `inb` and `outb` apply.
 *
 * One thread at a time may use the driver. The descriptor is close-on-exec. After a fork each process opens its own:
 * neither takes the other's answers.
 */
#ifndef FRUDATA_OPENIPMI_H
#define FRUDATA_OPENIPMI_H

#include "frudata/bmclib.h"

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/** The BMC, or for Get Message the kernel's driver, has answered. */
#define OPENIPMI_OK 0
/** The device is not open, is gone, or does not accept the request. */
#define OPENIPMI_ERR_DEVICE 1
/** A null pointer, a negative length, or an address that is not the BMC's. */
#define OPENIPMI_ERR_ARGUMENT 2
/** No answer within the time-out. A later one is dropped. */
#define OPENIPMI_ERR_TIMEOUT 3
/** The answer has more bytes than the caller's room, or no completion code. */
#define OPENIPMI_ERR_BAD_ANSWER 4

/**
 * Opens the first that exists of /dev/ipmi0, /dev/ipmi/0 and /dev/ipmidev/0. A second call has no effect.
 * @return 1 when it is open; 0 when it is not, with the reason in OpenIpmiFailure
 */
int OpenIpmiOpen(void);

/** Closes the device, if it is open. @return 0 */
int OpenIpmiClose(void);

/** @return the path of the open device, constant text; null while none is open */
const char* OpenIpmiDevice(void);

/**
 * The reason of the last failure: one line without a full stop that names the device, in the encoding of the C
 * library's messages. Owned by the driver, valid until the next call. @return empty before the first failure
 */
const char* OpenIpmiFailure(void);

/**
 * Sends one request to the BMC and waits for the answer. Send Message (IPMI 2.0, section 22.7) and Get Message
 * (22.6) do not reach the BMC, whose message queue is the kernel's: the request inside goes to its controller
 * through the kernel, and the next Get Messages return the answer, or completion code 0x80 while there is none. One
 * such request is pending at a time; a second Send Message gives the first up. For a controller that does not answer
 * the kernel answers with completion code 0xC3.
 * @param request asked; `rsSa` 0x20, `busType` 0
 * @param timeout milliseconds; negative is 0. A Get Message waits a hundredth of it
 * @param responseData takes the data of the answer
 * @param responseLength bytes of room on entry, bytes of data on success
 * @param completionCode takes the completion code (IPMI 2.0, section 5.2)
 * @return OPENIPMI_OK, or an OPENIPMI_ERR_ value with its reason in OpenIpmiFailure; nothing is stored then
 */
int OpenIpmiSend(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                 UINT8* completionCode);

#ifdef __cplusplus
} // extern "C"
#endif
#pragma GCC visibility pop

#endif
