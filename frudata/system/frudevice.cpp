// The members of CFru for the device. They are defined here because image/ includes nothing of system/.
#include "frudata/system/frudevice.h"

#include "common/lasterror.h"

#include <unistd.h>

namespace Frudata_Private {

EFI_STATUS CFru::LoadFromSystem(const FRU_LOCATOR* locator) {
    return Frudata_Private::LoadFromSystem(*this, locator);
}

EFI_STATUS CFru::WriteToSystem(const FRU_PROGRESS_CALLBACK& progress) {
    return Frudata_Private::WriteToSystem(*this, progress);
}

EFI_STATUS CFru::ReadDataFromFRU(const FRU_LOCATOR* locator, UINT16 offset, UINT16 length, UINT8* data) {
    return Frudata_Private::ReadDataFromFRU(locator, offset, length, data);
}

EFI_STATUS CFru::ReadFruDataFromBmc(const FRU_LOCATOR& locator, UINT16 offset, UINT8* buffer, UINT16& length) {
    return Frudata_Private::ReadFruDataFromBmc(locator, offset, buffer, length);
}

EFI_STATUS CFru::WriteFruData(UINT32 offset, UINT32 length, const UINT8* data) {
    return Frudata_Private::WriteFruData(m_locator, offset, length, data);
}

EFI_STATUS CFru::WriteFruDataToBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length) {
    return Frudata_Private::WriteFruDataToBmc(locator, offset, data, length);
}

EFI_STATUS CFru::WriteFruDataTomBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length) {
    return Frudata_Private::WriteFruDataTomBmc(locator, offset, data, length);
}

void CFru::Sleep(unsigned int seconds) {
    const CTrace trace = TraceOf(L"Sleep");
    sleep(seconds);
    trace.Exit();
}

void RecordFruError(STRING_ID message, const FRU_LOCATOR* locator) {
    WCHAR identifier[FRU_IDENTIFIER_BYTES / sizeof(WCHAR)];
    RecordLastError(message, CFru::GetFriendlyFruIdentifier(locator, identifier, FRU_IDENTIFIER_BYTES));
}

} // namespace Frudata_Private
