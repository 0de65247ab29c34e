// Filling a FRU image from a device.
#include "common/assertion.h"
#include "common/lasterror.h"
#include "frudata/system/frudevice.h"

#include <optional>

namespace Frudata_Private {

namespace {

/// Room for each kind of area, in bytes. A larger area is refused.
constexpr UINT16 PRODUCT_BUFFER = 512;
constexpr UINT16 AREA_BUFFER = 912;
constexpr UINT16 MULTIRECORD_BUFFER = 915;
/// Offsets on a device have 16 bits.
constexpr UINTN LAST_OFFSET = 0xFFFF;

void AssertLocator(const FRU_LOCATOR* locator) {
    Assert(locator != nullptr, FRU_SOURCE, "locator");
}

EFI_STATUS ReadFRUHeader(const FRU_LOCATOR* locator, UINT8* data) {
    const CTrace trace = CFru::TraceOf(L"ReadFRUHeader");
    AssertLocator(locator);
    Assert(data != nullptr, FRU_SOURCE, "data");
    const EFI_STATUS status = ReadDataFromFRU(locator, 0, CFruHeader::FRU_HEADER_LENGTH, data);
    if (status == FRU_STATUS_SUCCESS)
        return trace.Exit(status);
    trace.Fail(L"Invalid Header Area");
    RecordFruError(STRING_INVALID_HEADER, locator);
    return status;
}

EFI_STATUS GetCommonHeader(CFru& fru, const FRU_LOCATOR* locator) {
    const CTrace trace = CFru::TraceOf(L"GetCommonHeader");
    UINT8 header[CFruHeader::FRU_HEADER_LENGTH] = {};
    const EFI_STATUS status = ReadFRUHeader(locator, header);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    if ((header[FRU_HEADER_FORMAT_VERSION] & FRU_HEADER_VERSION_MASK) != FRU_HEADER_VERSION) {
        trace.Fail(L"Not IPMI FRU");
        RecordLastError(STRING_NOT_IPMI_FRU);
        return FRU_STATUS_NOT_IPMI_FRU;
    }
    fru.Header().SetData(header);
    if (!fru.Header().IsValid()) {
        trace.Fail(L"Invalid Header Area");
        RecordFruError(STRING_INVALID_HEADER, locator);
        return FRU_STATUS_CHECKSUM_ERROR;
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

/// Reads the area at `offset` (8-byte units). A `length` above `capacity` was not read.
EFI_STATUS GetTypeLengthArea(const FRU_LOCATOR* locator, UINT8* buffer, UINT16 capacity, UINT16 offset,
                             UINT16& length) {
    const CTrace trace = CFru::TraceOf(L"GetTypeLengthArea");
    AssertLocator(locator);
    const auto start = static_cast<UINT16>(offset * 8);
    UINT8 areaStart[2] = {};
    EFI_STATUS status = ReadDataFromFRU(locator, start, sizeof areaStart, areaStart);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    length = static_cast<UINT16>(areaStart[1] * 8);
    // The caller refuses a length that its buffer cannot hold.
    if (length > capacity)
        return trace.Exit(FRU_STATUS_SUCCESS);
    status = ReadDataFromFRU(locator, start, length, buffer);
    return trace.End(status);
}

/// An info area on the device, and the messages of its failures.
struct DEVICE_AREA {
    const WCHAR* operation = nullptr;
    FRU_HEADER_BYTE place = FRU_HEADER_BOARD;
    FRU_AREA area = FRU_AREA_NONE;
    UINT16 room = 0; ///< in bytes; a larger area is refused
    const WCHAR* failure = nullptr;
    EFI_STATUS refused = FRU_STATUS_SUCCESS;
    /// None: no failure leaves a message, and a failed read keeps its status.
    std::optional<STRING_ID> message;
};

/// Reads and parses one info area. @return 0, its own status, or for the product area a read status
EFI_STATUS ReadInfoArea(CFru& fru, const FRU_LOCATOR* locator, const DEVICE_AREA& row) {
    const CTrace trace = CFru::TraceOf(row.operation);
    UINT8 buffer[AREA_BUFFER];
    UINT16 length = 0;
    const EFI_STATUS status = GetTypeLengthArea(locator, buffer, row.room, fru.Header()[row.place], length);
    if (status != FRU_STATUS_SUCCESS && !row.message)
        return status;
    if (status == FRU_STATUS_SUCCESS && length <= row.room && fru.GetInfoArea(row.area)->SetData(buffer, length))
        return trace.Exit(FRU_STATUS_SUCCESS);
    trace.Fail(row.failure);
    if (row.message)
        RecordFruError(*row.message, locator);
    return row.refused;
}

EFI_STATUS GetBoardArea(CFru& fru, const FRU_LOCATOR* locator) {
    return ReadInfoArea(fru, locator,
                        {L"GetBoardArea", FRU_HEADER_BOARD, FRU_AREA_BOARD, AREA_BUFFER, L"Invalid Board Area",
                         FRU_STATUS_INVALID_BOARD_AREA, STRING_INVALID_BOARD_AREA});
}

EFI_STATUS GetChassisArea(CFru& fru, const FRU_LOCATOR* locator) {
    return ReadInfoArea(fru, locator,
                        {L"GetChassisArea", FRU_HEADER_CHASSIS, FRU_AREA_CHASSIS, AREA_BUFFER, L"Invalid Chassis Area",
                         FRU_STATUS_INVALID_CHASSIS_AREA, STRING_INVALID_CHASSIS_AREA});
}

// Compatibility: only this area leaves no message.
EFI_STATUS GetProductArea(CFru& fru, const FRU_LOCATOR* locator) {
    return ReadInfoArea(fru, locator,
                        {L"GetProductArea", FRU_HEADER_PRODUCT, FRU_AREA_PRODUCT, PRODUCT_BUFFER,
                         L"Invalid Product Area", FRU_STATUS_INVALID_PRODUCT_AREA, std::nullopt});
}

EFI_STATUS GetFRUInternalData(const FRU_LOCATOR* locator, UINT8* buffer, UINT8 offset, UINT16 length) {
    const CTrace trace = CFru::TraceOf(L"GetFRUInternalData");
    AssertLocator(locator);
    const EFI_STATUS status = ReadDataFromFRU(locator, static_cast<UINT16>(offset * 8), length, buffer);
    return trace.End(status);
}

EFI_STATUS GetInternalArea(CFru& fru, const FRU_LOCATOR* locator) {
    const CTrace trace = CFru::TraceOf(L"GetInternalArea");
    AssertLocator(locator);
    // The area has no length of its own and ends where the next one starts.
    // Compatibility: the next one in the header's order, not on the device.
    const CFruHeader& header = fru.Header();
    UINTN next = FRU_HEADER_CHASSIS;
    while (next <= FRU_HEADER_MULTIRECORD && header[next] == 0)
        ++next;
    Assert(next <= FRU_HEADER_MULTIRECORD, FRU_SOURCE, "0");
    const UINT8 offset = header[FRU_HEADER_INTERNAL_USE];
    const int length = (header[next] - offset) * 8;
    UINT8 buffer[AREA_BUFFER];
    if (length >= 0 && length <= static_cast<int>(CInternalUseArea::SIZE) &&
        GetFRUInternalData(locator, buffer, offset, static_cast<UINT16>(length)) == FRU_STATUS_SUCCESS &&
        fru.GetInternalUseArea().SetData(buffer, static_cast<UINTN>(length), false))
        return trace.Exit(FRU_STATUS_SUCCESS);
    trace.Fail(L"Invalid Internal Area");
    RecordFruError(STRING_INVALID_INTERNAL_AREA, locator);
    return FRU_STATUS_INVALID_INTERNAL_AREA;
}

EFI_STATUS GetMultiRecLength(const FRU_LOCATOR* locator, UINT16 offset, UINT8& length) {
    const CTrace trace = CFru::TraceOf(L"GetMultiRecLength");
    AssertLocator(locator);
    UINT8 recordStart[3] = {};
    const EFI_STATUS status = ReadDataFromFRU(locator, offset, sizeof recordStart, recordStart);
    length = recordStart[2];
    return trace.End(status);
}

EFI_STATUS ReadMultiRecord(const FRU_LOCATOR* locator, UINT16 offset, UINT16 count, UINT8* buffer) {
    const CTrace trace = CFru::TraceOf(L"ReadMultiRecord");
    AssertLocator(locator);
    const EFI_STATUS status = ReadDataFromFRU(locator, offset, count, buffer);
    return trace.End(status);
}

EFI_STATUS ReadMultiRecords(CFru& fru, const FRU_LOCATOR* locator) {
    MULTIRECORD_AREA& area = fru.MultiRecords();
    area.first.reset();
    CMultiRecordAppender records(area.first);
    const UINTN start = fru.Header().Offset(FRU_HEADER_MULTIRECORD);
    UINTN offset = start;
    bool isLast = false;
    while (!isLast) {
        UINT8 length = 0;
        UINT8 buffer[MULTIRECORD_BUFFER];
        if (offset > LAST_OFFSET || GetMultiRecLength(locator, static_cast<UINT16>(offset), length) != 0)
            return FRU_STATUS_INVALID_MULTIREC_AREA;
        // Compatibility: a record without data ends the walk, whatever its end-of-list bit says, and is not kept.
        if (length == 0)
            break;
        const auto count = static_cast<UINT16>(length + MULTIRECORD_HEADER_LENGTH);
        if (ReadMultiRecord(locator, static_cast<UINT16>(offset), count, buffer) != FRU_STATUS_SUCCESS)
            return FRU_STATUS_INVALID_MULTIREC_AREA;
        FRUMultiRecord* record = records.Append();
        if (!record)
            return FRU_STATUS_OUT_OF_MEMORY;
        record->Decode({buffer, count});
        offset += count;
        isLast = (record->format & MULTIRECORD_END_OF_LIST) != 0;
    }
    area.length = static_cast<UINT16>(offset - start);
    return fru.CheckMultiRecCheckSum() ? FRU_STATUS_SUCCESS : FRU_STATUS_INVALID_MULTIREC_AREA;
}

EFI_STATUS GetMultiRecArea(CFru& fru, const FRU_LOCATOR* locator) {
    const CTrace trace = CFru::TraceOf(L"GetMultiRecArea");
    const EFI_STATUS status = ReadMultiRecords(fru, locator);
    if (status == FRU_STATUS_OUT_OF_MEMORY) {
        trace.Fail(L"FRU Error Allocation");
        RecordLastError(STRING_OUT_OF_MEMORY);
        return status;
    }
    if (status != FRU_STATUS_SUCCESS) {
        trace.Fail(L"Invalid MultiRec Area");
        RecordFruError(STRING_INVALID_MULTIREC_AREA, locator);
        return status;
    }
    return trace.Exit(status);
}

EFI_STATUS ReadFruFromSystem(CFru& fru, const FRU_LOCATOR* locator) {
    static constexpr struct {
        FRU_HEADER_BYTE area;
        EFI_STATUS (*read)(CFru& fru, const FRU_LOCATOR* locator);
    } AREAS[] = {
        {FRU_HEADER_BOARD, GetBoardArea},          {FRU_HEADER_PRODUCT, GetProductArea},
        {FRU_HEADER_CHASSIS, GetChassisArea},      {FRU_HEADER_INTERNAL_USE, GetInternalArea},
        {FRU_HEADER_MULTIRECORD, GetMultiRecArea},
    };
    const CTrace trace = CFru::TraceOf(L"ReadFruFromSystem");
    AssertLocator(locator);
    EFI_STATUS status = GetCommonHeader(fru, locator);
    for (const auto& row : AREAS) {
        if (status != FRU_STATUS_SUCCESS)
            return status;
        if (fru.Header().Has(row.area))
            status = row.read(fru, locator);
    }
    return trace.End(status);
}

} // namespace

EFI_STATUS LoadFromSystem(CFru& fru, const FRU_LOCATOR* locator) {
    const CTrace trace = CFru::TraceOf(L"LoadFromSystem");
    AssertLocator(locator);
    FRU_LOCATOR& own = fru.Locator();
    own.deviceAddress = locator->deviceAddress;
    own.bus = locator->bus;
    own.deviceId = locator->deviceId;
    own.controller = locator->controller;
    own.lun = locator->lun;
    own.type = locator->type;
    own.mbmcSizeAddress = locator->mbmcSizeAddress;
    own.mbmcSizeData = locator->mbmcSizeData;
    own.SetName(locator->name);
    const EFI_STATUS status = ReadFruFromSystem(fru, locator);
    return trace.End(status);
}

} // namespace Frudata_Private
