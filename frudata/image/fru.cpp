#include "frudata/image/fru.h"

#include "common/assertion.h"
#include "common/bytesum.h"
#include "common/lasterror.h"
#include "frudata/image/frutextfile.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace Frudata_Private {

namespace {

/// Below this a buffer could not hold a useful identifier.
constexpr int SMALLEST_IDENTIFIER_BYTES = 100;

} // namespace

CInfoArea* CFru::GetInfoArea(FRU_AREA area) {
    switch (area) {
    case FRU_AREA_CHASSIS:
        return &m_chassis;
    case FRU_AREA_BOARD:
        return &m_board;
    case FRU_AREA_PRODUCT:
        return &m_product;
    default:
        return nullptr;
    }
}

CFruArea* CFru::GetFieldArea(FRU_AREA area) {
    if (area == FRU_AREA_INTERNAL_USE)
        return &m_internalUse;
    return GetInfoArea(area);
}

CFruHeader& CFru::GetFRUHeader() {
    TraceOf(L"GetFRUHeader").Exit();
    return m_header;
}

FRU_LOCATOR* CFru::GetDevLocator() {
    return TraceOf(L"GetDevLocator").Exit(&m_locator);
}

EFI_STATUS CFru::GetFruNameString(const WCHAR*& name) const {
    const CTrace trace = TraceOf(L"GetFruNameString");
    name = m_locator.name;
    return trace.Exit(FRU_STATUS_SUCCESS);
}

UINTN CFru::GetInternalAreaLength() const {
    return TraceOf(L"GetInternalAreaLength").Exit(m_internalUse.GetLength());
}

UINT16 CFru::GetMultiRecAreaLength() const {
    return TraceOf(L"GetMultiRecAreaLength").Exit(m_multiRecords.length);
}

