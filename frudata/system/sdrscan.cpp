// The SDR repository scan (IPMI 2.0, section 33): counts the records, decodes the locators among them, and
// appends them to the host's list.
#include "frudata/sdrscan.h"

#include "common/allocate.h"
#include "common/trace.h"
#include "frudata/system/messages.h"
#include "frudata/system/sdrrecords.h"

#include <algorithm>
#include <bitset>
#include <new>

namespace Frudata_Private {

namespace {

constexpr UINT32 FIRST_RECORD = 0x0000;
constexpr UINT32 LAST_RECORD = 0xFFFF;
/// Bytes of a record asked for at once.
constexpr UINTN PIECE_SIZE = 16;
/// An answer to Get SDR starts with the next record's id.
constexpr UINTN NEXT_ID_LENGTH = 2;

/// Device types of a FRU Device Locator with an access path of their own (IPMI 2.0, table 43-12).
constexpr UINT8 DEVICE_TYPE_DS1624 = 0x02;
constexpr UINT8 DEVICE_TYPE_FRU_COMMANDS = 0x10;

SDR_TYPE gSDR_Types;

/// Sends ReqMsg. @return whether an answer came with completion code 0
bool Exchange() {
    return SendRequest() == 0 && RespMsg->completionCode == COMPLETION_SUCCESS;
}

bool Reserve() {
    BuildRequest(BMC_ADDRESS, NETFN_STORAGE, 0, COMMAND_RESERVE_SDR_REPOSITORY, {});
    return Exchange();
}

/// Asks for `count` bytes of a record. `reservation` may lie in RespMsg.
bool GetSdr(const UINT8* reservation, UINT32 id, UINTN offset, UINTN count) {
    BuildRequest(BMC_ADDRESS, NETFN_STORAGE, 0, COMMAND_GET_SDR,
                 {reservation[0], reservation[1], static_cast<UINT8>(id), static_cast<UINT8>(id >> 8),
                  static_cast<UINT8>(offset), static_cast<UINT8>(count)});
    return Exchange();
}

UINT32 NextRecordId() {
    return RespMsg->data[0] | static_cast<UINT32>(RespMsg->data[1]) << 8;
}

/// Record ids that a pass has read: a chain that returns to one ends the pass.
class CAskedRecords {
  public:
    /// @return whether `id` is a record's and was not asked for before; writes the line of a chain that returns
    bool IsNext(const CTrace& trace, UINT32 id) {
        if (id == LAST_RECORD)
            return false;
        if (m_asked[id]) {
            trace.Fail(L"Repeated SDR");
            return false;
        }
        m_asked[id] = true;
        return true;
    }

