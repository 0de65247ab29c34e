// A FRU image as a FRU text file (docs/file-format.md).
#pragma once

#include "common/libfile.h"
#include "frudata/image/fru.h"

namespace Frudata_Private {

/// The source file by which hosts know assertions of reading a text file.
inline constexpr char TEXT_FILE_SOURCE[] = "frureadfile.cpp";

/// Fills `fru` from a file; what was read before a failure stays. A null name is a fatal assertion.
/// @return 0, FILE_READ_ERROR
EFI_STATUS ReadFRUFromFile(CFru& fru, const char* filename);
/// Reads the area block whose tag is on `line`; `data` is valid until the next call.
/// @return 0, MISSING_AREA_TAG, AREA_TOO_BIG, UNEXPECTED_CHARACTER
EFI_STATUS ParseArea(const char* tag, const CFile& file, UINTN line, UINT8*& data, UINTN& length);
/// Turns a ParseArea failure into the last error.
void SetParseAreaErrorMessage(EFI_STATUS status, const WCHAR* areaName, const char* filename);

/// Writes `fru` to a file; a failure leaves the sections written so far.
/// @return 0, OUT_OF_MEMORY, FILE_CREATE_ERROR, FILE_WRITE_ERROR
EFI_STATUS SaveFRUToFile(CFru& fru, const char* path);

} // namespace Frudata_Private
