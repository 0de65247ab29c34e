#include "frudata/system/sdrrecords.h"

#include "common/trace.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Frudata_Private {

namespace {

constexpr UINT8 SDR_VERSION = 0x51;
constexpr UINT8 SMALLEST_RECORD_LENGTH = 5;
constexpr UINTN ID_STRING_BYTE = 15;
constexpr UINTN ID_STRING_START = 16;
/// A length of all ones is reserved: there is no string.
constexpr UINT8 ID_STRING_NONE = 0x1F;

/// Header and ID string lie alike in both locator records.
template <typename RECORD> EFI_STATUS DecodeCommon(const CTrace& trace, std::span<const UINT8> raw, RECORD& record) {
    const EFI_STATUS status = DecodeHeader(raw, record.header);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    if (raw.size() < ID_STRING_START)
        return trace.Fail(L"Bad SDR Record Length", FRU_STATUS_SDR_BAD_RECORD_LENGTH);
    const UINT8 typeLength = raw[ID_STRING_BYTE];
    const UINT8 length = typeLength & 0x1F;
    record.idStringType = static_cast<UINT8>(typeLength >> 6);
    record.idStringLength = length == ID_STRING_NONE ? UINT8{0} : length;
    record.idStringTypeLength = typeLength;
    const UINTN size = raw[4] + SDR_HEADER_LENGTH;
    if (size != record.idStringLength + ID_STRING_START || size > raw.size())
        return trace.Fail(L"Bad SDR Record Length", FRU_STATUS_SDR_BAD_RECORD_LENGTH);
    const UINTN kept = std::min<UINTN>(record.idStringLength, SDR_ID_STRING_SIZE - 1);
    std::memcpy(record.idString, raw.subspan(ID_STRING_START, kept).data(), kept);
    record.idString[kept] = 0;
    return FRU_STATUS_SUCCESS;
}

} // namespace

EFI_STATUS SDR_MEM_Free(SDR_TYPE& sdr) {
    const CTrace trace = TraceFruData(L"SDR_MEM_Free");
    if (std::exchange(sdr.typeCount[SDR_INDEX_FRU_LOCATOR], 0U) != 0) {
        sdr.fruLocators.reset();
        sdr.fruCapacity = 0;
    }
    if (std::exchange(sdr.typeCount[SDR_INDEX_MC_LOCATOR], 0U) != 0) {
        sdr.mcLocators.reset();
        sdr.mcCapacity = 0;
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS DecodeHeader(std::span<const UINT8> raw, RECHDR& header) {
    const CTrace trace = TraceFruData(L"DecodeHeader");
    if (raw.size() < SDR_HEADER_LENGTH || raw[4] < SMALLEST_RECORD_LENGTH)
        return trace.Fail(L"Bad SDR Header Length", FRU_STATUS_SDR_BAD_HEADER_LENGTH);
    if (raw[2] != SDR_VERSION)
        return trace.Fail(L"Unsupported IPMI Version", FRU_STATUS_SDR_BAD_VERSION);
    header.recordId = static_cast<UINT16>(raw[0] << 8 | raw[1]);
    header.sdrVersion = raw[2];
    header.recordType = raw[3];
    header.recordLength = raw[4];
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS DecodeSDRType11V15(std::span<const UINT8> raw, TYPE11V15& record) {
    const CTrace trace = TraceFruData(L"DecodeSDRType11V15");
    const EFI_STATUS status = DecodeCommon(trace, raw, record);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    record.deviceAccessAddress = raw[5] & 0xFE;
    record.logicalDevice = raw[7] & 0x80;
    record.fruDeviceId = record.logicalDevice ? raw[6] : static_cast<UINT8>(raw[6] & 0xFE);
    record.accessLun = static_cast<UINT8>((raw[7] & 0x18) >> 3);
    record.privateBusId = raw[7] & 0x07;
    record.accessLunBusId = raw[7];
    record.channelNumber = raw[8];
    record.reserved = raw[9];
    record.deviceType = raw[10];
    record.deviceTypeModifier = raw[11];
    record.fruEntityId = raw[12];
    record.fruEntityInstance = raw[13];
    record.oem = raw[14];
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS DecodeSDRType12V15(std::span<const UINT8> raw, TYPE12V15& record) {
    const CTrace trace = TraceFruData(L"DecodeSDRType12V15");
    const EFI_STATUS status = DecodeCommon(trace, raw, record);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    record.deviceSlaveAddress = raw[5] & 0xFE;
    record.channelNumber = raw[6];
    record.acpiSystemPowerNotify = raw[7] & 0x80;
    record.acpiDevicePowerNotify = raw[7] & 0x40;
    record.reservedPowerBit = raw[7] & 0x08;
    record.logInitAgentErrors = raw[7] & 0x04;
    record.initAgentMode = raw[7] & 0x03;
    record.powerStateInit = raw[7];
    record.chassisDevice = raw[8] & 0x80;
    record.bridge = raw[8] & 0x40;
    record.eventGenerator = raw[8] & 0x20;
    record.eventReceiver = raw[8] & 0x10;
    record.fruInventoryDevice = raw[8] & 0x08;
    record.selDevice = raw[8] & 0x04;
    record.sdrRepositoryDevice = raw[8] & 0x02;
    record.sensorDevice = raw[8] & 0x01;
    record.deviceCapabilities = raw[8];
    std::copy_n(raw.begin() + 9, sizeof record.reserved, record.reserved);
    record.entityId = raw[12];
    record.entityInstance = raw[13];
    record.oem = raw[14];
    return trace.Exit(FRU_STATUS_SUCCESS);
}

} // namespace Frudata_Private
