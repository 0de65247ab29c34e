#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicenames.h"
#include "tools/fructl/devicescan.h"
#include "tools/fructl/library.h"
#include "tools/fructl/loaded.h"
#include "tools/fructl/open.h"
#include "tools/fructl/session.h"
#include "tools/fructl/way.h"

#include "frudata/bmclib.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

using nlohmann::json;

/// One device of a scan: what it holds, or why it could not be read.
struct SCANNED {
    CONTENTS contents;
    std::string error;

    bool IsReadable() const { return error.empty() && !contents.fru.IsDamaged(); }
};

SCANNED LoadOne(const SOURCE& source) {
    try {
        return {Open(source), {}};
    } catch (const CToolError& error) {
        return {{source, {}, {}}, error.m_why};
    }
}

json JsonOne(const SCANNED& one) {
    json result = JsonReport(one.contents);
    if (!one.error.empty()) {
        result["status"] = "unreadable";
        result["problems"] = {{{"area", "header"}, {"code", "unreadable"}, {"text", one.error}}};
    }
    return result;
}

/// What a FRU is, in a few words: manufacturer, name and serial number of its product or board.
std::string Summary(const FRU& fru) {
    std::string text;
    for (const auto& names :
         {std::vector<const char*>{"product.manufacturer", "product.name", "product.serial-number"},
          std::vector<const char*>{"board.manufacturer", "board.product-name", "board.serial-number"}}) {
        for (const char* name : names)
            if (const FIELD* field = fru.Find(ParseFieldName(name)); field && !field->data.empty())
                text += (text.empty() ? "" : " ") + DecodeValue(*field);
        if (!text.empty())
            return text;
    }
    return "(no product or board name)";
}

std::vector<std::string> Row(const SCANNED& one) {
    const SOURCE& source = one.contents.source;
    std::vector<std::string> row = {source.label, AddressText(source.address)};
    if (one.IsReadable()) {
        row.push_back(Colored(COLOR::GREEN, "ok"));
        row.push_back(Summary(one.contents.fru));
    } else {
        row.push_back(Colored(COLOR::RED, one.error.empty() ? "damaged" : "unreadable"));
        row.push_back(one.error.empty() ? one.contents.fru.ProblemText() : one.error);
    }
    return row;
}

void ScanAndLoad(const std::vector<SOURCE>& sources) {
    json frus = json::array();
    std::vector<std::vector<std::string>> rows;
    std::size_t readable = 0;
    for (const SOURCE& source : sources) {
        const SCANNED one = LoadOne(source);
        readable += one.IsReadable() ? 1 : 0;
        if (Settings().json)
            frus.push_back(JsonOne(one));
        else
            rows.push_back(Row(one));
    }
    if (Settings().json)
        PrintJson({{"frus", std::move(frus)}, {"total", sources.size()}, {"readable", readable}});
    else
        PrintText(Table(rows));
    if (readable != sources.size())
        throw CToolError(EXIT_PARTIAL, "scan",
                         fmt::format("{} of {} FRUs could not be read", sources.size() - readable, sources.size()));
}

void Scan(bool load) {
    const std::vector<SOURCE> sources = ScanDevices();
    KeepDeviceNames(sources);
    if (sources.empty())
        Note("the SDR repository names no FRU device (one record of an unknown type hides them all)");
    if (load)
        return ScanAndLoad(sources);
    json frus = json::array();
    std::vector<std::vector<std::string>> rows;
    for (const SOURCE& source : sources) {
        frus.push_back({{"source", JsonSource(source)}});
        rows.push_back({source.label, DeviceText(source)});
    }
    if (Settings().json)
        PrintJson({{"frus", std::move(frus)}, {"total", sources.size()}});
    else
        PrintText(Table(rows));
}

/// Exit status and text of a probe.
json ProbeInChild(const SOURCE& device) {
    const CLibrary library(CLibrary::SYSTEM_BMC);
    const ADDRESS& address = device.address;
    const EFI_STATUS status =
        library->FindFruAtAddressAndChecksumHeader(library.Table(), address.type, address.lun, address.deviceAddress,
                                                   address.bus, address.controller, address.deviceId);
    const bool damaged = status == FRU_STATUS_NOT_IPMI_FRU || status == FRU_STATUS_CHECKSUM_ERROR;
    library.Check(status, damaged ? EXIT_DAMAGED : EXIT_DEVICE, device.label);
    return true;
}

