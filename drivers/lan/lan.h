/** @file
 * IPMI over LAN: the interface of the module "frudata-lan.so", which a host loads for its first session. Usable
 * from C and C++; the header needs nothing of libfreeipmi.
 *
 * The module is linked with libfreeipmi, whose licence is the GPL, version 3 or later. The module as a whole is
 * therefore under that licence and has a package of its own; its sources, like this header, are under the
 * project's.
 *
 * A session belongs to the process that opened it: in a child every request fails. One thread at a time may use
 * it; the module runs a thread of its own for each session, which takes no signals. Nothing here throws, prints or
 * writes a log.
 */
#ifndef FRUDATA_DRIVERS_LAN_H
#define FRUDATA_DRIVERS_LAN_H

#include "frudata/bmclib.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The name of the module's only exported function, a LAN_ENTRY. */
#define LAN_ENTRY_NAME "FrudataLan"
/** Version of LAN_INTERFACE. It rises with every change of that or of the structures below. */
#define LAN_INTERFACE_VERSION 1U

/** UDP port of RMCP (IPMI 2.0, section 13.1.2). */
#define LAN_DEFAULT_PORT 623
/** Milliseconds that a BMC has for an answer, and until a request is sent again. */
#define LAN_DEFAULT_TIMEOUT 5000U
#define LAN_DEFAULT_RETRANSMISSION 500U

/** Privilege levels (IPMI 2.0, section 6.8). Reading and writing FRUs needs operator at most. */
#define LAN_PRIVILEGE_USER 2
#define LAN_PRIVILEGE_OPERATOR 3
#define LAN_PRIVILEGE_ADMINISTRATOR 4

/** Longest user name and passwords (IPMI 2.0, sections 22.28 and 22.30), in bytes. */
#define LAN_USER_SIZE 16
#define LAN_PASSWORD_SIZE 20
#define LAN_PASSWORD_SIZE_15 16

/**
 * Sizes in data bytes, without the completion code. Every BMC handles LAN_SAFE_ on a LAN (messages of 45 and 42
 * bytes). LAN_LARGEST_ fills a message with its one-byte length; a longer request is refused and not sent. A bridged
 * request also passes the IPMB, with frames of 32 bytes: 25 data bytes there and 24 back.
 */
#define LAN_SAFE_REQUEST_SIZE 38
#define LAN_SAFE_ANSWER_SIZE 34
#define LAN_LARGEST_REQUEST_SIZE 248
#define LAN_LARGEST_ANSWER_SIZE 247

/** Results. Every failure has a message for people, which never holds the password. */
FRU_ENUM(LAN_RESULT){
    LAN_OK = 0,            /**< done */
    LAN_ERR_OPTION = 1,    /**< an option or argument out of its range */
    LAN_ERR_NAME = 2,      /**< the host's name has no address */
    LAN_ERR_NO_ANSWER = 3, /**< nobody answers there */
    LAN_ERR_USER = 4,      /**< the BMC does not know the user */
    LAN_ERR_PASSWORD = 5,  /**< wrong password */
    LAN_ERR_PRIVILEGE = 6, /**< the user may not use this privilege level, or it does not suffice */
    LAN_ERR_CIPHER = 7,    /**< the BMC refuses the cipher suite, or IPMI 1.5's MD5 authentication */
    LAN_ERR_VERSION = 8,   /**< the BMC speaks no IPMI 2.0 */
    LAN_ERR_SESSION = 9,   /**< the session is lost: every later request fails at once */
    LAN_ERR_SIZE = 10,     /**< the request is too long for a session, or the answer for its buffer */
    LAN_ERR_ANSWER = 11,   /**< a malformed answer; the session goes on */
    LAN_ERR_RESOURCES = 12 /**< no memory, no thread, no socket */
};

/** Options of a session. 0 or null stands for the default. */
typedef struct LAN_SESSION_OPTIONS {
    const char* host;      /**< name or address, IPv4 or IPv6 without brackets; needed */
    UINT16 port;           /**< LAN_DEFAULT_PORT */
    const char* user;      /**< the user without a name */
    char* password;        /**< none; `Open` overwrites it with zero bytes in any case */
    UINT8 cipherSuite;     /**< 17 or 3; by default 17, then 3 if the BMC refuses it */
    UINT8 ipmi15;          /**< not 0: IPMI 1.5 with MD5 authentication, no encryption */
    UINT8 privilege;       /**< LAN_PRIVILEGE_OPERATOR */
    UINT32 timeout;        /**< LAN_DEFAULT_TIMEOUT; from 100 to 60000 milliseconds */
    UINT32 retransmission; /**< a tenth of the time-out, LAN_DEFAULT_RETRANSMISSION at most; half of it at most */
} LAN_SESSION_OPTIONS;

/** An open session. */
typedef struct LAN_SESSION LAN_SESSION;

/** The module's functions. */
typedef struct LAN_INTERFACE {
    UINT32 version; /**< LAN_INTERFACE_VERSION */

    /**
     * Opens a session. While one is open, the process writes no core dump: it would hold the session's keys and
     * password. The module keeps an idle session alive. Returns within three times the time-out, and one more for
     * the name service.
     * @param session the session, for `Close`; null on failure @param message text of `messageSize` bytes, cut to fit
     * @return a LAN_RESULT
     */
    int (*Open)(const LAN_SESSION_OPTIONS* options, LAN_SESSION** session, char* message, UINT32 messageSize);

    /**
     * Sends one request as an IMB driver does (see imbdriver.h): `*responseLength` holds the room in `responseData` on
     * entry, the number of data bytes on return. A lost packet is sent again. Send Message is executed at once,
     * for the IPMB; the next Get Message returns its answer (IPMI 2.0, sections 22.6 and 22.7). If nobody on the bus
     * accepts it, the completion code says so. A controller that accepts it and never answers costs the session:
     * libfreeipmi cannot tell it from a lost BMC.
     * @param timeout milliseconds; the session's where it is 0 or less, or longer than the session's
     * @return a LAN_RESULT; on failure nothing is stored
     */
    int (*Send)(LAN_SESSION* session, const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData,
                int* responseLength, UINT8* completionCode);

    /** The last failure of `Send`, valid until its next call; empty if there is none. */
    const char* (*Message)(const LAN_SESSION* session);

    /** The way, such as "192.0.2.7:623, IPMI 2.0, cipher suite 17, operator"; valid until `Close`. */
    const char* (*Description)(const LAN_SESSION* session);

    /** Closes the session; null is allowed. Returns within the session's time-out. */
    void (*Close)(LAN_SESSION* session);
} LAN_INTERFACE;

/** The type of the function LAN_ENTRY_NAME. @return the functions, which stay valid */
typedef const LAN_INTERFACE* (*LAN_ENTRY)(void);

#ifdef __cplusplus
} // extern "C"
#endif

#endif
