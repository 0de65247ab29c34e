// The operations on values: a value that fits is taken and comes back, one that does not changes nothing.
#include "fuzz/tablemodel.h"

#include <optional>

namespace Frudata_Fuzz {

using namespace Frudata_Private;

namespace {

/// A field as the area holds it.
struct STORED {
    UINT8 typeLength = 0;
    BYTES data;
};

/// Fixed fields by area, and how many of them stand in the area's header.
constexpr unsigned int FIXED[] = {0, 0, 0, 3, 6, 7}, IN_HEADER[] = {0, 0, 0, 1, 1, 0};

/// The field that a value set at `index` goes to; none where it stands in the header.
std::optional<STORED> StoredField(const CInfoArea& area, int kind, UINT32 index) {
    std::vector<STORED> fields;
    area.ForEachField([&fields](UINT8 typeLength, const UINT8* data) {
        fields.push_back({typeLength, BYTES(data, data + (typeLength & MAX_FIELD_LENGTH))});
    });
    if (index < IN_HEADER[kind])
        return std::nullopt;
    // Custom fields are counted from the last one backwards.
    const std::size_t place = index < FIXED[kind] ? index : FIXED[kind] + area.GetNumberOfFields() - index - 1;
    return fields.at(place - IN_HEADER[kind]);
}

/// Whether the area takes `length` bytes in the place of `stored`.
bool Fits(const CInfoArea& area, int kind, const std::optional<STORED>& stored, const UINT8* value,
          std::size_t length) {
    constexpr UINT8 LAST_CHASSIS_TYPE = 23;
    if (!stored && kind == FRU_AREA_CHASSIS)
        return length == 1 && value[0] >= 1 && value[0] <= LAST_CHASSIS_TYPE;
    if (!stored)
        return length == 3;
    return length <= MAX_FIELD_LENGTH &&
           static_cast<int>(length) <= static_cast<int>(stored->data.size()) + area.GetPadLength();
}

bool SumsToZero(const CInfoArea& area) {
    const UINT8* image = area.GetData();
    unsigned int sum = 0;
    for (UINTN index = 0; index < area.GetLength(); ++index)
        sum += image[index];
    return (sum & 0xFF) == 0;
}

ANSWER Room(HOST& host) {
    unsigned int size = 99;
    const EFI_STATUS status = host.Call(&TABLE::GetMaxFieldSize, size);
    if (host.cursor.area == FRU_AREA_COMMON_HEADER)
        return {status, status == 0 && size == 0};
    return {status, status == (host.cursor.IsInfoArea() ? 0 : FRU_STATUS_UNSUPPORTED)};
}

ANSWER AssetTagRoom(HOST& host) {
    unsigned int length = 0;
    const EFI_STATUS status = host.Call(&TABLE::GetAssetTagLength, length);
    return {status, status == 0};
}

ANSWER FieldData(HOST& host) {
    const UINT8* data = nullptr;
    unsigned int length = 99;
    const EFI_STATUS status = host.Call(&TABLE::GetFieldDataValue, data, length);
    if (!host.IsReady() || status != 0)
        return {status, status == (host.cursor.IsInfoArea() ? FRU_STATUS_GET_FIELD_FAILED : FRU_STATUS_UNSUPPORTED) &&
                            length == 0 && !data};
    Require(length <= MAX_FIELD_LENGTH);
    Read(data, length);
    return {status, host.cursor.IsInfoArea()};
}

ANSWER SetFieldData(HOST& host) {
    const UINT8 control = host.input.Byte();
    BYTES value = host.input.Take(control & 0x7F);
    const auto length = static_cast<unsigned int>(value.size());
    value.push_back(0); // what behind the value must not be taken for it
    if (!host.IsReady() || !host.cursor.IsInfoArea()) {
        const EFI_STATUS status = host.Call(&TABLE::SetFieldDataValue, value.data(), length);
        return {status, status == FRU_STATUS_UNSUPPORTED};
    }
    const CInfoArea& area = *g_FruData->SelectedFru().GetInfoArea(g_FruData->m_area);
    const bool fits =
        Fits(area, host.cursor.area, StoredField(area, host.cursor.area, host.cursor.field), value.data(), length);
    const EFI_STATUS status = host.Call(&TABLE::SetFieldDataValue, value.data(), length);
    value.pop_back();
    if (!fits)
        return {status, status == FRU_STATUS_SET_FIELD_FAILED};
    Require(status == 0 && SumsToZero(area));
    const std::optional<STORED> stored = StoredField(area, host.cursor.area, host.cursor.field);
    Require(!stored || (stored->typeLength == (FRU_FIELD_TYPE_TEXT | length) && stored->data == value));
    const UINT8* data = nullptr;
    unsigned int got = 0;
    if (host.cursor.field < FIXED[host.cursor.area])
        Require(host.Call(&TABLE::GetFieldDataValue, data, got) == 0 && BYTES(data, data + got) == value);
    return {status, true};
}

ANSWER AreaSize(HOST& host) {
    unsigned int size = 99;
    Require(host.table->GetAreaSize(nullptr, size) == FRU_STATUS_NOT_INITIALIZED && size == 0);
    const EFI_STATUS status = host.Call(&TABLE::GetAreaSize, size);
    const bool isWhole = host.cursor.area == FRU_AREA_INTERNAL_USE || host.cursor.area == FRU_AREA_MULTIRECORD;
    return {status, isWhole ? status == 0 : status == FRU_STATUS_UNSUPPORTED && size == 0};
}

ANSWER AreaData(HOST& host) {
    const unsigned int capacity = host.input.Byte() % 32 * 8U;
    const std::unique_ptr<UINT8[]> buffer(new UINT8[capacity]);
    unsigned int size = 0, length = capacity;
    Require(host.Call(&TABLE::GetAreaData, nullptr, length) == FRU_STATUS_NOT_INITIALIZED && length == 0);
    host.Call(&TABLE::GetAreaSize, size);
    length = capacity;
    const EFI_STATUS status = host.Call(&TABLE::GetAreaData, buffer.get(), length);
    Require(status == 0 || length == 0);
    switch (host.cursor.area) {
    case FRU_AREA_COMMON_HEADER:
        return {status, capacity == 8 ? status == 0 && length == 8 : status == FRU_STATUS_BUFFER_TOO_SMALL};
    case FRU_AREA_INTERNAL_USE:
        return {status, capacity >= size ? status == 0 && length == size : status == FRU_STATUS_BUFFER_TOO_SMALL};
    case FRU_AREA_MULTIRECORD:
        return {status, status == 0 ? length <= capacity : status == FRU_STATUS_BUFFER_TOO_SMALL};
    default:
        return {status, status == FRU_STATUS_UNSUPPORTED};
    }
}

ANSWER SetAreaData(HOST& host) {
    unsigned int size = 0;
    host.Call(&TABLE::GetAreaSize, size);
    const UINT8 control = host.input.Byte();
    BYTES value = host.input.Take(control & 0x80 ? size : control);
    const auto length = static_cast<unsigned int>(value.size());
    Require(host.Call(&TABLE::SetAreaData, nullptr, length) == FRU_STATUS_NOT_INITIALIZED);
    value.reserve(1);
    const EFI_STATUS status = host.Call(&TABLE::SetAreaData, value.data(), length);
    const bool isTaken =
        host.cursor.area == FRU_AREA_MULTIRECORD || (host.cursor.area == FRU_AREA_INTERNAL_USE && length == size);
    if (!host.IsReady() || !isTaken)
        return {status, status == FRU_STATUS_UNSUPPORTED};
    // The last record's data is completed with zeroes.
    BYTES got(length + 260);
    unsigned int gotLength = static_cast<unsigned int>(got.size());
    Require(host.Call(&TABLE::GetAreaSize, size) == 0 && size == length);
    Require(host.Call(&TABLE::GetAreaData, got.data(), gotLength) == 0 && gotLength >= length);
    return {status, status == 0 && std::equal(value.begin(), value.end(), got.begin())};
}

} // namespace

std::span<const ROW> ValueRows() {
    static constexpr ROW ROWS[] = {{33, NEEDS_FIELD, Text<&TABLE::GetFieldTitle>},
                                   {34, NEEDS_AREA, Room},
                                   {35, NEEDS_FIELD, Text<&TABLE::GetFieldStringValue>},
                                   {36, NEEDS_FIELD, FieldData},
                                   {37, NEEDS_FIELD, SetFieldData, true},
                                   {44, NEEDS_AREA, AreaData},
                                   {45, NEEDS_AREA, SetAreaData, true},
                                   {47, NEEDS_AREA, AreaSize},
                                   {49, NEEDS_LOAD, AssetTagRoom}};
    return ROWS;
}

} // namespace Frudata_Fuzz
