/** @file
 * frudata: the BMC layer, for hosts that send IPMI requests of their own. Usable from C and C++.
 *
 * Every function returns a plain integer, not an EFI_STATUS. A completion code is never a failure of
 * this layer: it travels in the response and the caller judges it, "node busy" (C0h) too. (The table's
 * operations repeat such a request without limit.) One thread at a time may use the layer. While a request is in
 * progress over the KCS ports, SIGALRM and the process's alarm belong to the driver; afterwards SIGALRM has its default
 * disposition and no alarm is pending.
 */
#ifndef FRUDATA_BMCLIB_H
#define FRUDATA_BMCLIB_H

#include "frudata/types.h"

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/** No BMC found: no SMBIOS entry point, no answer from its status port, or no KCS interface. */
#define BMCLIB_ERR_NO_BMC (-502)
/** The retries of a bridged request are used up. */
#define BMCLIB_ERR_RETRIES (-504)
/** The BMC type could not be determined. */
#define BMCLIB_ERR_BMC_TYPE (-400)

/** BMC types. */
#define BMC_TYPE_UNKNOWN 0
#define BMC_TYPE_BMC 1
#define BMC_TYPE_MBMC 2
#define BMC_TYPE_MBMC_EXT 5

/** IPMI version codes. */
#define IPMI_VERSION_15 1
#define IPMI_VERSION_20 2

/** Size of the data of one message, in bytes. */
#define BMC_MESSAGE_DATA_SIZE 65536

/** One IPMI request or response. */
typedef struct BMC_MESSAGE {
    UINT8 rsSa;                        /**< responder slave address; 0x20 is the BMC */
    UINT8 netFn;                       /**< network function, without the LUN */
    UINT8 lun;                         /**< LUN, low two bits used */
    UINT8 cmd;                         /**< command */
    UINT8 data[BMC_MESSAGE_DATA_SIZE]; /**< data bytes; a response's completion code is not among them */
    UINT32 dataLength;                 /**< number of valid bytes in `data` */
    UINT8 completionCode;              /**< response only: IPMI completion code, 0 is success */
} BMC_MESSAGE;

/** The request record of an IMB driver (imbdriver.h); the library's own request path takes the same. */
typedef struct _IMBPREQUESTDATA {
    UINT8 cmdType;     /**< IPMI command */
    UINT8 rsSa;        /**< always 0x20 here */
    UINT8 busType;     /**< always 0 */
    UINT8 netFn;       /**< network function, without the LUN */
    UINT8 rsLun;       /**< responder LUN */
    const UINT8* data; /**< request data, owned by the caller */
    int dataLength;    /**< number of data bytes */
} _IMBPREQUESTDATA;

/** The system interface in use. */
FRU_ENUM(_IPMI_INTERFACE_TYPE){
    IPMI_INTERFACE_KCS = 0,      /**< every request over the KCS ports */
    IPMI_INTERFACE_USB = 1,      /**< every request through the session library */
    IPMI_INTERFACE_USB_LARGE = 2 /**< more than 128 data bytes: session library first, then KCS */
};

/** KCS base port (data port); the status and command port is the next one. Default 0x0CA2. */
extern int KCSAddress;

/* --- Discovery ------------------------------------------------------------------------------- */

/**
 * Finds out how the BMC can be reached. Called by `Initialize`; one call a process is enough.
 *
 * Without an IMB driver each call opens /dev/mem (close-on-exec), and each call that may read it maps
 * 65535 bytes of the firmware's memory and, where they lead to an SMBIOS table, 65535 bytes from there:
 * 128 KiB of address space. Neither the descriptor nor the mappings are ever given back. The descriptor
 * is kept in eight bits: above 255 it is cut, and another file of the host is mapped, or none. A host with
 * that many files open calls this first.
 *
 * @return 0, or BMCLIB_ERR_NO_BMC
 */
int BmcLibInitialize(void);
/** Closes the IMB driver if it is in use. @return its close_imb result, else 0 */
int BmcLibDeinitialize(void);
/** The discovery itself. @return 0; BMCLIB_ERR_NO_BMC; -1 where memory or the default port fails */
int MainInit(void);
/** Opens the host's IMB driver. @return its open_imb result; 0 where the host supplies none */
int startIPMI(void);
/** Closes the host's IMB driver. @return its close_imb result; 0 where the host supplies none */
int endIPMI(void);

/* --- Requests -------------------------------------------------------------------------------- */

/**
 * Sends `request` and fills `response`. Address 0x20 goes to the BMC; 0x2C is bridged on channel 6,
 * every other address on channel 0. `request->dataLength` above what a frame can carry fails.
 * Stack: about 70 KiB over KCS, 200 KiB where the request is bridged.
 * @param request asked @param response answered
 * @param timeout milliseconds, for the session library and the IMB driver
 * @return 0; 1 or 3 where the system interface failed; BMCLIB_ERR_RETRIES; an IMB driver's own value
 */
