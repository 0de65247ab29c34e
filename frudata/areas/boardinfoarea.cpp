#include "frudata/areas/boardinfoarea.h"

#include "common/allocate.h"
#include "common/lasterror.h"

#include <cstring>
#include <ctime>
#include <cwchar>

namespace Frudata_Private {

namespace {

// Compatibility: dates count from one day before the standard's origin, 1996-01-01.
/// 1995-12-31 00:00 UTC in seconds since 1970.
constexpr std::int32_t MFG_DATE_TIME_ORIGIN = 820368000;
constexpr std::size_t DATE_TIME_TEXT_SIZE = 256;

constexpr INFO_AREA_FIELD BOARD_FIELDS[] = {
    {STRING_BOARD_MFG_DATE_TIME, L"SetMfgDateTime"}, {STRING_BOARD_MANUFACTURER, L"SetManufacturer"},
    {STRING_BOARD_PRODUCT_NAME, L"SetProductName"},  {STRING_BOARD_SERIAL_NUMBER, L"SetSerialNumber"},
    {STRING_BOARD_PART_NUMBER, L"SetPartNumber"},    {STRING_BOARD_FILE_ID, L"SetFileId"},
};
static_assert(std::size(BOARD_FIELDS) == CBoardInfoArea::NUMBER_OF_FIELDS);

constexpr INFO_AREA_DESCRIPTION BOARD_DESCRIPTION = {
    .className = L"CBoardInfoArea",
    .sourceFile = "boardinfoarea.cpp",
    .firstField = FRU_FIELD_BOARD_MFG_DATE_TIME,
    .fields = BOARD_FIELDS,
    .customTitle = STRING_BOARD_CUSTOM_FIELD,
    .headerSize = BOARD_HEADER_SIZE,
    .headerFieldOffset = HEADER_MFG_DATE_TIME,
    .headerFieldSize = MFG_DATE_TIME_SIZE,
    .headerFieldMarksModified = false,
    .customFieldsMarkModified = true,
    .assertsFieldSelection = true,
    .assertsPadding = true,
    .customIndexCondition = "nIndexOfFieldToGet <= m_NumOfCustomFields",
    .customPositionCondition = "nCurFieldIndex < m_NumOfCustomFields",
    .reportsRefusals = true,
    .tooLong = L"FRU Data too long",
    .valueNoMemory = L"FRU Error allocation",
    .customValueNoMemory = nullptr,
};
static_assert(IsWithinCapacity(BOARD_DESCRIPTION));

} // namespace

CBoardInfoArea::CBoardInfoArea() : CInfoArea(BOARD_DESCRIPTION) {}

const UINT8* CBoardInfoArea::GetMfgDateTime() const {
    return Trace(L"GetMfgDateTime").Exit(&m_header[HEADER_MFG_DATE_TIME]);
}

bool CBoardInfoArea::SetMfgDateTime(const UINT8* value, UINTN length) {
    const CTrace trace = Trace(L"SetMfgDateTime");
    if (!value || length != MFG_DATE_TIME_SIZE)
        return false;
    std::memmove(&m_header[HEADER_MFG_DATE_TIME], value, MFG_DATE_TIME_SIZE);
    UpdateChecksum();
    return trace.Exit(true);
}

bool CBoardInfoArea::isMfgDateTimeSet() const {
    const CTrace trace = Trace(L"isMfgDateTimeSet");
    const UINT8* date = &m_header[HEADER_MFG_DATE_TIME];
    return trace.Exit((date[0] | date[1] | date[2]) != 0);
}

void CBoardInfoArea::updateMfgDateTime() {
    const CTrace trace = Trace(L"updateMfgDateTime");
    if (!isMfgDateTimeSet()) {
        getCurTimeInMfgDateTimeFormat(&m_header[HEADER_MFG_DATE_TIME]);
        UpdateChecksum();
    }
    trace.Exit();
}

bool CBoardInfoArea::getCurTimeInMfgDateTimeFormat(UINT8* out) const {
    const CTrace trace = Trace(L"getCurTimeInMfgDateTimeFormat");
    if (!out)
        return false;
    const auto minutes = static_cast<std::int32_t>(std::time(nullptr) - MFG_DATE_TIME_ORIGIN) / 60;
    for (UINTN index = 0; index < MFG_DATE_TIME_SIZE; ++index)
        out[index] = static_cast<UINT8>(static_cast<UINT32>(minutes) >> 8 * index);
    return trace.Exit(true);
}

bool CBoardInfoArea::SetHeaderField(const CTrace& trace, const UINT8* data, UINTN length) {
    if (length == MFG_DATE_TIME_SIZE && SetMfgDateTime(data, length))
        return true;
    trace.Fail(L"Invalid Mfg Date Time");
    RecordLastError(STRING_INVALID_MFG_DATE_TIME);
    return false;
}

std::unique_ptr<WCHAR[]> CBoardInfoArea::HeaderFieldText(const CTrace& trace) const {
    const UINT8* date = &m_header[HEADER_MFG_DATE_TIME];
    const std::time_t seconds = (date[0] | date[1] << 8 | date[2] << 16) * 60 + MFG_DATE_TIME_ORIGIN;
    const std::tm* time = std::gmtime(&seconds);
    const auto number = [](int value) { return static_cast<UINT32>(value); };
    if (!time) {
        trace.Fail(L"Invalid Timestamp");
        RecordLastError(STRING_INVALID_TIMESTAMP);
        return nullptr;
    }
    if (!GetFormat(STRING_DATE_TIME_FORMAT, "uuuuuu"))
        return nullptr;
    std::unique_ptr<WCHAR[]> text = AllocateArray<WCHAR>(DATE_TIME_TEXT_SIZE);
    if (!text)
        RefuseNoMemory(trace);
    else
        FormatText(text.get(), DATE_TIME_TEXT_SIZE, STRING_DATE_TIME_FORMAT, number(time->tm_mon + 1),
                   number(time->tm_mday), number(time->tm_year + 1900), number(time->tm_hour), number(time->tm_min),
                   number(time->tm_sec));
    return text;
}

} // namespace Frudata_Private
