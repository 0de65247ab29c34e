#include "sim/directory.h"

#include "sim/jsonobject.h"
#include "sim/sdrrecords.h"

#include <fstream>
#include <stdexcept>

namespace Frudata_Sim {

namespace {

struct ACTION_NAME {
    const char* name;
    FAULT_ACTION action;
    UINT16 value; ///< if the rule gives none
};

constexpr ACTION_NAME ACTION_NAMES[] = {
    {"completionCode", FAULT_ACTION::COMPLETION_CODE, CC_UNSPECIFIED},
    {"nodeBusy", FAULT_ACTION::COMPLETION_CODE, CC_NODE_BUSY},
    {"transportError", FAULT_ACTION::TRANSPORT_ERROR, 1},
    {"silence", FAULT_ACTION::SILENCE, 0},
    {"dropWrite", FAULT_ACTION::DROP_WRITE, 0},
    {"acknowledgeNone", FAULT_ACTION::ACKNOWLEDGE_NONE, 0},
    {"cut", FAULT_ACTION::CUT, 0},
    {"shortAnswer", FAULT_ACTION::SHORT_ANSWER, 1},
    {"longAnswer", FAULT_ACTION::LONG_ANSWER, 1},
    {"nextRecord", FAULT_ACTION::NEXT_RECORD, 0},
    {"wrongSequence", FAULT_ACTION::WRONG_SEQUENCE, 0},
    {"staleMessages", FAULT_ACTION::STALE_MESSAGES, 1},
};

constexpr unsigned int MOST_BUSES = 8; ///< private bus numbers of a locator have three bits

/// Byte 9 of a controller's locator: FRU inventory device; the BMC also SEL, SDR repository and sensors.
enum : UINT8 {
    CONTROLLER_CAPABILITIES = 0x08,
    BMC_CAPABILITIES = 0x9F
};

/// Where a device or controller stands, for its SDR.
struct PLACE {
    UINT8 channel;
    UINT8 address;
};

class CDirectoryLoader {
  public:
    CDirectoryLoader(std::filesystem::path directory, CSimulatedBmc& bmc)
        : m_directory(std::move(directory)), m_bmc(bmc) {}

    void Load();

  private:
    static void ReadIdentity(CJsonObject& owner, CManagementController& controller);
    void AddDevices(CJsonObject& owner, CManagementController& controller, const PLACE& place);
    void AddFruDevice(CJsonObject device, CManagementController& controller, const PLACE& place);
    void AddEeprom(CJsonObject device, CManagementController& controller, const PLACE& place);
    void AddController(CJsonObject object);
    void AddFault(CJsonObject object);
    void AddSdrs(CJsonObject object);
    void AddSdrFile(CJsonObject& object);
    void AddGeneratedSdrs(unsigned int sensors);
    void CheckName(const CJsonObject& object, const std::string& name) const;
    CStorage Open(CJsonObject& object, const char* key) const;

