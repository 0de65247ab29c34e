// Records of every type: bytes, the lines for people, the bare values, and the bytes made from those again.
#include "tests/fruimage/records/support.h"

namespace {

using namespace FruRecords;

struct ROUND_TRIP {
    const char* description;
    std::uint8_t type;
    const char* bytes;
    const char* title;
    const char* lines;  ///< "title: text; title: text"
    const char* values; ///< "key=bare value; ..."
    const char* note = nullptr;
};

void PrintTo(const ROUND_TRIP& row, std::ostream* stream) {
    *stream << row.description;
}

const ROUND_TRIP ROUND_TRIPS[] = {
    {"power supply with everything", 0x00, "EE 02 2C 03 1E 05 10 27 9C 31 20 4E 0C 62 2F 3F 14 1B DC F5 12 96 00 0A",
     "Power supply information",
     "Rated capacity: 750 W; Peak VA: 812 VA; Inrush current: 30 A; Inrush interval: 5 ms; Voltage 1 range: 100.00 V "
     "to 127.00 V; Voltage 2 range: 200.00 V to 251.00 V; Input frequency range: 47 Hz to 63 Hz; Dropout tolerance: 20 "
     "ms; Predictive fail support: yes; Power factor correction: yes; Autoswitch: no; Hot swap support: yes; "
     "Predictive fail signal: 2 pulses per rotation, or failure when deasserted; Peak wattage: 1500 W for 15 s; "
     "Combined wattage: 150 W on -12 V and 5 V; Tachometer lower threshold: 10 rotations/s",
     "rated-capacity=750; peak-va=812; inrush-current=30; inrush-interval=5; voltage-1-low=100.00; "
     "voltage-1-high=127.00; voltage-2-low=200.00; voltage-2-high=251.00; frequency-low=47; frequency-high=63; "
     "dropout-tolerance=20; predictive-fail=yes; power-factor-correction=yes; autoswitch=no; hot-swap=yes; "
     "predictive-fail-signal=2 pulses per rotation, or failure when deasserted; peak-wattage=1500; hold-up-time=15; "
     "combined-voltage-1=-12 V; combined-voltage-2=5 V; combined-wattage=150; tachometer-threshold=10"},
    {"power supply with special values and a reserved voltage code", 0x00,
     "E8 03 FF FF FF 00 A0 0F 40 1F 00 00 00 00 00 3F 0A 04 FF 0F 09 00 00 00", "Power supply information",
     "Rated capacity: 1000 W; Peak VA: not specified; Inrush current: not specified; Inrush interval: 0 ms; Voltage 1 "
     "range: 40.00 V to 80.00 V; Voltage 2 range: 0.00 V to 0.00 V; Input frequency, low end: DC input; Input "
     "frequency, high end: 63 Hz; Dropout tolerance: 10 ms; Predictive fail support: no; Power factor correction: no; "
     "Autoswitch: yes; Hot swap support: no; Predictive fail signal: 1 pulse per rotation, or failure when asserted; "
     "Peak wattage: not specified; Combined wattage: not specified; Tachometer lower threshold: pass/fail signal",
     "rated-capacity=1000; peak-va=not specified; inrush-current=not specified; inrush-interval=0; "
     "voltage-1-low=40.00; voltage-1-high=80.00; voltage-2-low=0.00; voltage-2-high=0.00; frequency-low=DC input; "
     "frequency-high=63; dropout-tolerance=10; predictive-fail=no; power-factor-correction=no; autoswitch=yes; "
     "hot-swap=no; predictive-fail-signal=1 pulse per rotation, or failure when asserted; peak-wattage=not specified; "
     "hold-up-time=0; combined-voltage-1=12 V; combined-voltage-2=0x09; combined-wattage=not specified; "
     "tachometer-threshold=pass/fail signal"},
    {"power supply cut inside its second field", 0x00, "EE 02 2C", "Power supply information",
     "Rated capacity: 750 W; Other data: 2C", "rated-capacity=750; other-data=2C",
     "the record is shorter than its type says: length 3 instead of 24"},
    {"power supply cut inside a pair: no shared line", 0x00, "00 00 2C 03 1E 05 10 27 9C", "Power supply information",
     "Rated capacity: 0 W; Peak VA: 812 VA; Inrush current: 30 A; Inrush interval: 5 ms; Voltage 1, low end: 100.00 V; "
     "Other data: 9C",
     "rated-capacity=0; peak-va=812; inrush-current=30; inrush-interval=5; voltage-1-low=100.00; other-data=9C",
     "the record is shorter than its type says: length 9 instead of 24"},
    {"DC output, negative voltage, standby", 0x01, "8F 50 FB B0 FF 50 00 78 00 E8 03 24 F4", "DC output",
     "Output number: 15; Standby: yes; Nominal voltage: -12.00 V; Voltage deviation: -0.80 V to 0.80 V; Ripple and "
     "noise: 120 mV; Current: 1000 mA to 62500 mA",
     "output-number=15; standby=yes; nominal-voltage=-12.00; negative-deviation=-0.80; positive-deviation=0.80; "
     "ripple=120; minimum-current=1000; maximum-current=62500"},
    {"DC load, longer than its type", 0x02, "02 4A 01 35 01 5F 01 32 00 00 00 B8 0B AB CD", "DC load",
     "Output number: 2; Nominal voltage: 3.30 V; Voltage range: 3.09 V to 3.51 V; Ripple and noise: 50 mV; Current: 0 "
     "mA to 3000 mA; Other data: AB CD",
     "output-number=2; nominal-voltage=3.30; minimum-voltage=3.09; maximum-voltage=3.51; ripple=50; minimum-current=0; "
     "maximum-current=3000; other-data=AB CD",
     "the record is longer than its type says: length 15 instead of 13"},
    {"extended DC output in 100 mA", 0x09, "91 B0 04 C4 FF 3C 00 78 00 0A 00 24 F4", "Extended DC output",
     "Output number: 1; Current unit: 100 mA; Standby: yes; Nominal voltage: 12.00 V; Voltage deviation: -0.60 V to "
     "0.60 V; Ripple and noise: 120 mV; Current: 1.0 A to 6250.0 A",
     "output-number=1; current-unit=100 mA; standby=yes; nominal-voltage=12.00; negative-deviation=-0.60; "
     "positive-deviation=0.60; ripple=120; minimum-current=1.0; maximum-current=6250.0"},
    {"extended DC load in 10 mA", 0x0A, "03 B0 04 74 04 EC 04 78 00 0A 00 24 F4", "Extended DC load",
     "Output number: 3; Current unit: 10 mA; Nominal voltage: 12.00 V; Voltage range: 11.40 V to 12.60 V; Ripple and "
     "noise: 120 mV; Current: 0.10 A to 625.00 A",
     "output-number=3; current-unit=10 mA; nominal-voltage=12.00; minimum-voltage=11.40; maximum-voltage=12.60; "
     "ripple=120; minimum-current=0.10; maximum-current=625.00"},
    {"extended DC load in 100 mA", 0x0A, "13 B0 04 74 04 EC 04 78 00 0A 00 24 F4", "Extended DC load",
     "Output number: 3; Current unit: 100 mA; Nominal voltage: 12.00 V; Voltage range: 11.40 V to 12.60 V; Ripple and "
     "noise: 120 mV; Current: 1.0 A to 6250.0 A",
     "output-number=3; current-unit=100 mA; nominal-voltage=12.00; minimum-voltage=11.40; maximum-voltage=12.60; "
     "ripple=120; minimum-current=1.0; maximum-current=6250.0"},
    {"system management URL", 0x03, "01 68 74 74 70 3A 2F 2F 61", "Management access",
     "Sub-type: system management URL; System management URL: http://a",
     "sub-type=system management URL; system-url=http://a"},
    {"system name with Latin-1, a control character, and the text of an escape", 0x03, "02 4D FC 09 5C 78 34 31 5C 7A",
     "Management access", "Sub-type: system name; System name: M\u00FC\\x09\\x5Cx41\\z",
     "sub-type=system name; system-name=M\u00FC\\x09\\x5Cx41\\z"},
    {"system ping address, empty", 0x03, "03", "Management access", "Sub-type: system ping address",
     "sub-type=system ping address; system-ping-address="},
    {"component URL", 0x03, "04 61", "Management access", "Sub-type: component URL; Component management URL: a",
     "sub-type=component URL; component-url=a"},
    {"component name", 0x03, "05 61", "Management access", "Sub-type: component name; Component name: a",
     "sub-type=component name; component-name=a"},
    {"component ping address", 0x03, "06 61", "Management access",
     "Sub-type: component ping address; Component ping address: a",
     "sub-type=component ping address; component-ping-address=a"},
    {"system UUID", 0x03, "07 33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF", "Management access",
     "Sub-type: system UUID; System UUID: 00112233-4455-6677-8899-AABBCCDDEEFF",
     "sub-type=system UUID; system-uuid=00112233-4455-6677-8899-AABBCCDDEEFF"},
    {"sub-type that the standard does not have", 0x03, "A8 01 02", "Management access", "Sub-type: A8h; Data: 01 02",
     "sub-type=0xA8; data=01 02"},
    {"base compatibility", 0x04, "5A 31 00 0A 01 45 FF 01", "Base compatibility",
     "Manufacturer ID: 12634; Entity ID: 0Ah; Compatibility base: 1; Compatibility code start: 69; Code range mask: FF "
     "01",
     "manufacturer-id=12634; entity-id=0x0A; compatibility-base=1; code-start=69; code-range-mask=FF 01"},
    {"extended compatibility without a mask", 0x05, "57 01 00 07 02 00", "Extended compatibility",
     "Manufacturer ID: 343; Entity ID: 07h; Compatibility base: 2; Compatibility code start: 0",
     "manufacturer-id=343; entity-id=0x07; compatibility-base=2; code-start=0; code-range-mask="},
    {"NVMe", 0x0B, "01", "NVMe", "Data: 01", "data=01"},
    {"NVMe PCIe port", 0x0C, "01", "NVMe PCIe port", "Data: 01", "data=01"},
    {"NVMe topology", 0x0D, "01", "NVMe topology", "Data: 01", "data=01"},
    {"ASF devices", 0x06, "01", "ASF fixed SMBus device", "Data: 01", "data=01"},
    {"ASF alerts", 0x07, "01", "ASF legacy device alerts", "Data: 01", "data=01"},
    {"ASF control", 0x08, "01", "ASF remote control", "Data: 01", "data=01"},
    {"reserved type", 0x7F, "01 02", "Record of an unknown type", "Data: 01 02", "data=01 02"},
    {"record without data", 0xC1, "", "Manufacturer record", "", "",
     "the record is shorter than its type says: length 0 instead of 3"},
    {"record shorter than its first field", 0xC1, "57 01", "Manufacturer record", "Other data: 57 01",
     "other-data=57 01", "the record is shorter than its type says: length 2 instead of 3"},
    {"manufacturer without a name", 0xD2, "57 01 00 CA FE", "Manufacturer record", "Manufacturer ID: 343; Data: CA FE",
     "manufacturer-id=343; data=CA FE"},
    {"PICMG module current requirements", 0xC0, "5A 31 00 16 00 1E", "Module current requirements (PICMG)",
     "Manufacturer ID: 12634 (PICMG); PICMG record ID: 16h; Record format version: 0; Current draw at 12 V: 3.0 A",
     "manufacturer-id=12634; picmg-record-id=0x16; format-version=0; current-draw=3.0"},
    {"PICMG point-to-point connectivity", 0xC0, "5A 31 00 19 00 00 80 01", "AMC point-to-point connectivity (PICMG)",
     "Manufacturer ID: 12634 (PICMG); PICMG record ID: 19h; Record format version: 0; OEM GUID count: 0; Data: 80 01",
     "manufacturer-id=12634; picmg-record-id=0x19; format-version=0; oem-guid-count=0; data=80 01"},
    {"PICMG clock configuration", 0xC0, "5A 31 00 2D 00 05 01 AB", "Clock configuration (PICMG)",
     "Manufacturer ID: 12634 (PICMG); PICMG record ID: 2Dh; Record format version: 0; Clock resource ID: 05h; Clock "
     "descriptor count: 1; Data: AB",
     "manufacturer-id=12634; picmg-record-id=0x2D; format-version=0; clock-resource-id=0x05; descriptor-count=1; "
     "data=AB"},
    {"PICMG record that is no further described", 0xC0, "5A 31 00 32 01 07", "PICMG record",
     "Manufacturer ID: 12634 (PICMG); PICMG record ID: 32h; Record format version: 1; Data: 07",
     "manufacturer-id=12634; picmg-record-id=0x32; format-version=1; data=07"},
    {"FPGA mezzanine card", 0xFA, "A2 12 00 00 1C 44 2C 00 00 81 28", "FPGA mezzanine card (VITA 57.1)",
     "Manufacturer ID: 4770 (VITA); Sub-type: main definition; Version: 0; Module size: single width; P1 connector: "
     "high pin count; P2 connector: not populated; P1 bank A signals: 68; P1 bank B signals: 44; P2 bank A signals: 0; "
     "P2 bank B signals: 0; P1 gigabit transceivers: 8; P2 gigabit transceivers: 1; Maximum TCK clock: 40 MHz",
     "manufacturer-id=4770; sub-type=main definition; version=0; module-size=single width; p1-connector=high pin "
     "count; p2-connector=not populated; p1-bank-a-signals=68; p1-bank-b-signals=44; p2-bank-a-signals=0; "
     "p2-bank-b-signals=0; p1-transceivers=8; p2-transceivers=1; tck-limit=40"},
    {"FPGA mezzanine card, I2C devices", 0xFA, "A2 12 00 10 01", "FPGA mezzanine card (VITA 57.1)",
     "Manufacturer ID: 4770 (VITA); Sub-type: I2C devices; Version: 0; Data: 01",
     "manufacturer-id=4770; sub-type=I2C devices; version=0; data=01"},
};

class CRoundTripTest : public testing::TestWithParam<ROUND_TRIP> {};

TEST_P(CRoundTripTest, SaysWhatTheBytesHold) {
    const ROUND_TRIP& row = GetParam();
    const DECODED_RECORD record = DecodeRecord(row.type, FromHex(row.bytes));
    EXPECT_EQ(record.title, row.title);
    std::string lines;
    for (const RECORD_LINE& line : record.lines)
        lines += (lines.empty() ? "" : "; ") + line.title + ": " + line.text;
    EXPECT_EQ(lines, row.lines);
    std::string values;
    for (const RECORD_FIELD& field : record.fields)
        values += (values.empty() ? "" : "; ") + field.key + "=" + field.bare;
    EXPECT_EQ(values, row.values);
    EXPECT_EQ(record.notes, row.note ? std::vector<std::string>{row.note} : std::vector<std::string>());
}

/// A record of the right length grows from nothing but its values; the length of others must be there before.
TEST_P(CRoundTripTest, IsMadeFromItsValues) {
    const ROUND_TRIP& row = GetParam();
    const BYTES bytes = FromHex(row.bytes);
    BYTES data = row.note ? BYTES(bytes.size(), 0) : NewRecord(row.type);
    for (std::string_view rest = row.values; !rest.empty();) {
        const std::string_view value = rest.substr(0, rest.find("; "));
        const std::size_t split = value.find('=');
        const auto result = EncodeField(row.type, data, value.substr(0, split), value.substr(split + 1));
        ASSERT_TRUE(result.data) << result.error;
        data = *result.data;
        rest.remove_prefix(std::min(rest.size(), value.size() + 2));
    }
    EXPECT_EQ(data, bytes);
}

INSTANTIATE_TEST_SUITE_P(Records, CRoundTripTest, testing::ValuesIn(ROUND_TRIPS));

} // namespace
