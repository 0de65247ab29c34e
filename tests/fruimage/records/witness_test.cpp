// The same bytes read by a program that is not ours: FreeIPMI's ipmi-fru, where it is installed.
#include "fruimage/imagebuilder.h"
#include "tests/fruimage/records/support.h"
#include "tests/fruimage/witness.h"

namespace {

using namespace FruRecords;

/// What the witness calls the fields of a type: "key=label; key=label".
const std::pair<std::uint8_t, std::string> LABELS[] = {
    {0x00,
     "rated-capacity=Power Supply Overall Capacity; peak-va=Power Supply Peak VA; inrush-current=Power Supply Max "
     "Inrush Current; inrush-interval=Power Supply Inrush Interval; voltage-1-low=Power Supply Low End Input Voltage "
     "1; voltage-1-high=Power Supply High End Input Voltage 1; voltage-2-low=Power Supply Low End Input Voltage 2; "
     "voltage-2-high=Power Supply High End Input Voltage 2; frequency-low=Power Supply Low End Acceptable Frequency; "
     "frequency-high=Power Supply High End Acceptable Frequency; dropout-tolerance=Power Supply A/C Dropout Tolerance; "
     "predictive-fail=Power Supply Predictive Fail Support; power-factor-correction=Power Supply Power Factor "
     "Correction Supported; autoswitch=Power Supply AutoSwitch Supprt; hot-swap=Power Supply Hot Swap Support; "
     "peak-wattage=Power Supply Peak Capacity; hold-up-time=Power Supply Hold Up Time; combined-voltage-1=Power Supply "
     "Voltage 1; combined-voltage-2=Power Supply Voltage 2; combined-wattage=Power Supply Total Combined Wattage"},
    {0x01, "output-number=DC Output Output Number; standby=DC Output Output on Standy; nominal-voltage=DC Output "
           "Nominal Voltage; negative-deviation=DC Output Maximum Negative Voltage Deviation; positive-deviation=DC "
           "Output Maximum Positive Voltage Deviation; ripple=DC Output Ripple and Noise pk-pk; minimum-current=DC "
           "Output Minimum Current Draw; maximum-current=DC Output Maximum Current Draw"},
    {0x02, "output-number=DC Load Output Number; nominal-voltage=DC Load Nominal Voltage; minimum-voltage=DC Load "
           "Spec'd Minimum Voltage; maximum-voltage=DC Load Spec'd Maximum Voltage; ripple=DC Load Spec'd Ripple and "
           "Noise pk-pk; minimum-current=DC Load Minimum Current Load; maximum-current=DC Load Maximum Current Load"},
    {0x03, "system-url=Management Access System Management URL; system-name=Management Access System Name; "
           "system-ping-address=Management Access System Ping Address; component-url=Management Access Component "
           "Management URL; component-name=Management Access Component Name; component-ping-address=Management Access "
           "Component Ping Address"},
    {0x09, "output-number=DC Output Output Number; standby=DC Output Output on Standy; minimum-current=DC Output "
           "Minimum Current Draw; maximum-current=DC Output Maximum Current Draw"},
    {0x0A, "output-number=DC Load Output Number; minimum-current=DC Load Minimum Current Load; maximum-current=DC Load "
           "Maximum Current Load"},
};

struct WITNESS_RECORD {
    std::uint8_t type;
    const char* bytes;
};

// Load voltages within 32 V: the witness multiplies beyond 16 bits.
const WITNESS_RECORD RECORDS[] = {
    {0x00, "EE 02 2C 03 1E 05 10 27 9C 31 20 4E 0C 62 2F 3F 14 1B DC F5 12 96 00 0A"},
    {0x00, "01 08 02 80 03 04 05 70 07 08 09 10 0B 0C 0D 8E 8F 06 10 19 23 14 01 17"},
    {0x01, "8F 50 FB B0 FF 50 00 78 00 E8 03 24 F4"},
    {0x02, "02 4A 01 C4 FF 5F 01 32 00 01 00 B8 0B"},
    {0x03, "01 68 74 74 70 3A 2F 2F 65 78 61 6D 70 6C 65 2E 6F 72 67 2F"},
    {0x03, "02 6E 61 6D 65 20 6F 66 20 73 79 73 74 65 6D"},
    {0x03, "03 31 39 32 2E 31 36 38 2E 31 2E 31"},
    {0x03, "04 68 74 74 70 3A 2F 2F 65 78 61 6D 70 6C 65 2E 6F 72 67 2F"},
    {0x03, "05 6E 61 6D 65 20 6F 66 20 63 6F 6D 70 6F 6E 65 6E 74"},
    {0x03, "06 31 39 32 2E 31 36 38 2E 31 2E 32"},
    {0x09, "91 B0 04 C4 FF 3C 00 78 00 0A 00 24 F4"},
    {0x0A, "03 B0 04 74 04 EC 04 78 00 0A 00 24 F4"},
};

/// How the witness begins the line of a field; nothing where it has none.
std::string Label(std::uint8_t type, const std::string& key) {
    for (const auto& [of, labels] : LABELS) {
        const std::size_t at = ("; " + labels).find("; " + key + "=");
        if (of == type && at != std::string::npos)
            return "FRU " + labels.substr(at + key.size() + 1, labels.find(';', at) - at - key.size() - 1) + ": ";
    }
    return "";
}

/// As the witness prints it: voltages and currents in thousandths, names without spaces.
std::string AsWitness(const RECORD_FIELD& field) {
    if (const auto* decimal = std::get_if<DECIMAL>(&field.value))
        return std::to_string(decimal->number * (decimal->places == 1 ? 100 : 10));
    if (const auto* flag = std::get_if<bool>(&field.value))
        return *flag ? "Yes" : "No";
    if (std::holds_alternative<std::string>(field.value) && field.size == 1) {
        std::string name = field.bare;
        std::erase(name, ' ');
        return name;
    }
    return field.bare;
}

TEST(Witness, ReadsTheSame) {
    if (!FruImage::HasWitness())
        GTEST_SKIP() << "ipmi-fru is not installed (Debian package freeipmi-tools)";
    std::size_t compared = 0;
    for (const WITNESS_RECORD& record : RECORDS) {
        const BYTES data = FromHex(record.bytes);
        const std::string output = FruImage::Witness(FruImage::CImageBuilder().MultiRecord(record.type, data).Build());
        for (const RECORD_FIELD& field : DecodeRecord(record.type, data).fields)
            if (const std::string label = Label(record.type, field.key); !label.empty()) {
                const std::size_t found = output.find(label);
                ASSERT_NE(found, std::string::npos) << label << "in\n" << output;
                const std::string said = output.substr(found + label.size(), AsWitness(field).size() + 1);
                EXPECT_TRUE(said == AsWitness(field) + " " || said == AsWitness(field) + "\n")
                    << label << said << " and " << AsWitness(field);
                ++compared;
            }
    }
    EXPECT_EQ(compared, 48U + 20U) << "every label, and those of the second power supply";
}

} // namespace
