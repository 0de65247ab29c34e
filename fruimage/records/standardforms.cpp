// Record types 00h to 0Dh. Sections are those of the IPMI FRU Information Storage Definition v1.0 rev 1.3.
#include "fruimage/records/recordform.h"

namespace FruRecords {

namespace {

using enum FIELD_KIND;

constexpr UNIT WATTS = {"W"};
constexpr UNIT VOLT_AMPERES = {"VA"};
constexpr UNIT AMPERES = {"A"};
constexpr UNIT CENTIVOLTS = {"V", 2};
constexpr UNIT MILLIVOLTS = {"mV"};
constexpr UNIT MILLISECONDS = {"ms"};
constexpr UNIT SECONDS = {"s"};
constexpr UNIT HERTZ = {"Hz"};
constexpr UNIT ROTATIONS = {"rotations/s"};

constexpr const char* NOT_SPECIFIED = "not specified";
constexpr NUMBER_NAME NO_BYTE[] = {{0xFF, NOT_SPECIFIED}};
constexpr NUMBER_NAME NO_WORD[] = {{0xFFFF, NOT_SPECIFIED}};
constexpr NUMBER_NAME NO_PEAK[] = {{0xFFF, NOT_SPECIFIED}};
constexpr NUMBER_NAME NO_COMBINATION[] = {{0, NOT_SPECIFIED}};
constexpr NUMBER_NAME DC_INPUT[] = {{0, "DC input"}};
constexpr NUMBER_NAME PASS_FAIL[] = {{0, "pass/fail signal"}};
constexpr NUMBER_NAME PREDICTIVE_FAIL_SIGNALS[] = {{0, "1 pulse per rotation, or failure when asserted"},
                                                   {1, "2 pulses per rotation, or failure when deasserted"}};
constexpr NUMBER_NAME VOLTAGES[] = {{0, "12 V"}, {1, "-12 V"}, {2, "5 V"}, {3, "3.3 V"}};

// Section 18.1.
constexpr FIELD_ROW POWER_SUPPLY[] = {
    {"rated-capacity", "Rated capacity", Bits(0, 0, 12), UNSIGNED, WATTS},
    {"peak-va", "Peak VA", Word(2), UNSIGNED, VOLT_AMPERES, NO_WORD, 0xFFFF},
    {"inrush-current", "Inrush current", Byte(4), UNSIGNED, AMPERES, NO_BYTE, 0xFF},
    {"inrush-interval", "Inrush interval", Byte(5), UNSIGNED, MILLISECONDS},
    {"voltage-1-low", "Voltage 1, low end", Word(6), UNSIGNED, CENTIVOLTS},
    {"voltage-1-high", "Voltage 1, high end", Word(8), UNSIGNED, CENTIVOLTS},
    {"voltage-2-low", "Voltage 2, low end", Word(10), UNSIGNED, CENTIVOLTS},
    {"voltage-2-high", "Voltage 2, high end", Word(12), UNSIGNED, CENTIVOLTS},
    {"frequency-low", "Input frequency, low end", Byte(14), UNSIGNED, HERTZ, DC_INPUT},
    {"frequency-high", "Input frequency, high end", Byte(15), UNSIGNED, HERTZ, DC_INPUT},
    {"dropout-tolerance", "Dropout tolerance", Byte(16), UNSIGNED, MILLISECONDS},
    {"predictive-fail", "Predictive fail support", Bits(17, 0), FLAG},
    {"power-factor-correction", "Power factor correction", Bits(17, 1), FLAG},
    {"autoswitch", "Autoswitch", Bits(17, 2), FLAG},
    {"hot-swap", "Hot swap support", Bits(17, 3), FLAG},
    {"predictive-fail-signal", "Predictive fail signal", Bits(17, 4), ENUMERATION, NO_UNIT, PREDICTIVE_FAIL_SIGNALS},
    {"peak-wattage", "Peak wattage", Bits(18, 0, 12), UNSIGNED, WATTS, NO_PEAK, 0xFFF},
    {"hold-up-time", "Hold-up time", Bits(18, 12, 4), UNSIGNED, SECONDS},
    {"combined-voltage-1", "Combined wattage, voltage 1", Bits(20, 4, 4), ENUMERATION, NO_UNIT, VOLTAGES},
    {"combined-voltage-2", "Combined wattage, voltage 2", Bits(20, 0, 4), ENUMERATION, NO_UNIT, VOLTAGES},
    {"combined-wattage", "Combined wattage", Word(21), UNSIGNED, WATTS, NO_COMBINATION},
    {"tachometer-threshold", "Tachometer lower threshold", Byte(23), UNSIGNED, ROTATIONS, PASS_FAIL},
};
constexpr LINE_ROW POWER_SUPPLY_LINES[] = {
    {"Voltage 1 range", "{voltage-1-low} to {voltage-1-high}"},
    {"Voltage 2 range", "{voltage-2-low} to {voltage-2-high}"},
    {"Input frequency range", "{frequency-low} to {frequency-high}"},
    {"Peak wattage", "{peak-wattage} for {hold-up-time}", true},
    {"Combined wattage", "{combined-wattage} on {combined-voltage-1} and {combined-voltage-2}", true},
};

// Sections 18.2 and 18.3, and the extended types, which count currents in 10 mA or 100 mA.
constexpr FIELD_ROW OUTPUT_HEAD[] = {
    {"output-number", "Output number", Bits(0, 0, 4)},
    {"standby", "Standby", Bits(0, 7), FLAG},
};
constexpr NUMBER_NAME CURRENT_UNITS[] = {{0, "10 mA"}, {1, "100 mA"}};
constexpr FIELD_ROW EXTENDED_OUTPUT_HEAD[] = {
    {"output-number", "Output number", Bits(0, 0, 4)},
    {"current-unit", "Current unit", Bits(0, 4), ENUMERATION, NO_UNIT, CURRENT_UNITS},
    {"standby", "Standby", Bits(0, 7), FLAG},
};
constexpr FIELD_ROW OUTPUT_VOLTAGES[] = {
    {"nominal-voltage", "Nominal voltage", Word(1), SIGNED, CENTIVOLTS},
    {"negative-deviation", "Maximum negative deviation", Word(3), SIGNED, CENTIVOLTS},
    {"positive-deviation", "Maximum positive deviation", Word(5), SIGNED, CENTIVOLTS},
    {"ripple", "Ripple and noise", Word(7), UNSIGNED, MILLIVOLTS},
};
constexpr LINE_ROW OUTPUT_LINES[] = {
    {"Voltage deviation", "{negative-deviation} to {positive-deviation}"},
    {"Current", "{minimum-current} to {maximum-current}"},
};
constexpr FIELD_ROW LOAD_HEAD[] = {{"output-number", "Output number", Bits(0, 0, 4)}};
constexpr FIELD_ROW EXTENDED_LOAD_HEAD[] = {
    {"output-number", "Output number", Bits(0, 0, 4)},
    {"current-unit", "Current unit", Bits(0, 4), ENUMERATION, NO_UNIT, CURRENT_UNITS},
};
constexpr FIELD_ROW LOAD_VOLTAGES[] = {
    {"nominal-voltage", "Nominal voltage", Word(1), SIGNED, CENTIVOLTS},
    {"minimum-voltage", "Minimum voltage", Word(3), SIGNED, CENTIVOLTS},
    {"maximum-voltage", "Maximum voltage", Word(5), SIGNED, CENTIVOLTS},
    {"ripple", "Ripple and noise", Word(7), UNSIGNED, MILLIVOLTS},
};
constexpr LINE_ROW LOAD_LINES[] = {
    {"Voltage range", "{minimum-voltage} to {maximum-voltage}"},
    {"Current", "{minimum-current} to {maximum-current}"},
};
constexpr std::array<FIELD_ROW, 2> Currents(UNIT unit) {
    return {{{"minimum-current", "Minimum current", Word(9), UNSIGNED, unit},
             {"maximum-current", "Maximum current", Word(11), UNSIGNED, unit}}};
}
constexpr auto MILLIAMPERES = Currents({"mA"});
constexpr auto TEN_MILLIAMPERES = Currents({"A", 2});
constexpr auto HUNDRED_MILLIAMPERES = Currents({"A", 1});
constexpr FORM_MATCH IN_HUNDRED_MILLIAMPERES[] = {{Bits(0, 4), 1}};

// Section 18.4.
constexpr NUMBER_NAME ACCESS_SUB_TYPES[] = {
    {1, "system management URL"}, {2, "system name"},    {3, "system ping address"},
    {4, "component URL"},         {5, "component name"}, {6, "component ping address"},
    {7, "system UUID"},
};
constexpr FIELD_ROW SUB_TYPE[] = {{"sub-type", "Sub-type", Byte(0), ENUMERATION, NO_UNIT, ACCESS_SUB_TYPES, 1}};
constexpr FIELD_ROW SYSTEM_URL[] = {{"system-url", "System management URL", Rest(1), TEXT}};
constexpr FIELD_ROW SYSTEM_NAME[] = {{"system-name", "System name", Rest(1), TEXT}};
constexpr FIELD_ROW SYSTEM_PING[] = {{"system-ping-address", "System ping address", Rest(1), TEXT}};
constexpr FIELD_ROW COMPONENT_URL[] = {{"component-url", "Component management URL", Rest(1), TEXT}};
constexpr FIELD_ROW COMPONENT_NAME[] = {{"component-name", "Component name", Rest(1), TEXT}};
constexpr FIELD_ROW COMPONENT_PING[] = {{"component-ping-address", "Component ping address", Rest(1), TEXT}};
constexpr FIELD_ROW SYSTEM_UUID[] = {{"system-uuid", "System UUID", Bits(1, 0, 128), UUID}};
constexpr FIELD_ROW SUB_TYPE_DATA[] = {{"data", "Data", Rest(1), BINARY}};
constexpr FORM_MATCH SUB_TYPE_1[] = {{Byte(0), 1}};
constexpr FORM_MATCH SUB_TYPE_2[] = {{Byte(0), 2}};
constexpr FORM_MATCH SUB_TYPE_3[] = {{Byte(0), 3}};
constexpr FORM_MATCH SUB_TYPE_4[] = {{Byte(0), 4}};
constexpr FORM_MATCH SUB_TYPE_5[] = {{Byte(0), 5}};
constexpr FORM_MATCH SUB_TYPE_6[] = {{Byte(0), 6}};
constexpr FORM_MATCH SUB_TYPE_7[] = {{Byte(0), 7}};

// Sections 18.5 and 18.6.
constexpr FIELD_ROW COMPATIBILITY[] = {
    {"manufacturer-id", "Manufacturer ID", Bits(0, 0, 24), IDENTIFIER},
    {"entity-id", "Entity ID", Byte(3), CODE},
    {"compatibility-base", "Compatibility base", Byte(4)},
    {"code-start", "Compatibility code start", Bits(5, 0, 7)},
    {"code-range-mask", "Code range mask", Rest(6), BINARY},
};

constexpr FIELD_ROW UNDESCRIBED[] = {{"data", "Data", Rest(0), BINARY}};

constexpr RECORD_FORM STANDARD[] = {
    {0x00, 0x00, "Power supply information", {POWER_SUPPLY}, POWER_SUPPLY_LINES},
    {0x01, 0x01, "DC output", {OUTPUT_HEAD, OUTPUT_VOLTAGES, MILLIAMPERES}, OUTPUT_LINES},
    {0x02, 0x02, "DC load", {LOAD_HEAD, LOAD_VOLTAGES, MILLIAMPERES}, LOAD_LINES},
    {0x03, 0x03, "Management access", {SUB_TYPE, SYSTEM_URL}, {}, SUB_TYPE_1},
    {0x03, 0x03, "Management access", {SUB_TYPE, SYSTEM_NAME}, {}, SUB_TYPE_2},
    {0x03, 0x03, "Management access", {SUB_TYPE, SYSTEM_PING}, {}, SUB_TYPE_3},
    {0x03, 0x03, "Management access", {SUB_TYPE, COMPONENT_URL}, {}, SUB_TYPE_4},
    {0x03, 0x03, "Management access", {SUB_TYPE, COMPONENT_NAME}, {}, SUB_TYPE_5},
    {0x03, 0x03, "Management access", {SUB_TYPE, COMPONENT_PING}, {}, SUB_TYPE_6},
    {0x03, 0x03, "Management access", {SUB_TYPE, SYSTEM_UUID}, {}, SUB_TYPE_7},
    {0x03, 0x03, "Management access", {SUB_TYPE, SUB_TYPE_DATA}},
    {0x04, 0x04, "Base compatibility", {COMPATIBILITY}},
    {0x05, 0x05, "Extended compatibility", {COMPATIBILITY}},
    {0x06, 0x06, "ASF fixed SMBus device", {UNDESCRIBED}},
    {0x07, 0x07, "ASF legacy device alerts", {UNDESCRIBED}},
    {0x08, 0x08, "ASF remote control", {UNDESCRIBED}},
    {0x09,
     0x09,
     "Extended DC output",
     {EXTENDED_OUTPUT_HEAD, OUTPUT_VOLTAGES, HUNDRED_MILLIAMPERES},
     OUTPUT_LINES,
     IN_HUNDRED_MILLIAMPERES},
    {0x09, 0x09, "Extended DC output", {EXTENDED_OUTPUT_HEAD, OUTPUT_VOLTAGES, TEN_MILLIAMPERES}, OUTPUT_LINES},
    {0x0A,
     0x0A,
     "Extended DC load",
     {EXTENDED_LOAD_HEAD, LOAD_VOLTAGES, HUNDRED_MILLIAMPERES},
     LOAD_LINES,
     IN_HUNDRED_MILLIAMPERES},
    {0x0A, 0x0A, "Extended DC load", {EXTENDED_LOAD_HEAD, LOAD_VOLTAGES, TEN_MILLIAMPERES}, LOAD_LINES},
    // NVMe Management Interface, section 9.2.
    {0x0B, 0x0B, "NVMe", {UNDESCRIBED}},
    {0x0C, 0x0C, "NVMe PCIe port", {UNDESCRIBED}},
    {0x0D, 0x0D, "NVMe topology", {UNDESCRIBED}},
};

constexpr RECORD_FORM UNKNOWN = {0x00, 0xFF, "Record of an unknown type", {UNDESCRIBED}};

} // namespace

std::span<const RECORD_FORM> StandardForms() {
    return STANDARD;
}

const RECORD_FORM& UnknownForm() {
    return UNKNOWN;
}

} // namespace FruRecords