  private:
    std::bitset<LAST_RECORD> m_asked;
};

template <typename RECORD> bool AllocateRecords(std::unique_ptr<RECORD[]>& records, UINT32 count, UINT32& capacity) {
    if (count > 0)
        records = AllocateArray<RECORD>(count);
    capacity = records ? count : 0;
    return capacity == count;
}

UINT32 InitSDRStruct(SDR_TYPE& sdr) {
    static constexpr UINT8 SUPPORTED[SDR_SUPPORTED_TYPES] = {
        0x01, 0x02, 0x08, 0x09, 0x10, SDR_TYPE_FRU_LOCATOR, SDR_TYPE_MC_LOCATOR, 0x13, 0x14, 0xC0};
    static_assert(SUPPORTED[SDR_INDEX_FRU_LOCATOR] == SDR_TYPE_FRU_LOCATOR);
    static_assert(SUPPORTED[SDR_INDEX_MC_LOCATOR] == SDR_TYPE_MC_LOCATOR);
    const CTrace trace = TraceFruData(L"InitSDRStruct");
    sdr = {};
    std::copy(std::begin(SUPPORTED), std::end(SUPPORTED), sdr.supportedTypes);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS CountIPMI15SDRTypes(UINT32* counters, const UINT8* supportedTypes, UINT32& recordCount) {
    const CTrace trace = TraceFruData(L"CountIPMI15SDRTypes");
    std::fill_n(counters, SDR_SUPPORTED_TYPES, 0U);
    recordCount = 0;
    CAskedRecords asked;
    for (UINT32 id = FIRST_RECORD; asked.IsNext(trace, id); id = NextRecordId()) {
        if (!Reserve())
            return trace.Fail(L"Error Reserving SDR", FRU_STATUS_SDR_RESERVE_ERROR);
        if (!GetSdr(RespMsg->data, id, 0, SDR_HEADER_LENGTH))
            return trace.Fail(L"Error Reading SDR", FRU_STATUS_SDR_READ_ERROR);
        const UINT8 type = RespMsg->data[NEXT_ID_LENGTH + 3];
        const UINT8* end = supportedTypes + SDR_SUPPORTED_TYPES;
        const UINT8* found = std::find(supportedTypes, end, type);
        if (found == end)
            return trace.Fail(L"Unsupported SDR", FRU_STATUS_SDR_UNSUPPORTED);
        ++counters[found - supportedTypes];
        ++recordCount;
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS SDR_MEM_Alloc(SDR_TYPE& sdr, const UINT32* counters) {
    const CTrace trace = TraceFruData(L"SDR_MEM_Alloc");
    if (!AllocateRecords(sdr.fruLocators, counters[SDR_INDEX_FRU_LOCATOR], sdr.fruCapacity) ||
        !AllocateRecords(sdr.mcLocators, counters[SDR_INDEX_MC_LOCATOR], sdr.mcCapacity))
        return FRU_STATUS_MEMORY_ALLOCATION_ERROR;
    return trace.Exit(FRU_STATUS_SUCCESS);
}

/// Reads the record `id`, and sets `id` to the next record's. `room` shrinks to the part that the record fills.
EFI_STATUS ReadRecFromBMC(std::span<UINT8>& room, UINT32& id) {
    const CTrace trace = TraceFruData(L"ReadRecFromBMC");
    if (!Reserve())
        return trace.Fail(L"Error Reserving SDR", FRU_STATUS_SDR_RESERVE_ERROR);
    if (RespMsg->dataLength != 2)
        return trace.Fail(L"Bad SDR Reserve Length", FRU_STATUS_SDR_BAD_RESERVE_LENGTH);
    const UINT8 reservation[2] = {RespMsg->data[0], RespMsg->data[1]};
    const UINT32 record = id;
    if (!GetSdr(reservation, record, 0, SDR_HEADER_LENGTH))
        return trace.Fail(L"Error Reading SDR", FRU_STATUS_SDR_READ_ERROR);
    id = NextRecordId();
    const UINTN size = RespMsg->data[NEXT_ID_LENGTH + 4] + SDR_HEADER_LENGTH;
    if (size > room.size())
        return trace.Fail(L"Error Reading SDR", FRU_STATUS_SDR_READ_ERROR);
    room = room.first(size);
    std::copy_n(RespMsg->data + NEXT_ID_LENGTH, SDR_HEADER_LENGTH, room.begin());
    for (UINTN offset = SDR_HEADER_LENGTH; offset < size;) {
        const UINTN count = std::min(PIECE_SIZE, size - offset);
        if (!GetSdr(reservation, record, offset, count))
            return trace.Fail(L"Error Reading SDR", FRU_STATUS_SDR_READ_ERROR);
        if (RespMsg->dataLength <= NEXT_ID_LENGTH)
            return trace.Fail(L"Error Reading SDR", FRU_STATUS_SDR_READ_ERROR);
        const UINTN arrived = std::min<UINTN>(count, RespMsg->dataLength - NEXT_ID_LENGTH);
        std::copy_n(RespMsg->data + NEXT_ID_LENGTH, arrived, room.subspan(offset, arrived).begin());
        offset += arrived;
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

/// Decodes into the next free record of an array; only a decoded record counts.
template <typename RECORD> EFI_STATUS DecodeInto(const CTrace& trace, std::unique_ptr<RECORD[]>& records,
                                                 UINT32 capacity, UINT32& count, std::span<const UINT8> raw,
                                                 EFI_STATUS (*decode)(std::span<const UINT8> raw, RECORD& record)) {
    // The repository has grown since the count.
    if (count >= capacity)
        return trace.Fail(L"More SDRs than counted", FRU_STATUS_SDR_READ_ERROR);
    const EFI_STATUS status = decode(raw, records[count]);
    if (status == FRU_STATUS_SUCCESS)
        ++count;
    return status;
}

EFI_STATUS DecodeSDR(std::span<const UINT8> raw, SDR_TYPE& sdr) {
    const CTrace trace = TraceFruData(L"DecodeSDR");
    EFI_STATUS status = FRU_STATUS_SUCCESS;
    const UINT8 type = raw[3];
    if (type == SDR_TYPE_FRU_LOCATOR)
        status = DecodeInto(trace, sdr.fruLocators, sdr.fruCapacity, sdr.typeCount[SDR_INDEX_FRU_LOCATOR], raw,
                            DecodeSDRType11V15);
    else if (type == SDR_TYPE_MC_LOCATOR)
        status = DecodeInto(trace, sdr.mcLocators, sdr.mcCapacity, sdr.typeCount[SDR_INDEX_MC_LOCATOR], raw,
                            DecodeSDRType12V15);
    else if (std::find(std::begin(sdr.supportedTypes), std::end(sdr.supportedTypes), type) ==
             std::end(sdr.supportedTypes))
        return trace.Fail(L"Unsupported SDR", FRU_STATUS_SDR_UNSUPPORTED);
    return trace.End(status);
}

EFI_STATUS GetAllSDRRecs(SDR_TYPE& sdr) {
    const CTrace trace = TraceFruData(L"GetAllSDRRecs");
    UINT32 counters[SDR_SUPPORTED_TYPES];
    if (CountIPMI15SDRTypes(counters, sdr.supportedTypes, sdr.recordCount) != FRU_STATUS_SUCCESS)
        return trace.Fail(L"Error Reading SDR", FRU_STATUS_SDR_READ_ERROR);
    if (SDR_MEM_Alloc(sdr, counters) != FRU_STATUS_SUCCESS)
        return trace.Fail(L"Error Allocating Memory", FRU_STATUS_MEMORY_ALLOCATION_ERROR);
    EFI_STATUS status = FRU_STATUS_SUCCESS;
    CAskedRecords asked;
    UINT32 id = FIRST_RECORD;
    while (status == FRU_STATUS_SUCCESS && asked.IsNext(trace, id)) {
        UINT8 buffer[SDR_RECORD_SIZE];
        std::span<UINT8> record(buffer);
        status = ReadRecFromBMC(record, id);
        if (status == FRU_STATUS_SUCCESS)
            status = DecodeSDR(record, sdr);
        if (status == FRU_STATUS_SUCCESS)
            sdr.totalBytes = static_cast<UINT16>(sdr.totalBytes + record[4] + SDR_HEADER_LENGTH);
    }
    return trace.End(status);
}

FRU_TYPE AccessType(UINT8 deviceType) {
    if (deviceType == DEVICE_TYPE_DS1624)
        return FRU_TYPE_DS1624S;
    return deviceType == DEVICE_TYPE_FRU_COMMANDS ? FRU_TYPE_IMBDEVICE : FRU_TYPE_AT24CO2;
}

void FillLocator(const TYPE11V15& record, FRU_LOCATOR& locator) {
    locator.bus = record.privateBusId;
    locator.controller = record.deviceAccessAddress;
    locator.deviceId = record.fruDeviceId;
    locator.lun = record.accessLun;
    locator.type = AccessType(record.deviceType);
    locator.deviceAddress = record.logicalDevice ? record.deviceAccessAddress : record.fruDeviceId;
    if (!record.logicalDevice && locator.deviceAddress == BMC_ADDRESS)
        locator.bus = NO_BUS;
    locator.SetName(record.idString);
}

void FillLocator(const TYPE12V15& record, FRU_LOCATOR& locator) {
    locator.deviceAddress = record.deviceSlaveAddress;
    locator.bus = record.deviceSlaveAddress == BMC_ADDRESS ? NO_BUS : UINT8{0};
    locator.SetName(record.idString);
}

template <typename RECORD> void AppendLocators(const RECORD* records, UINT32 count, OrderedList<FRU_LOCATOR*>& list) {
    for (UINT32 index = 0; index < count; ++index) {
        std::unique_ptr<FRU_LOCATOR> locator(new (std::nothrow) FRU_LOCATOR);
        if (!locator)
            return;
        FillLocator(records[index], *locator);
        if (list.Add(locator.get()))
            static_cast<void>(locator.release());
    }
}

EFI_STATUS CreateLocatorList(const SDR_TYPE& sdr, OrderedList<FRU_LOCATOR*>& list) {
    const CTrace trace = TraceFruData(L"CreateLocatorList");
    AppendLocators(sdr.fruLocators.get(), sdr.typeCount[SDR_INDEX_FRU_LOCATOR], list);
    AppendLocators(sdr.mcLocators.get(), sdr.typeCount[SDR_INDEX_MC_LOCATOR], list);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

} // namespace

} // namespace Frudata_Private

EFI_STATUS ScanSystemForFruLocators(OrderedList<FRU_LOCATOR*>*& list) {
    using namespace Frudata_Private;
    const CTrace trace = TraceFruData(L"ScanSystemForFruLocators");
    if (!list || !ReqMsg || !RespMsg)
        return FRU_STATUS_SUCCESS;
    InitSDRStruct(gSDR_Types);
    // Records decoded before a failure still become locators.
    GetAllSDRRecs(gSDR_Types);
    CreateLocatorList(gSDR_Types, *list);
    return trace.Exit(FRU_STATUS_SUCCESS);
}
