// A host that reads and changes everything that the cursor reaches.
#include "fuzz/support.h"

#include <algorithm>

namespace Frudata_Fuzz {

namespace {

void ReadField(_EFI_FRU_INTERFACE* table) {
    const WCHAR* text = nullptr;
    const UINT8* data = nullptr;
    unsigned int length = 0;
    table->GetFieldTitle(table, text);
    Read(text);
    table->GetFieldStringValue(table, text);
    Read(text);
    if (table->GetFieldDataValue(table, data, length) == 0)
        Read(data, length);
}

void UseField(_EFI_FRU_INTERFACE* table, CInput& input) {
    ReadField(table);
    const UINT8 control = input.Byte();
    const UINT8* own = nullptr;
    unsigned int length = 0;
    if (control & 0x80) {
        const BYTES value = input.Take(control & 0x7F);
        table->SetFieldDataValue(table, value.data(), static_cast<unsigned int>(value.size()));
    } else if ((control & 0x40) && table->GetFieldDataValue(table, own, length) == 0) {
        // A part of the field's own bytes.
        const unsigned int start = std::min<unsigned int>(control & 0x3F, length);
        table->SetFieldDataValue(table, own + start, length - start);
    }
    if (control != 0)
        ReadField(table);
}

void UseArea(_EFI_FRU_INTERFACE* table, CInput& input) {
    const WCHAR* text = nullptr;
    unsigned int size = 0, fields = 0;
    if (table->GetAreaName(table, text) == 0)
        Read(text);
    table->GetMaxFieldSize(table, size);
    table->GetAssetTagLength(table, size);
    table->GetNumberOfFields(table, fields);
    for (unsigned int field = 0; field < fields; ++field) {
        table->SelectFieldInteger(table, field);
        UseField(table, input);
    }
    if (table->GetAreaSize(table, size) != 0)
        return;
    const UINT8 control = input.Byte();
    // Less room than the area has, as much, or more.
    std::unique_ptr<UINT8[]> buffer(new UINT8[size + 260]);
    unsigned int length = control & 2 ? size / 2 : size + (control & 4) * 65;
    if (table->GetAreaData(table, buffer.get(), length) == 0)
        Read(buffer.get(), length);
    if (control & 1) {
        const BYTES value = input.Take(control & 0x80 ? size : control / 2);
        table->SetAreaData(table, value.data(), static_cast<unsigned int>(value.size()));
    }
}

} // namespace

void UseSelectedFru(_EFI_FRU_INTERFACE* table, CInput& input) {
    const WCHAR* name = nullptr;
    FRU_TYPE type = FRU_TYPE_NONE;
    UINT8 lun = 0, address = 0, bus = 0, controller = 0, id = 0, size = 0;
    UINT16 sizeAddress = 0;
    if (table->GetFruName(table, name) == 0)
        Read(name);
    table->GetFruAddress(table, type, lun, address, bus, controller, id, size, sizeAddress);
    for (unsigned int area = 0; table->SelectAreaInteger(table, area) == 0; ++area)
        UseArea(table, input);
    UINT8 header[8];
    unsigned int length = sizeof header;
    if (table->SelectAreaEnum(table, FRU_AREA_COMMON_HEADER) == 0)
        table->GetAreaData(table, header, length);
    const UINT8 selectors = input.Byte();
    table->SelectAreaEnum(table, static_cast<FRU_AREA>(selectors >> 5));
    table->SelectFieldEnum(table, static_cast<FRU_FIELD>(selectors & 0x1F));
    table->GetLastErrorMessage(table, name);
    Read(name);
}

void SaveAndReload(_EFI_FRU_INTERFACE* table, CInput& input) {
    if (table->SaveConfigurationToFile(table, OUTPUT_PATH, nullptr) == 0 && (input.Byte() & 7) == 1)
        table->LoadConfigurationFromFile(table, OUTPUT_PATH, nullptr);
}

} // namespace Frudata_Fuzz
