// Moving FRU inventory bytes from and to a device, a few at a time.
#include "common/assertion.h"
#include "frudata/image/platform.h"
#include "frudata/system/frudevice.h"
#include "frudata/system/messages.h"

#include <algorithm>
#include <cstring>

namespace Frudata_Private {

UINT32 g_BMCType = BMC_TYPE_UNKNOWN;

namespace {

constexpr char DEVICE_SOURCE[] = "frureadsystem.cpp";
/// Bytes of the first request, and the step to a smaller one after a refusal.
constexpr int FIRST_CHUNK = 8;
constexpr int CHUNK_STEP = 4;
/// The DS1624's access-memory command takes the place of the high offset byte.
constexpr UINT8 DS1624_ACCESS_MEMORY = 0x17;

UINT8 LowByte(UINT32 offset) {
    return static_cast<UINT8>(offset);
}
UINT8 HighByte(UINT32 offset) {
    return static_cast<UINT8>(offset >> 8);
}

UINT8 EepromOffsetHigh(const FRU_LOCATOR& locator, UINT32 offset) {
    return locator.type == FRU_TYPE_DS1624S ? DS1624_ACCESS_MEMORY : HighByte(offset);
}

/// Whether the FRU is device 0 of a management controller behind the BMC, as the SDR scan finds them.
bool IsBridged(const FRU_LOCATOR& locator) {
    return locator.type == FRU_TYPE_IMBDEVICE && locator.controller == BMC_ADDRESS && locator.bus != NO_BUS &&
           locator.deviceId == 0;
}

int SendToDevice(const FRU_LOCATOR& locator) {
    if (IsBridged(locator))
        return SendBridgedRequest(locator.bus, locator.deviceAddress);
    return SendRequest();
}

bool ReadsWithFruCommands(const FRU_LOCATOR& locator) {
    return locator.type == FRU_TYPE_IMBDEVICE ||
           (locator.type == FRU_TYPE_MBMC_FRU && g_fdPlatform == FRU_PLATFORM_MBMC);
}

void BuildRead(const FRU_LOCATOR& locator, UINT32 offset, int count) {
    const auto bytes = static_cast<UINT8>(count);
    if (ReadsWithFruCommands(locator))
        BuildRequest(locator.controller, NETFN_STORAGE, 0, COMMAND_READ_FRU_DATA,
                     {locator.deviceId, LowByte(offset), HighByte(offset), bytes});
    else
        BuildRequest(locator.controller, NETFN_APPLICATION, locator.lun, COMMAND_MASTER_WRITE_READ,
                     {locator.bus, locator.deviceAddress, bytes, EepromOffsetHigh(locator, offset), LowByte(offset)});
}

void BuildWrite(const FRU_LOCATOR& locator, bool useFruCommands, UINT32 offset, const UINT8* data, int count) {
    if (useFruCommands)
        BuildRequest(locator.controller, NETFN_STORAGE, 0, COMMAND_WRITE_FRU_DATA,
                     {locator.deviceId, LowByte(offset), HighByte(offset)});
    else
        BuildRequest(locator.controller, NETFN_APPLICATION, locator.lun, COMMAND_MASTER_WRITE_READ,
                     {locator.bus, locator.deviceAddress, 0, EepromOffsetHigh(locator, offset), LowByte(offset)});
    const auto bytes = static_cast<UINT32>(count);
    std::memcpy(ReqMsg->data + ReqMsg->dataLength, data, bytes);
    ReqMsg->dataLength += bytes;
}

/// Writes `length` bytes. @return 0, WRITE_FRU_ERROR, or a transport value
EFI_STATUS WriteChunks(const FRU_LOCATOR& locator, bool useFruCommands, UINT32 offset, const UINT8* data,
                       UINT32 length) {
    if (locator.type == FRU_TYPE_NONE)
        return FRU_STATUS_WRITE_FRU_ERROR;
    int chunk = FIRST_CHUNK;
    while (length > 0) {
        chunk = static_cast<int>(std::min<UINT32>(length, static_cast<UINT32>(chunk)));
        BuildWrite(locator, useFruCommands, offset, data, chunk);
        if (const int status = SendToDevice(locator))
            return static_cast<EFI_STATUS>(status);
        const UINT8 completion = RespMsg->completionCode;
        // Compatibility: repeats the request to a busy node without limit, here and in reading.
        if (completion == COMPLETION_NODE_BUSY)
            continue;
        if (completion == COMPLETION_BAD_LENGTH && chunk != 1) {
            chunk -= CHUNK_STEP;
            // Compatibility: tries 8, 4 and 0 bytes, but not the single byte that reading tries.
            if (chunk >= 0)
                continue;
        }
        // A device that accepts 0 bytes never gets the rest.
        if (completion != COMPLETION_SUCCESS || chunk == 0)
            return FRU_STATUS_WRITE_FRU_ERROR;
        const auto written = static_cast<UINT32>(chunk);
        offset += written;
        data += written;
        length -= written;
    }
    return FRU_STATUS_SUCCESS;
}

/// Compatibility: the request that would lock a mini-BMC's flash is never sent, so it never fails.
EFI_STATUS LockFlash(const FRU_LOCATOR&) {
    return FRU_STATUS_SUCCESS;
}

} // namespace

EFI_STATUS ReadFruDataFromBmc(const FRU_LOCATOR& locator, UINT16 offset, UINT8* buffer, UINT16& length) {
    const CTrace trace = CFru::TraceOf(L"ReadFruDataFromBmc");
    int remaining = length;
    length = 0;
    if (locator.type == FRU_TYPE_NONE)
        return trace.Fail(L"Error Reading FRU", FRU_STATUS_READ_FRU_ERROR);
    // The answer to Read FRU Data has the count before the bytes.
    const UINTN dataStart = ReadsWithFruCommands(locator) ? 1 : 0;
    int chunk = FIRST_CHUNK;
    while (remaining > 0) {
        chunk = std::min(chunk, remaining);
        BuildRead(locator, static_cast<UINT32>(offset) + length, chunk);
        if (const int status = SendToDevice(locator))
            return static_cast<EFI_STATUS>(status);
        const UINT8 completion = RespMsg->completionCode;
        if (completion == COMPLETION_NODE_BUSY)
            continue;
        const bool isTooMuch = completion == COMPLETION_FIELD_TOO_LONG || completion == COMPLETION_CANNOT_RETURN_COUNT;
        // Compatibility: tries 8, 4, 0 and 1 bytes, and really sends the 0.
        if (isTooMuch && chunk != 1) {
            chunk = chunk < CHUNK_STEP ? 1 : chunk - CHUNK_STEP;
            continue;
        }
        if (completion != COMPLETION_SUCCESS)
            return trace.Fail(L"Error Reading FRU", FRU_STATUS_READ_FRU_ERROR);
        std::memcpy(buffer + length, RespMsg->data + dataStart, static_cast<UINTN>(chunk));
        length = static_cast<UINT16>(length + chunk);
        remaining -= chunk;
        // A count of 0 moves nothing: go on with single bytes.
        chunk = std::max(chunk, 1);
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS ReadDataFromFRU(const FRU_LOCATOR* locator, UINT16 offset, UINT16 length, UINT8* data) {
    const CTrace trace = CFru::TraceOf(L"ReadDataFromFRU");
    Assert(locator != nullptr, DEVICE_SOURCE, "locator");
    Assert(data != nullptr, DEVICE_SOURCE, "data");
    const EFI_STATUS status = ReadFruDataFromBmc(*locator, offset, data, length);
    return trace.End(status);
}

EFI_STATUS WriteFruDataToBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length) {
    const CTrace trace = CFru::TraceOf(L"WriteFruDataToBmc");
    const EFI_STATUS status = WriteChunks(locator, locator.type == FRU_TYPE_IMBDEVICE, offset, data, length);
    if (status == FRU_STATUS_WRITE_FRU_ERROR)
        trace.Fail(L"Error Writing FRU");
    return trace.End(status);
}

EFI_STATUS WriteFruDataTomBmc(const FRU_LOCATOR& locator, UINT32 offset, const UINT8* data, UINT32 length) {
    if (offset == 0 && locator.type == FRU_TYPE_MBMC_FRU && LockFlash(locator) != FRU_STATUS_SUCCESS) {
        Dbg(L"\nLockFlash Error\n", TRACE_ERROR);
        return FRU_STATUS_LOCK_FLASH_ERROR;
    }
    const bool useFruCommands = locator.type == FRU_TYPE_IMBDEVICE || locator.type == FRU_TYPE_MBMC_FRU;
    return WriteChunks(locator, useFruCommands, offset, data, length);
}

EFI_STATUS WriteFruData(const FRU_LOCATOR& locator, UINT32 offset, UINT32 length, const UINT8* data) {
    const CTrace trace = CFru::TraceOf(L"WriteFruData");
    const bool isMbmc = g_BMCType != BMC_TYPE_BMC && g_fdPlatform == FRU_PLATFORM_MBMC;
    const EFI_STATUS status =
        isMbmc ? WriteFruDataTomBmc(locator, offset, data, length) : WriteFruDataToBmc(locator, offset, data, length);
    return trace.End(status);
}

} // namespace Frudata_Private
