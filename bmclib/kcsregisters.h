// Registers of a KCS interface (IPMI 2.0, section 9).
#pragma once

#include "frudata/bmclib.h"

namespace Frudata_Private {

inline constexpr UINT8 STATUS_OBF = 0x01; ///< a byte from the BMC waits in the data register
inline constexpr UINT8 STATUS_IBF = 0x02; ///< the BMC has not yet taken the last byte or control code
inline constexpr UINT8 STATUS_SMS = 0x04; ///< the BMC has a message for the system software
inline constexpr UINT8 STATUS_STATE = 0xC0;

/// States of the interface, as STATUS_STATE masks them.
enum KCS_STATE : UINT8 {
    KCS_STATE_IDLE = 0x00,
    KCS_STATE_READ = 0x40,
    KCS_STATE_WRITE = 0x80,
    KCS_STATE_ERROR = 0xC0
};

/// Control codes: READ goes to the data register, the others to the command register.
inline constexpr UINT8 CONTROL_ABORT = 0x60;
inline constexpr UINT8 CONTROL_WRITE_START = 0x61;
inline constexpr UINT8 CONTROL_WRITE_END = 0x62;
inline constexpr UINT8 CONTROL_READ = 0x68;

inline UINT16 KcsDataPort() {
    return static_cast<UINT16>(KCSAddress);
}

/// Status when read, command when written.
inline UINT16 KcsStatusPort() {
    return static_cast<UINT16>(KCSAddress + 1);
}

/// Limit that the driver passes to its waits.
inline constexpr unsigned int KCS_WAIT_LIMIT = 5000000;

/// The last status byte that was read.
extern UINT8 Status;

} // namespace Frudata_Private
