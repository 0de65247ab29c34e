// Record types C0h to FFh: a manufacturer's number (IANA's, or an OUI with VITA), then bytes of the manufacturer's own
// (section 18.7). Of the well-known records, the fields that their standards leave no doubt about.
#include "fruimage/records/recordform.h"

namespace FruRecords {

namespace {

using enum FIELD_KIND;

constexpr std::uint32_t PICMG = 12634;
constexpr std::uint32_t VITA = 0x0012A2;
constexpr NUMBER_NAME MANUFACTURERS[] = {{PICMG, "PICMG"}, {VITA, "VITA"}};
constexpr PLACE MANUFACTURER = Bits(0, 0, 24);
constexpr FIELD_ROW MANUFACTURER_HEAD[] = {
    {"manufacturer-id", "Manufacturer ID", MANUFACTURER, IDENTIFIER, NO_UNIT, MANUFACTURERS}};
constexpr FIELD_ROW MANUFACTURER_DATA[] = {{"data", "Data", Rest(3), BINARY}};

// PICMG 3.0 (AdvancedTCA), AMC.0, MTCA.0 and MTCA.4.
constexpr FIELD_ROW PICMG_HEAD[] = {
    {"picmg-record-id", "PICMG record ID", Byte(3), CODE},
    {"format-version", "Record format version", Byte(4)},
};
constexpr FIELD_ROW PICMG_DATA[] = {{"data", "Data", Rest(5), BINARY}};
constexpr FIELD_ROW CURRENT_DRAW[] = {{"current-draw", "Current draw at 12 V", Byte(5), UNSIGNED, {"A", 1}}};
constexpr FIELD_ROW POINT_TO_POINT[] = {
    {"oem-guid-count", "OEM GUID count", Byte(5)},
    {"data", "Data", Rest(6), BINARY},
};
constexpr FIELD_ROW CLOCK_CONFIGURATION[] = {
    {"clock-resource-id", "Clock resource ID", Byte(5), CODE},
    {"descriptor-count", "Clock descriptor count", Byte(6)},
    {"data", "Data", Rest(7), BINARY},
};
constexpr FORM_MATCH IS_PICMG[] = {{MANUFACTURER, PICMG}};
constexpr FORM_MATCH PICMG_16[] = {{MANUFACTURER, PICMG}, {Byte(3), 0x16}};
constexpr FORM_MATCH PICMG_19[] = {{MANUFACTURER, PICMG}, {Byte(3), 0x19}};
constexpr FORM_MATCH PICMG_27[] = {{MANUFACTURER, PICMG}, {Byte(3), 0x27}};
constexpr FORM_MATCH PICMG_2D[] = {{MANUFACTURER, PICMG}, {Byte(3), 0x2D}};
constexpr FORM_MATCH PICMG_30[] = {{MANUFACTURER, PICMG}, {Byte(3), 0x30}};

// ANSI/VITA 57.1, section 5.5.1: the record of an FPGA mezzanine card.
constexpr NUMBER_NAME SUB_TYPES[] = {{0, "main definition"}, {1, "I2C devices"}};
constexpr NUMBER_NAME MODULE_SIZES[] = {{0, "single width"}, {1, "double width"}};
constexpr NUMBER_NAME CONNECTORS[] = {{0, "low pin count"}, {1, "high pin count"}, {3, "not populated"}};
constexpr FIELD_ROW VITA_HEAD[] = {
    {"sub-type", "Sub-type", Bits(3, 4, 4), ENUMERATION, NO_UNIT, SUB_TYPES},
    {"version", "Version", Bits(3, 0, 4)},
};
constexpr FIELD_ROW VITA_MAIN[] = {
    {"module-size", "Module size", Bits(4, 6, 2), ENUMERATION, NO_UNIT, MODULE_SIZES},
    {"p1-connector", "P1 connector", Bits(4, 4, 2), ENUMERATION, NO_UNIT, CONNECTORS},
    {"p2-connector", "P2 connector", Bits(4, 2, 2), ENUMERATION, NO_UNIT, CONNECTORS, 3},
    {"p1-bank-a-signals", "P1 bank A signals", Byte(5)},
    {"p1-bank-b-signals", "P1 bank B signals", Byte(6)},
    {"p2-bank-a-signals", "P2 bank A signals", Byte(7)},
    {"p2-bank-b-signals", "P2 bank B signals", Byte(8)},
    {"p1-transceivers", "P1 gigabit transceivers", Bits(9, 4, 4)},
    {"p2-transceivers", "P2 gigabit transceivers", Bits(9, 0, 4)},
    {"tck-limit", "Maximum TCK clock", Byte(10), UNSIGNED, {"MHz"}},
};
constexpr FIELD_ROW VITA_DATA[] = {{"data", "Data", Rest(4), BINARY}};
constexpr FORM_MATCH IS_VITA[] = {{MANUFACTURER, VITA}};
constexpr FORM_MATCH VITA_0[] = {{MANUFACTURER, VITA}, {Byte(3), 0x00}};

constexpr RECORD_FORM MANUFACTURER_FORMS[] = {
    {0xC0, 0xC0, "Module current requirements (PICMG)", {MANUFACTURER_HEAD, PICMG_HEAD, CURRENT_DRAW}, {}, PICMG_16},
    {0xC0,
     0xC0,
     "AMC point-to-point connectivity (PICMG)",
     {MANUFACTURER_HEAD, PICMG_HEAD, POINT_TO_POINT},
     {},
     PICMG_19},
    {0xC0, 0xC0, "Power module capability (PICMG)", {MANUFACTURER_HEAD, PICMG_HEAD, PICMG_DATA}, {}, PICMG_27},
    {0xC0, 0xC0, "Clock configuration (PICMG)", {MANUFACTURER_HEAD, PICMG_HEAD, CLOCK_CONFIGURATION}, {}, PICMG_2D},
    {0xC0, 0xC0, "Zone 3 interface compatibility (PICMG)", {MANUFACTURER_HEAD, PICMG_HEAD, PICMG_DATA}, {}, PICMG_30},
    {0xC0, 0xC0, "PICMG record", {MANUFACTURER_HEAD, PICMG_HEAD, PICMG_DATA}, {}, IS_PICMG},
    {0xFA, 0xFA, "FPGA mezzanine card (VITA 57.1)", {MANUFACTURER_HEAD, VITA_HEAD, VITA_MAIN}, {}, VITA_0},
    {0xFA, 0xFA, "FPGA mezzanine card (VITA 57.1)", {MANUFACTURER_HEAD, VITA_HEAD, VITA_DATA}, {}, IS_VITA},
    {0xC0, 0xFF, "Manufacturer record", {MANUFACTURER_HEAD, MANUFACTURER_DATA}},
};

} // namespace

std::span<const RECORD_FORM> ManufacturerForms() {
    return MANUFACTURER_FORMS;
}

} // namespace FruRecords
