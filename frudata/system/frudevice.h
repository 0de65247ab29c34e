// A FRU image on its device, and the bytes of a device. A null locator or buffer is a fatal assertion.
#pragma once

#include "common/stringid.h"
#include "frudata/image/fru.h"

namespace Frudata_Private {

/// The kind of BMC, asked anew for each write (a BMC_TYPE_ value).
extern UINT32 g_BMCType;

/// Copies the address and the name of `locator` and fills `fru` from the device there; areas read before a failure
/// stay. @return 0, NOT_IPMI_FRU, CHECKSUM_ERROR, READ_FRU_ERROR, an INVALID_..._AREA code, OUT_OF_MEMORY, or a
///         transport value
EFI_STATUS LoadFromSystem(CFru& fru, const FRU_LOCATOR* locator);
/// Writes the header, the board area and the modified areas to the device that the image's locator names, and reports
/// each step to `progress`, read anew for each: a callback may exchange or clear it. Areas written before a
/// failure stay written. @return 0, WRITE_SYSTEM_ERROR
EFI_STATUS WriteToSystem(CFru& fru, const FRU_PROGRESS_CALLBACK& progress);

/// Reads `length` bytes at `offset` of the device. @return 0, READ_FRU_ERROR, or a transport value
EFI_STATUS ReadDataFromFRU(const FRU_LOCATOR* locator, UINT16 offset, UINT16 length, UINT8* data);
/// The same without its checks. @param length in: bytes wanted; out: bytes read
EFI_STATUS ReadFruDataFromBmc(const FRU_LOCATOR& locator, UINT16 offset, UINT8* buffer, UINT16& length);
/// Writes with the one of the following two that suits the BMC. @return 0, WRITE_FRU_ERROR, or a transport value
EFI_STATUS WriteFruData(const FRU_LOCATOR& locator, UINT32 offset, UINT32 length, const UINT8* data);
EFI_STATUS WriteFruDataToBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length);
EFI_STATUS WriteFruDataTomBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length);

/// Records a message about the FRU at `locator` as the last error.
void RecordFruError(STRING_ID message, const FRU_LOCATOR* locator);

} // namespace Frudata_Private