    std::filesystem::path m_directory;
    CSimulatedBmc& m_bmc;
    std::vector<BYTES> m_records;
};

std::string HexText(UINT8 value) {
    constexpr char digits[] = "0123456789ABCDEF";
    return {digits[value >> 4], digits[value & 0x0F]};
}

void CDirectoryLoader::Load() {
    const std::filesystem::path file = m_directory / "bmc.json";
    std::ifstream stream(file);
    if (!stream)
        throw std::runtime_error(file.string() + ": cannot be opened");
    nlohmann::json json;
    try {
        json = nlohmann::json::parse(stream);
    } catch (const nlohmann::json::exception& error) {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
    CJsonObject top(json, file.string());
    ReadIdentity(top, m_bmc);
    m_records.push_back(ControllerRecord(BMC_ADDRESS, 0, BMC_CAPABILITIES, "BMC"));
    AddDevices(top, m_bmc, {0, BMC_ADDRESS});
    for (CJsonObject& controller : top.Objects("controllers"))
        AddController(std::move(controller));
    for (CJsonObject& fault : top.Objects("faults"))
        AddFault(std::move(fault));
    AddSdrs(top.Object("sdr"));
    top.RequireAllUsed();
}

void CDirectoryLoader::ReadIdentity(CJsonObject& owner, CManagementController& controller) {
    CJsonObject object = owner.Object("identity");
    DeviceIdentity identity;
    object.Read("deviceId", identity.deviceId);
    object.Read("deviceRevision", identity.deviceRevision);
    object.Read("firmwareMajor", identity.firmwareMajor);
    object.Read("firmwareMinor", identity.firmwareMinor);
    object.Read("ipmiVersion", identity.ipmiVersion);
    object.Read("additionalSupport", identity.additionalSupport);
    object.Read("manufacturer", identity.manufacturer);
    object.Read("product", identity.product);
    object.RequireAllUsed();
    controller.SetIdentity(identity);
}

void CDirectoryLoader::AddDevices(CJsonObject& owner, CManagementController& controller, const PLACE& place) {
    for (CJsonObject& device : owner.Objects("fruDevices"))
        AddFruDevice(std::move(device), controller, place);
    for (CJsonObject& device : owner.Objects("eeproms"))
        AddEeprom(std::move(device), controller, place);
}

void CDirectoryLoader::AddFruDevice(CJsonObject device, CManagementController& controller, const PLACE& place) {
    const auto id = device.Require<UINT8>("id");
    std::string name = "FRU " + std::to_string(id);
    FruDeviceOptions options;
    device.Read("name", name);
    device.Read("maxRead", options.maxRead);
    device.Read("maxWrite", options.maxWrite);
    device.Read("readRefusal", options.readRefusal);
    device.Read("writeRefusal", options.writeRefusal);
    device.Read("readOnly", options.readOnly);
    device.Read("partialReads", options.partialReads);
    device.Read("failure", options.failure);
    CheckName(device, name);
    if (controller.FruDevices().contains(id))
        device.Fail("id", "is used twice");
    controller.AddFruDevice(id, Open(device, "image"), options);
    device.RequireAllUsed();
    // Its controller's own record announces device 0.
    if (id != 0)
        m_records.push_back(LogicalFruRecord(place.address, place.channel, id, name));
}

void CDirectoryLoader::AddEeprom(CJsonObject device, CManagementController& controller, const PLACE& place) {
    const auto bus = device.Require<UINT8>("bus");
    const auto address = device.Require<UINT8>("address");
    std::string name = "EEPROM " + std::to_string(bus) + '-' + HexText(address);
    std::string kind = "AT24";
    EepromOptions options;
    device.Read("name", name);
    device.Read("kind", kind);
    device.Read("maxRead", options.maxRead);
    device.Read("maxWrite", options.maxWrite);
    device.Read("readRefusal", options.readRefusal);
    device.Read("writeRefusal", options.writeRefusal);
    device.Read("pageSize", options.pageSize);
    device.Read("failure", options.failure);
    CheckName(device, name);
    const bool isThermometer = kind == "DS1624S";
    if (!isThermometer && kind != "AT24")
        device.Fail("kind", "must be AT24 or DS1624S");
    controller.AddEeprom(bus, address, isThermometer ? EEPROM_KIND::DS1624S : EEPROM_KIND::AT24, Open(device, "image"),
                         options);
    device.RequireAllUsed();
    const UINT8 deviceType = isThermometer ? DEVICE_TYPE_DS1624 : DEVICE_TYPE_EEPROM;
    if (bus < MOST_BUSES)
        m_records.push_back(PhysicalFruRecord(place.address, place.channel, bus, address, deviceType, name));
}

void CDirectoryLoader::AddController(CJsonObject object) {
    const PLACE place{object.Require<UINT8>("channel"), object.Require<UINT8>("address")};
    if (place.channel > 0x0F)
        object.Fail("channel", "must be a number from 0 to 15");
    std::string name = "Controller " + HexText(place.address);
    object.Read("name", name);
    CheckName(object, name);
    CManagementController& controller = m_bmc.AddController(place.channel, place.address);
    ReadIdentity(object, controller);
    m_records.push_back(ControllerRecord(place.address, place.channel, CONTROLLER_CAPABILITIES, name));
    AddDevices(object, controller, place);
    object.RequireAllUsed();
}

void CDirectoryLoader::AddFault(CJsonObject object) {
    const auto action = object.Require<std::string>("action");
    const ACTION_NAME* found = nullptr;
    for (const ACTION_NAME& candidate : ACTION_NAMES)
        if (action == candidate.name)
            found = &candidate;
    if (!found)
        object.Fail("action", "\"" + action + "\" is not a known action");
    FaultRule rule{.action = found->action, .value = found->value};
    object.Read("value", rule.value);
    rule.netFn = object.FindNumber<UINT8>("netFn");
    rule.cmd = object.FindNumber<UINT8>("cmd");
    rule.device = object.FindNumber<UINT8>("device");
    rule.controller = object.FindNumber<UINT8>("controller");
    object.Read("occurrence", rule.occurrence);
    object.Read("times", rule.times);
    object.RequireAllUsed();
    m_bmc.AddFault(rule);
}

void CDirectoryLoader::AddSdrs(CJsonObject object) {
    bool generate = !object.Has("file");
    unsigned int sensors = 0;
    UINT8 maxRead = 32;
    object.Read("generate", generate);
    object.Read("sensors", sensors);
    object.Read("maxRead", maxRead);
    m_bmc.Sdrs().SetMaxRead(maxRead);
    if (object.Has("file"))
        AddSdrFile(object);
    object.RequireAllUsed();
    if (sensors > 0xFF)
        object.Fail("sensors", "must be a number from 0 to 255");
    if (generate)
        AddGeneratedSdrs(sensors);
}

/// The records stand one behind the other, each as long as its header says.
void CDirectoryLoader::AddSdrFile(CJsonObject& object) {
    constexpr std::size_t headerSize = 5;
    const BYTES bytes = Open(object, "file").Bytes();
    for (std::size_t start = 0; start < bytes.size();) {
        const std::size_t rest = bytes.size() - start;
        const std::size_t size = rest < headerSize ? rest : std::min(rest, headerSize + bytes[start + headerSize - 1]);
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(start);
        m_bmc.AddSdr(BYTES(first, first + static_cast<std::ptrdiff_t>(size)));
        start += size;
    }
}

/// One sensor record behind each locator as long as there are any, the rest at the end.
void CDirectoryLoader::AddGeneratedSdrs(unsigned int sensors) {
    const std::size_t rounds = std::max<std::size_t>(m_records.size(), sensors);
    for (std::size_t round = 0; round < rounds; ++round) {
        if (round < m_records.size())
            m_bmc.AddSdr(m_records[round]);
        if (round >= sensors)
            continue;
        const auto number = static_cast<UINT8>(round + 1);
        const std::string name = "Temp " + std::to_string(number);
        m_bmc.AddSdr(round % 2 == 0 ? FullSensorRecord(number, name) : CompactSensorRecord(number, name));
    }
}

void CDirectoryLoader::CheckName(const CJsonObject& object, const std::string& name) const {
    if (name.size() > 16)
        object.Fail("name", "has at most 16 characters");
}

CStorage CDirectoryLoader::Open(CJsonObject& object, const char* key) const {
    const auto name = object.Require<std::string>(key);
    if (name.empty() || std::filesystem::path(name).filename() != name)
        object.Fail(key, "must name a file in the directory");
    try {
        return CStorage(m_directory / name);
    } catch (const std::runtime_error& error) {
        object.Fail(key, error.what());
    }
}

} // namespace

std::unique_ptr<CSimulatedBmc> LoadBmcDirectory(const std::filesystem::path& directory) {
    auto bmc = std::make_unique<CSimulatedBmc>();
    CDirectoryLoader(directory, *bmc).Load();
    return bmc;
}

} // namespace Frudata_Sim
