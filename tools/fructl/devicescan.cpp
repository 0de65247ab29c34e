#include "tools/fructl/devicescan.h"

#include "tools/fructl/eeprom.h"
#include "tools/fructl/library.h"
#include "tools/fructl/session.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"

#include "frudata/sdrscan.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>
#include <memory>

namespace Fructl {

std::vector<SOURCE> ScanDevices() {
    const nlohmann::json found = RunOnBmc("SDR repository", [](const CLibrary&, const PROGRESS&) {
        auto list = std::make_unique<OrderedList<FRU_LOCATOR*>>();
        OrderedList<FRU_LOCATOR*>* pointer = list.get();
        ScanSystemForFruLocators(pointer);
        nlohmann::json rows = nlohmann::json::array();
        while (FRU_LOCATOR* first = list->First()) {
            const std::unique_ptr<FRU_LOCATOR> locator(list->Remove(first));
            rows.push_back({Utf8(locator->name), static_cast<int>(locator->type), locator->lun, locator->deviceAddress,
                            locator->bus, locator->controller, locator->deviceId});
        }
        return rows;
    });
    std::vector<SOURCE> sources;
    for (const nlohmann::json& row : found) {
        ADDRESS address{static_cast<FRU_TYPE>(row[1].get<int>()), row[2], row[3], row[4], row[5], row[6], 0xFF, 0};
        const std::string name = Printable(row[0].get<std::string>());
        sources.push_back({SOURCE::DEVICE, name.empty() ? AddressText(address) : name, name, address});
    }
    return sources;
}

SOURCE DeviceSource(const std::string& text) {
    if (text == "system")
        return {SOURCE::DEVICE, "system FRU", {}, {}};
    if (text.starts_with(EEPROM_KEY))
        return EepromSource(text.substr(std::strlen(EEPROM_KEY)));
    if (IsEepromPath(text))
        return EepromSource(text);
    if (text.find('=') != std::string::npos) {
        const ADDRESS address = ParseAddress(text);
        return {SOURCE::DEVICE, AddressText(address), {}, address};
    }
    const std::vector<SOURCE> found = ScanDevices();
    const auto hasName = [&](const SOURCE& source) { return source.title == text; };
    const auto first = std::find_if(found.begin(), found.end(), hasName);
    if (first == found.end())
        throw CToolError(EXIT_REFUSED, text, "the SDR repository names no FRU device so",
                         "'fructl scan' lists the names");
    if (std::find_if(first + 1, found.end(), hasName) != found.end())
        throw CToolError(EXIT_REFUSED, text, "the SDR repository has more than one FRU device of this name",
                         "use the address that 'fructl scan' shows");
    return *first;
}

} // namespace Fructl
