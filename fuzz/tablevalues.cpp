// The operations on values: a value that fits is taken and comes back, one that does not changes nothing.
#include "fuzz/tablemodel.h"

#include <algorithm>
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

} // namespace

ANSWER CHost::Room() {
    unsigned int size = 99;
    const EFI_STATUS status = m_table->GetMaxFieldSize(m_table, size);
    if (m_cursor.area == FRU_AREA_COMMON_HEADER)
        return {status, status == 0 && size == 0};
    return {status, status == (m_cursor.IsInfoArea() ? 0 : FRU_STATUS_UNSUPPORTED)};
}

ANSWER CHost::AssetTagRoom() {
    unsigned int length = 0;
    const EFI_STATUS status = m_table->GetAssetTagLength(m_table, length);
    return {status, status == 0};
}

ANSWER CHost::FieldData() {
    const UINT8* data = nullptr;
    unsigned int length = 99;
    const EFI_STATUS status = m_table->GetFieldDataValue(m_table, data, length);
    if (!IsReady() || status != 0)
        return {status, status == (m_cursor.IsInfoArea() ? FRU_STATUS_GET_FIELD_FAILED : FRU_STATUS_UNSUPPORTED) &&
                            length == 0 && !data};
    Require(length <= MAX_FIELD_LENGTH);
    const BYTES copy(data, data + length);
    return {status, m_cursor.IsInfoArea()};
}

ANSWER CHost::SetFieldData() {
    const UINT8 control = m_input.Byte();
    BYTES value = m_input.Take(control & 0x7F);
    const auto length = static_cast<unsigned int>(value.size());
    value.push_back(0); // what behind the value must not be taken for it
    if (!IsReady() || !m_cursor.IsInfoArea()) {
        const EFI_STATUS status = m_table->SetFieldDataValue(m_table, value.data(), length);
        return {status, status == FRU_STATUS_UNSUPPORTED};
    }
    const CInfoArea& area = *g_FruData->SelectedFru().GetInfoArea(g_FruData->m_area);
    const bool fits = Fits(area, m_cursor.area, StoredField(area, m_cursor.area, m_cursor.field), value.data(), length);
    const EFI_STATUS status = m_table->SetFieldDataValue(m_table, value.data(), length);
    value.pop_back();
    if (!fits)
        return {status, status == FRU_STATUS_SET_FIELD_FAILED};
    Require(status == 0 && SumsToZero(area));
    const std::optional<STORED> stored = StoredField(area, m_cursor.area, m_cursor.field);
    Require(!stored || (stored->typeLength == (FRU_FIELD_TYPE_TEXT | length) && stored->data == value));
    const UINT8* data = nullptr;
    unsigned int got = 0;
    if (m_cursor.field < FIXED[m_cursor.area])
        Require(m_table->GetFieldDataValue(m_table, data, got) == 0 && BYTES(data, data + got) == value);
    return {status, true};
}

ANSWER CHost::AreaSize() {
    unsigned int size = 99;
    Require(m_table->GetAreaSize(nullptr, size) == FRU_STATUS_NOT_INITIALIZED && size == 0);
    const EFI_STATUS status = m_table->GetAreaSize(m_table, size);
    const bool isWhole = m_cursor.area == FRU_AREA_INTERNAL_USE || m_cursor.area == FRU_AREA_MULTIRECORD;
    return {status, isWhole ? status == 0 : status == FRU_STATUS_UNSUPPORTED && size == 0};
}

ANSWER CHost::AreaData() {
    const unsigned int capacity = m_input.Byte() % 32 * 8U;
    const std::unique_ptr<UINT8[]> buffer(new UINT8[capacity]);
    unsigned int size = 0, length = capacity;
    Require(m_table->GetAreaData(m_table, nullptr, length) == FRU_STATUS_NOT_INITIALIZED && length == 0);
    m_table->GetAreaSize(m_table, size);
    length = capacity;
    const EFI_STATUS status = m_table->GetAreaData(m_table, buffer.get(), length);
    Require(status == 0 || length == 0);
    switch (m_cursor.area) {
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

ANSWER CHost::SetAreaData() {
    unsigned int size = 0;
    m_table->GetAreaSize(m_table, size);
    const UINT8 control = m_input.Byte();
    BYTES value = m_input.Take(control & 0x80 ? size : control);
    const auto length = static_cast<unsigned int>(value.size());
    Require(m_table->SetAreaData(m_table, nullptr, length) == FRU_STATUS_NOT_INITIALIZED);
    value.reserve(1);
    const EFI_STATUS status = m_table->SetAreaData(m_table, value.data(), length);
    const bool isTaken =
        m_cursor.area == FRU_AREA_MULTIRECORD || (m_cursor.area == FRU_AREA_INTERNAL_USE && length == size);
    if (!IsReady() || !isTaken)
        return {status, status == FRU_STATUS_UNSUPPORTED};
    // The last record's data is completed with zeroes.
    BYTES got(length + 260);
    unsigned int gotLength = static_cast<unsigned int>(got.size());
    Require(m_table->GetAreaSize(m_table, size) == 0 && size == length);
    Require(m_table->GetAreaData(m_table, got.data(), gotLength) == 0 && gotLength >= length);
    return {status, status == 0 && std::equal(value.begin(), value.end(), got.begin())};
}

} // namespace Frudata_Fuzz
