#include "sim/samples.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace Frudata_Sim {

namespace {

using JSON = nlohmann::ordered_json;

/// 2021-06-01 08:00 as minutes since 1996-01-01 00:00.
constexpr UINT32 BUILD_DATE = 13368000;
constexpr std::size_t DEVICE_SIZE = 512;
constexpr unsigned int SPARE = 24;
/// Multi-record type ids (FRU Information Storage Definition, section 16.2).
constexpr UINT8 POWER_SUPPLY_INFORMATION = 0x00;
constexpr UINT8 DC_OUTPUT = 0x01;
constexpr UINT8 OEM_RECORD = 0xC0;

void WriteFile(const std::filesystem::path& file, const char* bytes, std::size_t count) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes, static_cast<std::streamsize>(count));
    if (!stream.flush())
        throw std::runtime_error(file.string() + ": cannot be written");
}

void WriteImage(const std::filesystem::path& directory, const std::string& name, const BYTES& bytes) {
    WriteFile(directory / name, reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void WriteBmc(const std::filesystem::path& directory, const JSON& json) {
    const std::string text = json.dump(2) + '\n';
    WriteFile(directory / "bmc.json", text.data(), text.size());
}

std::string Numbered(const char* start, unsigned int number) {
    std::string digits = std::to_string(number);
    digits.insert(0, 3 - std::min<std::size_t>(digits.size(), 3), '0');
    return start + digits;
}

BYTES BackplaneFru() {
    return FruImage::CImageBuilder()
        .Board({.minutes = BUILD_DATE,
                .manufacturer = "Northwind",
                .productName = "Hot-swap Backplane",
                .serialNumber = "BP-0007",
                .partNumber = "BP-8X25",
                .fileId = "bp.fru"},
               SPARE)
        .Build(DEVICE_SIZE);
}

} // namespace

BYTES SampleBmcFru() {
    return FruImage::CImageBuilder()
        .InternalUse({0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80, 0x90, 0xA0, 0xB0})
        .Chassis({.partNumber = "CH-2U-8BAY", .serialNumber = "CHS1234567", .customFields = {"Rack 12", "Slot 30"}},
                 SPARE)
        .Board({.minutes = BUILD_DATE,
                .manufacturer = "Northwind",
                .productName = "NW-2000 Mainboard",
                .serialNumber = "MB00112233",
                .partNumber = "MB-2000-B",
                .fileId = "mb.fru",
                .customFields = {"MAC 02:00:00:00:00:01", "Lot 77"}},
               SPARE)
        .Product({.manufacturer = "Northwind",
                  .productName = "NW-2000 Server",
                  .partNumber = "NW2000-8",
                  .version = "V03",
                  .serialNumber = "SRV7654321",
                  .assetTag = "ASSET-0042",
                  .fileId = "nw2000.fru",
                  .customFields = {"Contract A", "Owner B"}},
                 SPARE)
        .MultiRecord(OEM_RECORD, {0x57, 0x01, 0x00, 0x01, 0x02, 0x03})
        .MultiRecord(OEM_RECORD, {0x57, 0x01, 0x00, 0x04})
        .Build(2 * DEVICE_SIZE);
}

BYTES SamplePsuFru(unsigned int number) {
    return FruImage::CImageBuilder()
        .Board({.minutes = BUILD_DATE,
                .manufacturer = "Volta",
                .productName = "PSU-800 Board",
                .serialNumber = Numbered("PB", number),
                .partNumber = "PB-800"},
               SPARE)
        .Product({.manufacturer = "Volta",
                  .productName = "PSU-800",
                  .partNumber = "PSU-800-P",
                  .version = "R2",
                  .serialNumber = Numbered("PSU", number),
                  .assetTag = ""},
                 SPARE)
        .MultiRecord(POWER_SUPPLY_INFORMATION, BYTES(24, 0x11))
        .MultiRecord(DC_OUTPUT, BYTES(13, 0x22))
        .Build(DEVICE_SIZE);
}

BYTES SampleRiserFru() {
    return FruImage::CImageBuilder()
        .Board({.minutes = BUILD_DATE,
                .manufacturer = "Northwind",
                .productName = "Riser 1U",
                .serialNumber = "RS-0815",
                .partNumber = "RS-1U"},
               SPARE)
        .Build(DEVICE_SIZE / 2);
}

void WriteSmallServer(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    WriteImage(directory, "bmc.bin", SampleBmcFru());
    WriteImage(directory, "psu.bin", SamplePsuFru(1));
    WriteImage(directory, "riser.bin", SampleRiserFru());
    WriteImage(directory, "backplane.bin", BackplaneFru());
    WriteBmc(directory, JSON::parse(R"({
        "identity": { "deviceId": "0x20", "ipmiVersion": "0x02", "product": "0x0001" },
        "fruDevices": [
            { "id": 0, "image": "bmc.bin" },
            { "id": 1, "name": "PSU 1", "image": "psu.bin" }
        ],
        "eeproms": [ { "bus": 1, "address": "0xA0", "kind": "AT24", "name": "Riser", "image": "riser.bin" } ],
        "controllers": [
            { "channel": 0, "address": "0xC0", "name": "Backplane", "identity": { "deviceId": "0x21" },
              "fruDevices": [ { "id": 0, "image": "backplane.bin" } ] }
        ],
        "sdr": { "generate": true, "sensors": 2 }
    })"));
}

void WriteLargeServer(const std::filesystem::path& directory, unsigned int count,
                      const std::vector<FRU_DAMAGE>& damages, const std::vector<UINT8>& dead) {
    if (count > 250)
        throw std::runtime_error("a server has at most 250 FRUs");
    std::filesystem::create_directories(directory);
    JSON devices = JSON::array();
    for (unsigned int id = 0; id < count; ++id) {
        BYTES image = id == 0 ? SampleBmcFru() : SamplePsuFru(id);
        DamageFruImage(image, id < damages.size() ? damages[id] : FRU_DAMAGE::NONE);
        const std::string name = Numbered("fru", id) + ".bin";
        WriteImage(directory, name, image);
        JSON device = {{"id", id}, {"name", Numbered("FRU ", id)}, {"image", name}};
        if (std::find(dead.begin(), dead.end(), id) != dead.end())
            device["failure"] = "0xCB";
        devices.push_back(std::move(device));
    }
    WriteBmc(directory, {{"fruDevices", std::move(devices)}, {"sdr", {{"sensors", 3}}}});
}

} // namespace Frudata_Sim