void Probe(const SOURCE& device) {
    RunSession(device.label, [&](const PROGRESS&) { return ProbeInChild(device); });
    if (Settings().json)
        PrintJson({{"device", JsonSource(device)}, {"valid", true}});
    else
        PrintText(fmt::format("{}: valid FRU header\n", device.label));
}

/// IPMI version, BMC type and the way taken.
json InfoInChild() {
    const CLibrary library(CLibrary::SYSTEM_BMC);
    library.Check(library->LoadPropertiesFromSystem(library.Table()), EXIT_DEVICE, "BMC");
    UINT32 type = BMC_TYPE_UNKNOWN;
    UINT32 version = 0;
    if (const int status = GetBmcTypeVersion(&type, &version); status != 0)
        throw CToolError(EXIT_DEVICE, "BMC", TransportText(status));
    json titles = json::array();
    for (unsigned index = 0; index < 3; ++index) {
        const WCHAR* text = nullptr;
        library.Check(library->SelectProperty(library.Table(), index), EXIT_DEVICE, "BMC");
        library.Check(library->GetPropertyTitle(library.Table(), text), EXIT_DEVICE, "BMC");
        titles.push_back(Utf8(text));
    }
    return {{"type", type}, {"version", version}, {"titles", titles}, {"transport", CurrentWay().Description()}};
}

void Info() {
    const json bmc = RunSession("BMC", [](const PROGRESS&) { return InfoInChild(); });
    const std::vector<SOURCE> sources = ScanDevices();
    std::size_t valid = 0;
    for (const SOURCE& source : sources) {
        try {
            RunSession(source.label, [&](const PROGRESS&) { return ProbeInChild(source); });
            ++valid;
        } catch (const CToolError&) {
            // One that does not answer is not counted.
        }
    }
    const std::string version = bmc["version"] == IPMI_VERSION_20   ? "2.0"
                                : bmc["version"] == IPMI_VERSION_15 ? "1.5"
                                                                    : "unknown";
    const std::string type = bmc["type"] == BMC_TYPE_MBMC ? "mini-BMC" : "BMC";
    if (Settings().json)
        return PrintJson({{"ipmiVersion", version},
                          {"bmcType", type},
                          {"transport", bmc["transport"]},
                          {"frus", sources.size()},
                          {"validFrus", valid}});
    const auto title = [&](std::size_t index, const char* fallback) {
        const std::string text = bmc["titles"][index];
        return text.empty() ? std::string(fallback) : text;
    };
    PrintText(Table({{title(0, "IPMI version"), version},
                     {"BMC type", type},
                     {"Transport", bmc["transport"]},
                     {title(1, "FRU devices"), std::to_string(sources.size())},
                     {title(2, "FRU devices with a valid header"), std::to_string(valid)}}));
}

} // namespace

void AddScan(CLI::App& app) {
    CLI::App& command = NewCommand(app, "scan", "List the FRU devices that the SDR repository names",
                                   "  fructl scan                  names and addresses, for --at\n"
                                   "  fructl scan --load           read each one: one line each\n"
                                   "  fructl scan --load --json    everything, for programs");
    const auto load = std::make_shared<bool>(false);
    const auto last = std::make_shared<bool>(false);
    command.add_flag("--load", *load, "Read each device");
    command.add_flag("--last", *last, "Only the names that the last scan found: nothing is asked");
    command.callback([load, last] { *last ? PrintText(KeptDeviceNames()) : Scan(*load); });
}

void AddProbe(CLI::App& app) {
    CLI::App& command = NewCommand(app, "probe", "Tell whether a device has a valid FRU header",
                                   "  fructl probe --system\n"
                                   "  fructl probe --at type=at24,bus=1,address=0xA0");
    const auto sources = std::make_shared<CSources>(command, "DEVICE", "");
    command.callback([sources] { Probe(sources->TakeDevice()); });
}

void AddInfo(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "info", "Show IPMI version, BMC type, transport and FRU counts", "  fructl info");
    command.callback([] { Info(); });
}

} // namespace Fructl
