#include "bmclib/smbios.h"

#include <algorithm>

namespace Frudata_Private {

namespace {

using BYTES = std::span<const UINT8>;

constexpr UINT8 ANCHOR[] = {'_', 'S', 'M', '_'};
constexpr size_t ANCHOR_ALIGNMENT = 16;
constexpr size_t ENTRY_POINT_TABLE_ADDRESS = 0x18;
constexpr size_t ENTRY_POINT_STRUCTURE_COUNT = 0x1C;
constexpr size_t ENTRY_POINT_SIZE = ENTRY_POINT_STRUCTURE_COUNT + 2; // as far as it is read

constexpr UINT8 TYPE_IPMI_DEVICE = 38;
constexpr size_t STRUCTURE_HEADER_SIZE = 2; // as far as it is read: type and length
constexpr size_t DEVICE_INTERFACE_TYPE = 4;
constexpr size_t DEVICE_BASE_ADDRESS = 8;
constexpr size_t DEVICE_SIZE = DEVICE_BASE_ADDRESS + 4;

UINT32 ReadNumber(BYTES bytes, size_t offset, size_t size) {
    UINT32 value = 0;
    for (size_t index = size; index-- > 0;)
        value = value << 8 | bytes[offset + index];
    return value;
}

// Two zero bytes end a structure's strings, even where it has none.
BYTES SkipStructure(BYTES table) {
    for (size_t end = table[1]; end + 1 < table.size(); ++end) {
        if (table[end] == 0 && table[end + 1] == 0)
            return table.subspan(end + 2);
    }
    return {};
}

} // namespace

std::optional<SMBIOS_TABLE> FindSmbiosTable(BYTES firmware) {
    for (; firmware.size() >= ENTRY_POINT_SIZE; firmware = firmware.subspan(ANCHOR_ALIGNMENT)) {
        if (std::equal(std::begin(ANCHOR), std::end(ANCHOR), firmware.begin()))
            return SMBIOS_TABLE{ReadNumber(firmware, ENTRY_POINT_TABLE_ADDRESS, 4),
                                static_cast<UINT16>(ReadNumber(firmware, ENTRY_POINT_STRUCTURE_COUNT, 2))};
    }
    return std::nullopt;
}

std::optional<SMBIOS_IPMI_DEVICE> FindIpmiDevice(BYTES table, UINT16 structures) {
    for (UINT16 visited = 0; visited < structures && table.size() >= STRUCTURE_HEADER_SIZE; ++visited) {
        if (table[0] == TYPE_IPMI_DEVICE) {
            if (table.size() < DEVICE_SIZE)
                return std::nullopt;
            return SMBIOS_IPMI_DEVICE{table[DEVICE_INTERFACE_TYPE], ReadNumber(table, DEVICE_BASE_ADDRESS, 4)};
        }
        table = SkipStructure(table);
    }
    return std::nullopt;
}

} // namespace Frudata_Private
