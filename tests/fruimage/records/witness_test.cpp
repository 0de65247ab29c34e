// The same bytes read by a program that is not ours: FreeIPMI's ipmi-fru, where it is installed.
#include "tests/fruimage/records/support.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <unistd.h>

namespace {

using namespace FruRecords;

constexpr const char* PROGRAM = "PATH=$PATH:/usr/sbin:/sbin ipmi-fru ";

struct WITNESS_LINE {
    std::uint8_t type;
    const char* key;
    const char* label;
};

const WITNESS_LINE LINES[] = {
    {0x00, "rated-capacity", "Power Supply Overall Capacity"},
    {0x00, "peak-va", "Power Supply Peak VA"},
    {0x00, "inrush-current", "Power Supply Max Inrush Current"},
    {0x00, "inrush-interval", "Power Supply Inrush Interval"},
    {0x00, "voltage-1-low", "Power Supply Low End Input Voltage 1"},
    {0x00, "voltage-1-high", "Power Supply High End Input Voltage 1"},
    {0x00, "voltage-2-low", "Power Supply Low End Input Voltage 2"},
    {0x00, "voltage-2-high", "Power Supply High End Input Voltage 2"},
    {0x00, "frequency-low", "Power Supply Low End Acceptable Frequency"},
    {0x00, "frequency-high", "Power Supply High End Acceptable Frequency"},
    {0x00, "dropout-tolerance", "Power Supply A/C Dropout Tolerance"},
    {0x00, "predictive-fail", "Power Supply Predictive Fail Support"},
    {0x00, "power-factor-correction", "Power Supply Power Factor Correction Supported"},
    {0x00, "autoswitch", "Power Supply AutoSwitch Supprt"},
    {0x00, "hot-swap", "Power Supply Hot Swap Support"},
    {0x00, "peak-wattage", "Power Supply Peak Capacity"},
    {0x00, "hold-up-time", "Power Supply Hold Up Time"},
    {0x00, "combined-voltage-1", "Power Supply Voltage 1"},
    {0x00, "combined-voltage-2", "Power Supply Voltage 2"},
    {0x00, "combined-wattage", "Power Supply Total Combined Wattage"},
    {0x01, "output-number", "DC Output Output Number"},
    {0x01, "standby", "DC Output Output on Standy"},
    {0x01, "nominal-voltage", "DC Output Nominal Voltage"},
    {0x01, "negative-deviation", "DC Output Maximum Negative Voltage Deviation"},
    {0x01, "positive-deviation", "DC Output Maximum Positive Voltage Deviation"},
    {0x01, "ripple", "DC Output Ripple and Noise pk-pk"},
    {0x01, "minimum-current", "DC Output Minimum Current Draw"},
    {0x01, "maximum-current", "DC Output Maximum Current Draw"},
    {0x02, "output-number", "DC Load Output Number"},
    {0x02, "nominal-voltage", "DC Load Nominal Voltage"},
    {0x02, "minimum-voltage", "DC Load Spec'd Minimum Voltage"},
    {0x02, "maximum-voltage", "DC Load Spec'd Maximum Voltage"},
    {0x02, "ripple", "DC Load Spec'd Ripple and Noise pk-pk"},
    {0x02, "minimum-current", "DC Load Minimum Current Load"},
    {0x02, "maximum-current", "DC Load Maximum Current Load"},
    {0x03, "system-url", "Management Access System Management URL"},
    {0x03, "system-name", "Management Access System Name"},
    {0x03, "system-ping-address", "Management Access System Ping Address"},
    {0x03, "component-url", "Management Access Component Management URL"},
    {0x03, "component-name", "Management Access Component Name"},
    {0x03, "component-ping-address", "Management Access Component Ping Address"},
    {0x09, "output-number", "DC Output Output Number"},
    {0x09, "standby", "DC Output Output on Standy"},
    {0x09, "minimum-current", "DC Output Minimum Current Draw"},
    {0x09, "maximum-current", "DC Output Maximum Current Draw"},
    {0x0A, "output-number", "DC Load Output Number"},
    {0x0A, "minimum-current", "DC Load Minimum Current Load"},
    {0x0A, "maximum-current", "DC Load Maximum Current Load"},
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

std::uint8_t Checksum(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint8_t>(-std::accumulate(bytes.begin(), bytes.end(), 0));
}

/// An image with one record.
BYTES ImageAround(const WITNESS_RECORD& record) {
    const BYTES data = FromHex(record.bytes);
    BYTES image = {1, 0, 0, 0, 0, 1, 0, 0xFE};
    BYTES header = {record.type, 0x82, static_cast<std::uint8_t>(data.size()), Checksum(data)};
    header.push_back(Checksum(header));
    image.insert(image.end(), header.begin(), header.end());
    image.insert(image.end(), data.begin(), data.end());
    return image;
}

std::string Output(const std::string& arguments) {
    std::string text;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen((PROGRAM + arguments).c_str(), "r"), pclose);
    std::array<char, 4096> buffer{};
    while (pipe && std::fgets(buffer.data(), buffer.size(), pipe.get()))
        text += buffer.data();
    return text;
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
    if (Output("--version 2>/dev/null").empty())
        GTEST_SKIP() << "ipmi-fru is not installed (Debian package freeipmi-tools)";
    const auto path = std::filesystem::temp_directory_path() / ("records-" + std::to_string(getpid()) + ".bin");
    std::size_t compared = 0;
    for (const WITNESS_RECORD& record : RECORDS) {
        const BYTES image = ImageAround(record);
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
        const std::string output = Output("--fru-file=" + path.string() + " 2>&1");
        for (const RECORD_FIELD& field : DecodeRecord(record.type, FromHex(record.bytes)).fields)
            for (const WITNESS_LINE& line : LINES)
                if (line.type == record.type && line.key == field.key) {
                    const std::string label = std::string("FRU ") + line.label + ": ";
                    const std::size_t found = output.find(label);
                    ASSERT_NE(found, std::string::npos) << label << "in\n" << output;
                    const std::string said = output.substr(found + label.size(), AsWitness(field).size() + 1);
                    EXPECT_TRUE(said == AsWitness(field) + " " || said == AsWitness(field) + "\n")
                        << label << said << " and " << AsWitness(field);
                    ++compared;
                }
    }
    std::filesystem::remove(path);
    EXPECT_EQ(compared, std::size(LINES) + 20); // two power supplies
}

} // namespace