EFI_STATUS CFru::CreateFruList() {
    return TraceOf(L"CreateFruList").Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS CFru::LoadFromFile(std::FILE*) {
    TraceOf(L"LoadFromFile");
    FailAssertion(FRU_SOURCE, "0");
}

bool CFru::HasInternalArea() const {
    return TraceOf(L"HasInternalArea").Exit(m_header.Has(FRU_HEADER_INTERNAL_USE));
}

bool CFru::HasChassisArea() const {
    return TraceOf(L"HasChassisArea").Exit(m_header.Has(FRU_HEADER_CHASSIS));
}

bool CFru::HasBoardArea() const {
    return TraceOf(L"HasBoardArea").Exit(m_header.Has(FRU_HEADER_BOARD));
}

bool CFru::HasProductArea() const {
    return TraceOf(L"HasProductArea").Exit(m_header.Has(FRU_HEADER_PRODUCT));
}

bool CFru::HasMultiRecArea() const {
    return TraceOf(L"HasMultiRecArea").Exit(m_header.Has(FRU_HEADER_MULTIRECORD));
}

UINTN CFru::GetNumberOfAreas() const {
    const CTrace trace = TraceOf(L"GetNumberOfAreas");
    UINTN count = 0;
    for (UINTN place = FRU_HEADER_INTERNAL_USE; place <= FRU_HEADER_MULTIRECORD; ++place)
        count += m_header[place] != 0;
    return trace.Exit(count);
}

EFI_STATUS CFru::DecodeHeader(const UINT8* data) {
    const CTrace trace = TraceOf(L"DecodeHeader");
    m_header.SetData(data);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS CFru::SerializeCommonHeader(UINT8* data) {
    const CTrace trace = TraceOf(L"SerializeCommonHeader");
    Assert(data != nullptr, FRU_SOURCE, "data");
    std::memcpy(data, m_header.GetData(), CFruHeader::FRU_HEADER_LENGTH);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

UINT8 CFru::CalculateChecksum(const UINT8* data, int length) {
    return TraceOf(L"CalculateChecksum").Exit(ZeroChecksum(data, length));
}

UINT16 CFru::GetOverallLength() const {
    const CTrace trace = TraceOf(L"GetOverallLength");
    return trace.Exit(static_cast<UINT16>(m_board.GetLength() + m_chassis.GetLength() + m_product.GetLength() +
                                          m_multiRecords.length + m_internalUse.GetLength() + m_header.GetLength()));
}

EFI_STATUS CFru::ComputeAreaLengths(int totalLength) {
    const CTrace trace = TraceOf(L"ComputeAreaLengths");
    // From the back: `end` is the start of the next area.
    int end = totalLength;
    const auto lengthOf = [this, &end](FRU_HEADER_BYTE area) {
        const int length = m_header.Has(area) ? end - static_cast<int>(m_header.Offset(area)) : 0;
        end -= length;
        return static_cast<UINTN>(length);
    };
    m_multiRecords.length = static_cast<UINT16>(lengthOf(FRU_HEADER_MULTIRECORD));
    m_product.SetLength(lengthOf(FRU_HEADER_PRODUCT));
    m_board.SetLength(lengthOf(FRU_HEADER_BOARD));
    m_chassis.SetLength(lengthOf(FRU_HEADER_CHASSIS));
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS CFru::SetMultiRecArea(const UINT8* data, UINTN length, bool modified) {
    const CTrace trace = TraceOf(L"SetMultiRecArea");
    m_multiRecords.first.reset();
    m_multiRecords.length = static_cast<UINT16>(length);
    const EFI_STATUS status = DecodeMultiRecArea(data);
    if (status != FRU_STATUS_SUCCESS) {
        trace.Fail(L"Unexpected");
        RecordLastError(STRING_UNEXPECTED);
        return status;
    }
    m_multiRecords.isModified = modified;
    return trace.Exit(status);
}

EFI_STATUS CFru::DecodeMultiRecArea(const UINT8* data) {
    const CTrace trace = TraceOf(L"DecodeMultiRecArea");
    m_multiRecords.first.reset();
    CMultiRecordAppender records(m_multiRecords.first);
    for (std::span<const UINT8> rest(data, m_multiRecords.length); !rest.empty();) {
        FRUMultiRecord* record = records.Append();
        if (!record)
            return FRU_STATUS_OUT_OF_MEMORY;
        record->Decode(rest);
        rest = rest.subspan(std::min<std::size_t>(rest.size(), MULTIRECORD_HEADER_LENGTH + record->length));
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS CFru::SerializeMultiRecArea(UINT8* buffer, UINTN& length) const {
    const CTrace trace = TraceOf(L"SerializeMultiRecArea");
    const UINTN capacity = length;
    UINTN written = 0;
    length = 0;
    for (const FRUMultiRecord* record = m_multiRecords.first.get(); record; record = record->next.get()) {
        if (capacity - written < MULTIRECORD_HEADER_LENGTH)
            return trace.Fail(L"Unexpected", FRU_STATUS_BUFFER_TOO_SMALL);
        record->EncodeHeader(buffer + written);
        written += MULTIRECORD_HEADER_LENGTH;
        if (capacity - written < record->length)
            return FRU_STATUS_BUFFER_TOO_SMALL;
        std::memcpy(buffer + written, record->data, record->length);
        written += record->length;
    }
    length = written;
    return trace.Exit(FRU_STATUS_SUCCESS);
}

bool CFru::CheckMultiRecCheckSum() const {
    const CTrace trace = TraceOf(L"CheckMultiRecCheckSum");
    for (const FRUMultiRecord* record = m_multiRecords.first.get(); record; record = record->next.get()) {
        if (!record->IsValid())
            return false;
    }
    return trace.Exit(true);
}

const WCHAR* CFru::GetFriendlyFruIdentifier(const FRU_LOCATOR* locator, WCHAR* buffer, int bufferBytes) {
    const CTrace trace = TraceOf(L"GetFriendlyFruIdentifier");
    if (!locator || !buffer || bufferBytes < SMALLEST_IDENTIFIER_BYTES)
        return L"";
    const std::size_t size = static_cast<std::size_t>(bufferBytes) / sizeof(WCHAR);
    // The buffer's end cuts a longer text.
    if (locator->name) {
        std::wcsncpy(buffer, locator->name, size - 1);
        buffer[size - 1] = 0;
    } else
        FormatText(buffer, size, STRING_FRU_IDENTIFIER, UINT32{locator->deviceId}, UINT32{locator->controller},
                   UINT32{locator->deviceAddress}, UINT32{locator->bus});
    return trace.Exit(static_cast<const WCHAR*>(buffer));
}

EFI_STATUS CFru::ReadFRUFromFile(const char* filename) {
    return Frudata_Private::ReadFRUFromFile(*this, filename);
}

EFI_STATUS CFru::ParseArea(const char* tag, const CFile& file, UINTN line, UINT8*& data, UINTN& length) {
    return Frudata_Private::ParseArea(tag, file, line, data, length);
}

void CFru::SetParseAreaErrorMessage(EFI_STATUS status, const WCHAR* areaName, const char* filename) {
    Frudata_Private::SetParseAreaErrorMessage(status, areaName, filename);
}

EFI_STATUS CFru::SaveFRUToFile(const char* path) {
    return Frudata_Private::SaveFRUToFile(*this, path);
}

} // namespace Frudata_Private
