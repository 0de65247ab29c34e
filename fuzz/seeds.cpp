// Writes the fuzzers' first inputs, one directory a fuzzer: seeds DIRECTORY TABLE FRU-TEXT...
// TABLE is a compiled string table; the FRU texts are taken as they are.
#include "fruimage/records/records.h"
#include "fuzz/support.h"
#include "sim/samples.h"
#include "sim/sdrrecords.h"
#include "tools/fructl/jsonreport.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>

namespace {

using namespace Frudata_Fuzz;
using namespace Frudata_Sim;

std::filesystem::path g_directory;

BYTES ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteSeed(const std::string& fuzzer, const BYTES& bytes) {
    static unsigned int number = 0;
    const std::filesystem::path directory = g_directory / fuzzer;
    std::filesystem::create_directories(directory);
    std::ofstream(directory / ("seed" + std::to_string(number++)), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

BYTES operator+(BYTES left, const BYTES& right) {
    Append(left, right);
    return left;
}

BYTES Part(const BYTES& bytes, std::size_t start, std::size_t size) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(start);
    return BYTES(first, first + static_cast<std::ptrdiff_t>(size));
}

/// Changes that a host makes: a value for every other field.
const BYTES EDITS = {0x83, 'a', 'b', 'c', 0, 0x80, 0, 0x41, 0, 0x85, '1', '2', '3', '4', '5', 0, 0x01};

std::vector<BYTES> Images() {
    return {FruImage::CImageBuilder().Board({.manufacturer = "Mk", .productName = "PN"}, 8).Build(),
            FruImage::CImageBuilder()
                .Chassis({.chassisType = 0x11, .partNumber = "CP", .customFields = {"c1", "c22"}}, 16)
                .Build(),
            FruImage::CImageBuilder()
                .Product({.manufacturer = "PM", .assetTag = "A1"}, 8)
                .MultiRecord(0xC0, {1, 2, 3})
                .Build(),
            FruImage::CImageBuilder()
                .InternalUse({0xAB, 0x02, 0x81})
                .Board({.partNumber = {FruImage::ENCODING::BCD_PLUS, {0x12, 0x34}},
                        .customFields = {"one", "two", "three"}})
                .MultiRecord(0xC0, {1, 2})
                .MultiRecord(0xC1, {3, 4})
                .Build(),
            SamplePsuFru(1)};
}

BYTES Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

/// The image's report, its own text with other lines in it, and documents of what it has.
void WriteToolSeeds(const BYTES& image) {
    const Fructl::CONTENTS contents{{Fructl::SOURCE::IMAGE, "image", {}, {}}, image, FruImage::Parse(image)};
    WriteSeed("json", BYTES{0} + image);
    WriteSeed("json", Bytes(Fructl::JsonReport(contents).dump()));
    for (const char* document : {R"({"board": {"serial-number": "AB1", "custom": ["one", "two"]}, "chassis.type": 23})",
                                 R"({"areas": [{"name": "product", "fields": [{"value": "A"}], "language": 5}]})",
                                 R"({"multirecord.1.type": "0x00", "multirecord.1.overall-capacity": 300})"})
        WriteSeed("json", Bytes(document));
    for (const char* line : {"board.serial-number:6-bit = NEW", "product.custom+ = \"a \\x41\"", "chassis.type = 23",
                             "multirecord.1.type = 0x05", "internal.data = 01 02", "#! gone", "board.mfg-date = now"})
        WriteSeed("edittext", BYTES{1, static_cast<UINT8>(image.size()), static_cast<UINT8>(image.size() >> 8)} +
                                  image + BYTES{10, static_cast<UINT8>(std::strlen(line))} + Bytes(line) +
                                  BYTES{14, 0});
}

/// A request, a bridged one and what it fetches, each with its answer.
void WriteDriverSeeds() {
    const BYTES bridged = {12, 0x40, 0x30, 0x28, 0, 0x20, 0x16, 0x11, 0, 0, 0, 8, 0}, answer = {3, 0, 1, 2};
    const BYTES arrives = BYTES{0} + answer, room = {64, 50};
    WriteSeed("kernel", BYTES{0x47} + arrives + BYTES{0x0A, 1, 0} + room + BYTES{0x44} + bridged + room + BYTES{0x86} +
                            BYTES{3, 0} + arrives + room + BYTES{0x06} + room);
    const BYTES session = BYTES{1, 'h', 0, 1, 'p', 0, 0, 1, 0, 0, 0x88, 0x13, 200, 0} + BYTES{1, 0} + BYTES(16, 2);
    WriteSeed("lan", session + BYTES{0, 0, 0, 1} + bridged + room + BYTES{0, 0} + answer + BYTES{2, 0} + room +
                         BYTES{0x10, 1, 1} + room + BYTES{0, 0} + answer);
    for (const char* host : {"bmc-7.example:623", "[fe80::1%eth0]:65535", "::ffff:192.0.2.7", "[::1]", "x:0", "[::1]x"})
        WriteSeed("lan", BYTES{static_cast<UINT8>(std::strlen(host))} + Bytes(host));
}

void WriteImageSeeds(const BYTES& image) {
    WriteSeed("image", image);
    WriteToolSeeds(image);
    // Set, add and remove a field, set the internal use area, append and replace a record.
    for (const UINT8 edit : BYTES{0x0A, 0x01, 0x02, 0x04, 0x05, 0x06})
        for (const UINT8 area : BYTES{2, 3, 4})
            WriteSeed("imageedit", BYTES{1, static_cast<UINT8>(image.size()), static_cast<UINT8>(image.size() >> 8)} +
                                       image + BYTES{edit, area, 1, 3, 'n', 'e', 'w'});
    for (const int control : {0x02, 0x82, 0xA2, 0xC2, 0x80, 0x81, 0x83})
        WriteSeed("bmc", BYTES{static_cast<UINT8>(control), static_cast<UINT8>((image.size() + 1) / 2)} + image +
                             EDITS + BYTES(32 - EDITS.size()) + BYTES{0xF8, 0x02, 0xC0, 0x02, 0xCA, 0x25, 0x0C});
    for (std::size_t place = 1; place <= 5; ++place) {
        const std::size_t start = image[place] * 8U;
        if (start == 0)
            continue;
        const std::size_t size = place == 1 ? 8 : place == 5 ? image.size() - start : image[start + 1] * 8U;
        for (const std::size_t control : {0U, 4U, 12U})
            WriteSeed("area", BYTES{static_cast<UINT8>(place == 5 ? 0x10 : control | (place - 1)),
                                    static_cast<UINT8>(size), static_cast<UINT8>(size >> 8)} +
                                  Part(image, start, size) + EDITS);
    }
}

void WriteSdrSeeds() {
    const std::vector<BYTES> records = {LogicalFruRecord(0x20, 0, 1, "PSU"), ControllerRecord(0xC0, 0, 0x29, "HSC"),
                                        PhysicalFruRecord(0x20, 0, 1, 0xA0, DEVICE_TYPE_DS1624, "Riser"),
                                        PhysicalFruRecord(0x20, 0, 1, 0x20, DEVICE_TYPE_EEPROM, ""),
                                        OemRecord({1, 2, 3})};
    for (std::size_t index = 0; index < records.size(); ++index) {
        BYTES seed;
        for (std::size_t count = 0; count < 1 + index % 3; ++count) {
            const BYTES& record = records[(index + count) % records.size()];
            seed = seed + BYTES{static_cast<UINT8>(record.size())} + record;
        }
        seed.insert(seed.end(), 2 - index % 3, 0);
        WriteSeed("sdr", seed + BYTES{0x18, 0x0D, 0x30});
    }
}

/// The control byte has the sum completed, or cut off and completed.
void WriteTableSeeds(std::size_t count) {
    for (const char* text : {"text", "%u %u", "%5ls", "%ls %s", "%u %u %u %u", "%n"})
        WriteSeed("stringtable", BYTES{2} + StringTable(count, Bytes(text)));
}

/// A host's way from the device to a file and back, as operations by their place in the table, with their arguments.
BYTES Session() {
    constexpr UINT8 CALLBACK = 10, LOAD = 2, LOAD_FILE = 3, COMMIT = 4, SAVE = 5, LAST_ERROR = 8, LANGUAGE = 9;
    constexpr UINT8 LIST = 15, FRU = 17, AREA = 27, NAME = 29, FIELD = 32, TITLE = 33, ROOM = 34, TEXT = 35, DATA = 36;
    constexpr UINT8 SET = 37, AREA_DATA = 44, SET_AREA = 45, AREA_SIZE = 47, OUTPUT = 2;
    BYTES calls = {LANGUAGE, 0, CALLBACK, 1, LOAD, LIST, 2, FRU, 0};
    for (UINT8 area = FRU_AREA_COMMON_HEADER; area <= FRU_AREA_MULTIRECORD; ++area) {
        Append(calls, BYTES{AREA, static_cast<UINT8>(area + 1), NAME, ROOM, AREA_SIZE, AREA_DATA, area, LAST_ERROR});
        for (UINT8 field = 0; field < 8; field = static_cast<UINT8>(field + 3))
            Append(calls, BYTES{FIELD, field, TITLE, TEXT, DATA, SET, 3, 'a', 0x81, 0x30});
        Append(calls, BYTES{SET_AREA, 0x80});
    }
    Append(calls, BYTES{COMMIT, SAVE, 1, LOAD_FILE, OUTPUT, AREA, 5, FIELD, 1, TEXT, LAST_ERROR});
    return calls;
}

/// The same session in each locale, in front of a BMC without and with faults.
void WriteSessionSeeds(const BYTES& image) {
    const BYTES text = {'%', 'l', 's', 0x81, 0x30};
    for (const BYTES& faults : {BYTES{}, BYTES{0xF8, 0x02, 0xC0, 0x02}})
        for (UINT8 locale = 0; locale < 5; ++locale)
            WriteSeed("table", BYTES{static_cast<UINT8>(0x80 | locale), static_cast<UINT8>((image.size() + 1) / 2)} +
                                   image + BYTES{0, static_cast<UINT8>(text.size())} + text +
                                   BYTES{static_cast<UINT8>(faults.size())} + faults + Session());
}

/// A record of each form, without a text to set.
void WriteRecordSeeds() {
    for (const FruRecords::RECORD_DESCRIPTION& form : FruRecords::DescribeAllRecords())
        WriteSeed("record", BYTES{form.firstType, 0, 0} + FruRecords::NewRecord(form.firstType));
    for (UINT8 subType = 1; subType <= 8; ++subType)
        WriteSeed("record", BYTES{0x03, 0, 0, subType} + BYTES(16, 'A'));
    for (const UINT8 id : BYTES{0x16, 0x19, 0x27, 0x2D, 0x30, 0x32})
        WriteSeed("record", BYTES{0xC0, 0, 0, 0x5A, 0x31, 0, id, 0, 1, 2, 3});
    for (const UINT8 subType : BYTES{0x00, 0x10})
        WriteSeed("record", BYTES{0xFA, 0, 0, 0xA2, 0x12, 0, subType} + BYTES(7, 1));
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 3) {
        std::cerr << "usage: seeds DIRECTORY TABLE FRU-TEXT...\n";
        return 2;
    }
    g_directory = arguments[1];
    for (const std::size_t count : {1U, 139U})
        WriteTableSeeds(count);
    WriteSeed("stringtable", BYTES{0} + ReadFile(arguments[2]));
    for (int index = 3; index < argumentCount; ++index)
        for (const char* fuzzer : {"textfile", "frutext"})
            WriteSeed(fuzzer, ReadFile(arguments[index]));
    for (const BYTES& image : Images()) {
        WriteImageSeeds(image);
        WriteSessionSeeds(image);
    }
    WriteSdrSeeds();
    WriteDriverSeeds();
    WriteRecordSeeds();
    // The library's own text of each image.
    for (const BYTES& image : Images()) {
        _EFI_FRU_INTERFACE* const table = EmptyLibrary();
        CInput noFaults(nullptr, 0);
        CFaultyBmc bmc(noFaults);
        bmc.Bmc().AddFruDevice(0, image);
        table->LoadConfigurationFromSystem(table);
        table->SelectList(table, FRU_LIST_SYSTEM);
        table->SelectFru(table, 0);
        // Were files not in memory any more, those that read them would go on and find nothing.
        if (table->SaveConfigurationToFile(table, OUTPUT_PATH, nullptr) != 0 || OutputFile().empty() ||
            table->LoadConfigurationFromFile(table, OUTPUT_PATH, nullptr) != 0)
            return 1;
        for (const char* fuzzer : {"textfile", "frutext"})
            WriteSeed(fuzzer, BYTES(OutputFile().begin(), OutputFile().end()));
    }
    return 0;
}