int ProcessMessage(const BMC_MESSAGE* request, BMC_MESSAGE* response, unsigned int timeout);
/** The same under a second name. */
int ProcessTimedMessage(const BMC_MESSAGE* request, BMC_MESSAGE* response, unsigned int timeout);
/** Bridges `request` to the controller `target` on `channel` with Send Message and Get Message. */
int ProcessSendMessage(const BMC_MESSAGE* request, BMC_MESSAGE* response, UINT8 channel, UINT8 target);
/**
 * Sends one request to the BMC over KCS or the session library, as SelectIPMIInterface chose, whatever the
 * discovery found.
 * @param request asked
 * @param timeout milliseconds, for the session library; KCS has its own 15 seconds a wait
 * @param responseData room for 65535 bytes @param responseLength out: bytes of it
 * @param completionCode out: 0 for success
 * @return 0; 1 where the interface failed; a session library result (see SendTimedUsbRequest)
 */
int SendTimedImbpRequest_t(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                           UINT8* completionCode);
/** Waits up to half a second for the SMS attention flag of port 0x0CA3. */
void wait_for_SMS_flag(void);

/**
 * Selects the system interface. Select KCS before changing the session interface. Where the discovery found
 * an IMB driver, or an interface without a driver, the selection succeeds but only SendTimedImbpRequest_t
 * follows it.
 * @return true on success; a failure leaves the interface as it was
 */
bool SelectIPMIInterface(_IPMI_INTERFACE_TYPE type);

/** Asks the BMC for its type. Stack: about 200 KiB. @return 0, or the status of the request (type BMC_TYPE_UNKNOWN) */
int GetBmcType(UINT32* type);
/** BMC type and IPMI version code, asked once and then remembered. Stack: about 330 KiB.
 *  @return 0, a request's status, or BMCLIB_ERR_BMC_TYPE */
int GetBmcTypeVersion(UINT32* type, UINT32* version);

/* --- KCS driver (IPMI 2.0, section 9) -------------------------------------------------------- */

/** Writes one request frame of at least 2 bytes. @return 0; 1 busy; 2 time-out; 3 wrong state */
int KCSSendMessage(const UINT8* frame, unsigned int length);
/**
 * Reads one response frame.
 * @param buffer room for the frame @param capacity bytes of it @param count out: bytes read
 * @return 0; 2 time-out; 3 neither READ nor IDLE state, after a recovery; 4 `capacity` reached before the end
 */
int KCSReadBMCData(UINT8* buffer, unsigned int capacity, unsigned int* count);
/** Brings the interface back to idle. @return 0; 2 time-out; 3 after five failed attempts */
int KCSBMCErrorHandler(void);
/**
 * Waits until the BMC has taken the last byte. The wait's alarm sets its counter from 0 to 5000001 after 15 seconds.
 * @param limit in units of that counter, which are no time: a wait ends when the counter is above it. So up to
 *              5000000 the wait ends after 15 seconds, above that it never ends. The driver passes 5000000.
 * @return 0; 1 on time-out
 */
int WaitWhileIbf(unsigned int limit);
/** Waits until a byte from the BMC is there. @param limit as above @return 0; 1 on time-out */
int WaitTilObf(unsigned int limit);
/** The driver's SIGALRM handler. */
void kcs_timeout(int signalNumber);
/** @return 1 if an interface answers at KCSAddress, else 0 */
int IsKCS(void);
/** @return 1 if the SMS attention flag is set, else 0 */
int KCSMessageReady(void);
/**
 * Waits for a message from a responder, without limit.
 * @param responderAddress 0x20: for a byte; any other: for SMS attention @param timeout no effect
 * @return 0
 */
int CheckMessageReady(UINT8 responderAddress, unsigned int timeout);
/** Millisecond time-out: kept for hosts, no effect. */
void SetMsTimeout(unsigned int timeout);
/** @return always 0 (not expired) */
int CheckMsTimeout(void);

/**
 * Reads a port; 0xFF where port access is refused. A host may define its own inb and outb, which then replace
 * the library's for all port traffic.
 */
UINT8 inb(UINT16 port);
/** Writes `value` to `port`; no effect where port access is refused. */
void outb(UINT8 value, UINT16 port);

/* --- Session library ("libipmi.so", loaded at run time) -------------------------------------- */

/** Loads the library and opens a session. @return 1 on success, else 0 */
int UsbLibInitialize(void);
/** Closes the session and unloads the library, if loaded. */
void UsbLibDeinitialize(void);
/** Opens a session. @return the session library's result, low 16 bits; 0 is success */
int UsbOpenSession(void);
/** Closes the session. @return the session library's result */
int UsbCloseSession(void);
/** Sends one request. @return 0; 1 the session library reported failure; 3 empty answer */
int SendTimedUsbRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                        UINT8* completionCode);

#ifdef __cplusplus
} // extern "C"
#endif
#pragma GCC visibility pop

#endif
