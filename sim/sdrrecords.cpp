#include "sim/sdrrecords.h"

#include <stdexcept>

namespace Frudata_Sim {

namespace {

constexpr std::size_t SDR_HEADER_SIZE = 5;
constexpr std::size_t LONGEST_NAME = 16;
constexpr UINT8 SDR_VERSION = 0x51;
constexpr UINT8 TEXT_TYPE = 0xC0;

enum : UINT8 {
    ENTITY_SYSTEM_BOARD = 0x07,
    ENTITY_MANAGEMENT_CONTROLLER = 0x2E
};

/// Completes a record whose fixed part ends with its ID string's type/length byte.
BYTES Named(BYTES record, std::string_view name) {
    if (name.size() > LONGEST_NAME)
        throw std::invalid_argument("an SDR's ID string has at most 16 characters");
    record.push_back(static_cast<UINT8>(TEXT_TYPE | name.size()));
    Append(record, BYTES(name.begin(), name.end()));
    record[4] = static_cast<UINT8>(record.size() - SDR_HEADER_SIZE);
    return record;
}

BYTES Sensor(UINT8 recordType, std::size_t fixedSize, UINT8 sensor, std::string_view name) {
    BYTES record{0, 0, SDR_VERSION, recordType, 0, 0x20, 0, sensor, ENTITY_SYSTEM_BOARD, 1, 0x7F, 0x68, 0x01, 0x01};
    record.resize(fixedSize - 1);
    return Named(std::move(record), name);
}

} // namespace

BYTES LogicalFruRecord(UINT8 controller, UINT8 channel, UINT8 fruId, std::string_view name) {
    return Named({0, 0, SDR_VERSION, 0x11, 0, controller, fruId, 0x80, static_cast<UINT8>(channel << 4), 0,
                  DEVICE_TYPE_FRU, 0, ENTITY_SYSTEM_BOARD, 1, 0},
                 name);
}

BYTES PhysicalFruRecord(UINT8 controller, UINT8 channel, UINT8 bus, UINT8 address, UINT8 deviceType,
                        std::string_view name) {
    return Named({0, 0, SDR_VERSION, 0x11, 0, controller, address, static_cast<UINT8>(bus & 0x07),
                  static_cast<UINT8>(channel << 4), 0, deviceType, 0, ENTITY_SYSTEM_BOARD, 1, 0},
                 name);
}

BYTES ControllerRecord(UINT8 address, UINT8 channel, UINT8 capabilities, std::string_view name) {
    return Named(
        {0, 0, SDR_VERSION, 0x12, 0, address, channel, 0, capabilities, 0, 0, 0, ENTITY_MANAGEMENT_CONTROLLER, 1, 0},
        name);
}

BYTES FullSensorRecord(UINT8 sensor, std::string_view name) {
    return Sensor(0x01, 48, sensor, name);
}

BYTES CompactSensorRecord(UINT8 sensor, std::string_view name) {
    return Sensor(0x02, 32, sensor, name);
}

BYTES OemRecord(const BYTES& data) {
    BYTES record{0, 0, SDR_VERSION, 0xC0, static_cast<UINT8>(data.size())};
    Append(record, data);
    return record;
}

} // namespace Frudata_Sim
