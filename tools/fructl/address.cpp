#include "tools/fructl/address.h"

#include "tools/fructl/bytes.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace Fructl {

namespace {

constexpr struct {
    const char* word;
    FRU_TYPE type;
} TYPES[] = {{"imb", FRU_TYPE_IMBDEVICE},   {"at24", FRU_TYPE_AT24CO2},        {"ds1624", FRU_TYPE_DS1624S},
             {"mbmc", FRU_TYPE_MBMC_FRU},   {"IMBDEVICE", FRU_TYPE_IMBDEVICE}, {"AT24CO2", FRU_TYPE_AT24CO2},
             {"DS1624S", FRU_TYPE_DS1624S}, {"MBMC_FRU", FRU_TYPE_MBMC_FRU}};

/// The numbers of an address and their keys.
constexpr struct {
    const char* key;
    UINT8 ADDRESS::*number;
} NUMBERS[] = {{"lun", &ADDRESS::lun},     {"address", &ADDRESS::deviceAddress},
               {"bus", &ADDRESS::bus},     {"controller", &ADDRESS::controller},
               {"id", &ADDRESS::deviceId}, {"size-data", &ADDRESS::mbmcSizeData}};

constexpr const char* ADDRESS_HINT =
    "write it as type=imb|at24|ds1624|mbmc,lun=0,address=0x20,bus=0xFF,controller=0x20,"
    "id=0, each part only where it differs";

void SetAddressPart(ADDRESS& address, const std::string& key, const std::string& value) {
    if (key == "type") {
        const auto* row =
            std::find_if(std::begin(TYPES), std::end(TYPES), [&](const auto& one) { return one.word == value; });
        if (row == std::end(TYPES))
            throw CToolError(EXIT_USAGE, "type=" + value, "there is no such way to a device", ADDRESS_HINT);
        address.type = row->type;
        return;
    }
    const auto wide = ParseNumber(value, 0xFFFF);
    if (key == "size-address" && wide) {
        address.mbmcSizeAddress = static_cast<UINT16>(*wide);
        return;
    }
    const auto number = ParseNumber(value, 0xFF);
    for (const auto& [known, member] : NUMBERS)
        if (known == key && number) {
            address.*member = static_cast<UINT8>(*number);
            return;
        }
    throw CToolError(EXIT_USAGE, key + "=" + value, "is no part of a device address", ADDRESS_HINT);
}

} // namespace

ADDRESS ParseAddress(const std::string& text) {
    ADDRESS address;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string part = text.substr(begin, end - begin);
        const std::size_t equals = std::min(part.find('='), part.size());
        SetAddressPart(address, part.substr(0, equals), part.substr(std::min(equals + 1, part.size())));
        begin = end + 1;
    }
    return address;
}

const char* TypeText(FRU_TYPE type) {
    const auto* row =
        std::find_if(std::begin(TYPES) + 4, std::end(TYPES), [&](const auto& one) { return one.type == type; });
    return row == std::end(TYPES) ? "NONE" : row->word;
}

std::string AddressText(const ADDRESS& address) {
    const ADDRESS usual;
    const auto* type =
        std::find_if(std::begin(TYPES), std::end(TYPES), [&](const auto& one) { return one.type == address.type; });
    std::string text = fmt::format("type={}", type->word);
    for (const auto& [key, member] : NUMBERS)
        if (address.*member != usual.*member)
            text += fmt::format(",{}=0x{:02X}", key, address.*member);
    if (address.mbmcSizeAddress != usual.mbmcSizeAddress)
        text += fmt::format(",size-address=0x{:04X}", address.mbmcSizeAddress);
    return text;
}

} // namespace Fructl
