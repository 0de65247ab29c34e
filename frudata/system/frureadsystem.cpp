// Filling a FRU image from a device.
#include "common/assertion.h"
#include "common/lasterror.h"
#include "frudata/image/fru.h"

namespace Frudata_Private {

namespace {

constexpr char SOURCE_FILE[] = "fru.cpp";

/// Room for each kind of area, in bytes. What does not fit is refused.
constexpr UINT16 PRODUCT_BUFFER = 512;
constexpr UINT16 AREA_BUFFER = 912;
constexpr UINT16 MULTIRECORD_BUFFER = 915;
/// Offsets on a device have 16 bits.
constexpr UINTN LAST_OFFSET = 0xFFFF;

CTrace Trace(const WCHAR* operation) {
    return {L"CFru", operation};
}

/// Records a message about the FRU at `locator`.
void RecordFruError(STRING_ID message, const FRU_LOCATOR* locator) {
    WCHAR identifier[FRU_IDENTIFIER_BYTES / sizeof(WCHAR)];
    RecordLastError(message, CFru::GetFriendlyFruIdentifier(locator, identifier, FRU_IDENTIFIER_BYTES));
}

void AssertLocator(const FRU_LOCATOR* locator) {
    Assert(locator != nullptr, SOURCE_FILE, "locator");
}

} // namespace

EFI_STATUS CFru::LoadFromSystem(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"LoadFromSystem");
    AssertLocator(locator);
    m_locator.deviceAddress = locator->deviceAddress;
    m_locator.bus = locator->bus;
    m_locator.deviceId = locator->deviceId;
    m_locator.controller = locator->controller;
    m_locator.lun = locator->lun;
    m_locator.type = locator->type;
    m_locator.mbmcSizeAddress = locator->mbmcSizeAddress;
    m_locator.mbmcSizeData = locator->mbmcSizeData;
    m_locator.SetName(locator->name);
    const EFI_STATUS status = ReadFruFromSystem(locator);
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::ReadFruFromSystem(const FRU_LOCATOR* locator) {
    static constexpr struct {
        FRU_HEADER_BYTE area;
        EFI_STATUS (CFru::*read)(const FRU_LOCATOR* locator);
    } AREAS[] = {
        {FRU_HEADER_BOARD, &CFru::GetBoardArea},          {FRU_HEADER_PRODUCT, &CFru::GetProductArea},
        {FRU_HEADER_CHASSIS, &CFru::GetChassisArea},      {FRU_HEADER_INTERNAL_USE, &CFru::GetInternalArea},
        {FRU_HEADER_MULTIRECORD, &CFru::GetMultiRecArea},
    };
    const CTrace trace = Trace(L"ReadFruFromSystem");
    AssertLocator(locator);
    EFI_STATUS status = GetCommonHeader(locator);
    for (const auto& row : AREAS) {
        if (status != FRU_STATUS_SUCCESS)
            return status;
        if (m_header.Has(row.area))
            status = (this->*row.read)(locator);
    }
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::ReadFRUHeader(const FRU_LOCATOR* locator, UINT8* data) {
    const CTrace trace = Trace(L"ReadFRUHeader");
    AssertLocator(locator);
    Assert(data != nullptr, SOURCE_FILE, "data");
    const EFI_STATUS status = ReadDataFromFRU(locator, 0, CFruHeader::FRU_HEADER_LENGTH, data);
    if (status == FRU_STATUS_SUCCESS)
        return trace.Exit(status);
    RecordFruError(STRING_INVALID_HEADER, locator);
    return trace.Fail(L"Invalid Header Area", status);
}

EFI_STATUS CFru::GetCommonHeader(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"GetCommonHeader");
    UINT8 header[CFruHeader::FRU_HEADER_LENGTH] = {};
    const EFI_STATUS status = ReadFRUHeader(locator, header);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    if ((header[FRU_HEADER_FORMAT_VERSION] & FRU_HEADER_VERSION_MASK) != FRU_HEADER_VERSION) {
        RecordLastError(STRING_NOT_IPMI_FRU);
        return trace.Fail(L"Not IPMI FRU", FRU_STATUS_NOT_IPMI_FRU);
    }
    m_header.SetData(header);
    if (!m_header.IsValid()) {
        RecordFruError(STRING_INVALID_HEADER, locator);
        return trace.Fail(L"Invalid Header Area", FRU_STATUS_CHECKSUM_ERROR);
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS CFru::GetTypeLengthArea(const FRU_LOCATOR* locator, UINT8* buffer, UINT16 capacity, UINT16 offset,
                                   UINT16& length) {
    const CTrace trace = Trace(L"GetTypeLengthArea");
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
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::ReadInfoArea(const FRU_LOCATOR* locator, FRU_HEADER_BYTE place, UINT16 capacity, CInfoArea& area,
                              EFI_STATUS refused) {
    UINT8 buffer[AREA_BUFFER];
    UINT16 length = 0;
    const EFI_STATUS status = GetTypeLengthArea(locator, buffer, capacity, m_header[place], length);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    return length <= capacity && area.SetData(buffer, length) ? FRU_STATUS_SUCCESS : refused;
}

EFI_STATUS CFru::GetBoardArea(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"GetBoardArea");
    constexpr EFI_STATUS refused = FRU_STATUS_INVALID_BOARD_AREA;
    if (ReadInfoArea(locator, FRU_HEADER_BOARD, AREA_BUFFER, m_board, refused) == FRU_STATUS_SUCCESS)
        return trace.Exit(FRU_STATUS_SUCCESS);
    RecordFruError(STRING_INVALID_BOARD_AREA, locator);
    return trace.Fail(L"Invalid Board Area", refused);
}

EFI_STATUS CFru::GetChassisArea(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"GetChassisArea");
    constexpr EFI_STATUS refused = FRU_STATUS_INVALID_CHASSIS_AREA;
    if (ReadInfoArea(locator, FRU_HEADER_CHASSIS, AREA_BUFFER, m_chassis, refused) == FRU_STATUS_SUCCESS)
        return trace.Exit(FRU_STATUS_SUCCESS);
    RecordFruError(STRING_INVALID_CHASSIS_AREA, locator);
    return trace.Fail(L"Invalid Chassis Area", refused);
}

EFI_STATUS CFru::GetProductArea(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"GetProductArea");
    constexpr EFI_STATUS refused = FRU_STATUS_INVALID_PRODUCT_AREA;
    const EFI_STATUS status = ReadInfoArea(locator, FRU_HEADER_PRODUCT, PRODUCT_BUFFER, m_product, refused);
    // Unlike the other areas', a failed read is passed on as it is, and no failure leaves a message.
    if (status == refused)
        return trace.Fail(L"Invalid Product Area", refused);
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::GetFRUInternalData(const FRU_LOCATOR* locator, UINT8* buffer, UINT8 offset, UINT16 length) {
    const CTrace trace = Trace(L"GetFRUInternalData");
    AssertLocator(locator);
    const EFI_STATUS status = ReadDataFromFRU(locator, static_cast<UINT16>(offset * 8), length, buffer);
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::GetInternalArea(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"GetInternalArea");
    AssertLocator(locator);
    // The area has no length of its own: it ends where the first area after it in the header starts.
    UINTN next = FRU_HEADER_CHASSIS;
    while (next <= FRU_HEADER_MULTIRECORD && m_header[next] == 0)
        ++next;
    Assert(next <= FRU_HEADER_MULTIRECORD, SOURCE_FILE, "0");
    const UINT8 offset = m_header[FRU_HEADER_INTERNAL_USE];
    const int length = (m_header[next] - offset) * 8;
    UINT8 buffer[AREA_BUFFER];
    if (length >= 0 && length <= static_cast<int>(CInternalUseArea::SIZE) &&
        GetFRUInternalData(locator, buffer, offset, static_cast<UINT16>(length)) == FRU_STATUS_SUCCESS &&
        m_internalUse.SetData(buffer, static_cast<UINTN>(length), false))
        return trace.Exit(FRU_STATUS_SUCCESS);
    RecordFruError(STRING_INVALID_INTERNAL_AREA, locator);
    return trace.Fail(L"Invalid Internal Area", FRU_STATUS_INVALID_INTERNAL_AREA);
}

EFI_STATUS CFru::GetMultiRecLength(const FRU_LOCATOR* locator, UINT16 offset, UINT8& length) {
    const CTrace trace = Trace(L"GetMultiRecLength");
    AssertLocator(locator);
    UINT8 recordStart[3] = {};
    const EFI_STATUS status = ReadDataFromFRU(locator, offset, sizeof recordStart, recordStart);
    length = recordStart[2];
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::ReadMultiRecord(const FRU_LOCATOR* locator, UINT16 offset, UINT16 count, UINT8* buffer) {
    const CTrace trace = Trace(L"ReadMultiRecord");
    AssertLocator(locator);
    const EFI_STATUS status = ReadDataFromFRU(locator, offset, count, buffer);
    return status == FRU_STATUS_SUCCESS ? trace.Exit(status) : status;
}

EFI_STATUS CFru::ReadMultiRecords(const FRU_LOCATOR* locator) {
    m_multiRecords.reset();
    CMultiRecordAppender records(m_multiRecords);
    const UINTN start = m_header.Offset(FRU_HEADER_MULTIRECORD);
    UINTN offset = start;
    bool isLast = false;
    while (!isLast) {
        UINT8 length = 0;
        UINT8 buffer[MULTIRECORD_BUFFER];
        if (offset > LAST_OFFSET || GetMultiRecLength(locator, static_cast<UINT16>(offset), length) != 0)
            return FRU_STATUS_INVALID_MULTIREC_AREA;
        // A record without data ends the walk, whatever its end-of-list bit says, and is not kept.
        if (length == 0)
            break;
        const auto count = static_cast<UINT16>(length + MULTIRECORD_HEADER_LENGTH);
        if (ReadMultiRecord(locator, static_cast<UINT16>(offset), count, buffer) != FRU_STATUS_SUCCESS)
            return FRU_STATUS_INVALID_MULTIREC_AREA;
        FRUMultiRecord* record = records.Append();
        if (!record)
            return FRU_STATUS_OUT_OF_MEMORY;
        record->Decode(buffer, count);
        offset += count;
        isLast = (record->format & MULTIRECORD_END_OF_LIST) != 0;
    }
    m_multiRecLength = static_cast<UINT16>(offset - start);
    return CheckMultiRecCheckSum() ? FRU_STATUS_SUCCESS : FRU_STATUS_INVALID_MULTIREC_AREA;
}

EFI_STATUS CFru::GetMultiRecArea(const FRU_LOCATOR* locator) {
    const CTrace trace = Trace(L"GetMultiRecArea");
    const EFI_STATUS status = ReadMultiRecords(locator);
    if (status == FRU_STATUS_OUT_OF_MEMORY) {
        RecordLastError(STRING_OUT_OF_MEMORY);
        return trace.Fail(L"FRU Error Allocation", status);
    }
    if (status != FRU_STATUS_SUCCESS) {
        RecordFruError(STRING_INVALID_MULTIREC_AREA, locator);
        return trace.Fail(L"Invalid MultiRec Area", status);
    }
    return trace.Exit(status);
}

} // namespace Frudata_Private
