#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicenames.h"
#include "tools/fructl/devicescan.h"
#include "tools/fructl/fieldname.h"
#include "tools/fructl/library.h"
#include "tools/fructl/open.h"
#include "tools/fructl/session.h"
#include "tools/fructl/way.h"
#include "tools/fructl/words/words.h"

#include "frudata/bmclib.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

using nlohmann::json;

/// One device of a scan: its contents, or why it could not be read.
struct SCANNED {
    CONTENTS contents;
    std::string error;

    bool IsReadable() const { return error.empty() && contents.fru.IsSound(); }
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
        result["problems"] = {{{"area", "header"}, {"code", "unreadable"}, {"text", Spoken(one.error)}}};
    }
    return result;
}

std::string Serial(const FRU& fru) {
    return FirstText(fru, {"product.serial-number", "board.serial-number", "chassis.serial-number"});
}

std::string AssetTag(const FRU& fru) {
    return FirstText(fru, {"product.asset-tag"});
}

std::string Status(const SCANNED& one) {
    return one.error.empty() ? std::string(StatusName(one.contents.fru)) : "unreadable";
}

std::string Problem(const SCANNED& one) {
    return one.error.empty() ? ProblemText(one.contents.fru) : one.error;
}

/// Name, address, product, serial number, asset tag; the status behind them may pass the end of the line.
std::vector<std::string> Row(const SCANNED& one) {
    const FRU& fru = one.contents.fru;
    const SOURCE& source = one.contents.source;
    const std::string product = ProductText(fru);
    return {source.label,
            AddressText(source.address),
            product.empty() ? "-" : Printable(product),
            Serial(fru).empty() ? "-" : Printable(Serial(fru)),
            AssetTag(fru).empty() ? "-" : Printable(AssetTag(fru)),
            one.IsReadable() ? Say("ok") : fmt::format("{}: {}", Word(Status(one)), Spoken(Problem(one)))};
}

constexpr std::size_t STATUS_COLUMN = 5;

std::string ScanTable(const std::vector<SCANNED>& frus) {
    std::vector<std::vector<std::string>> rows = {
        {Say("NAME"), Say("ADDRESS"), Say("PRODUCT"), Say("SERIAL"), Say("ASSET TAG"), Say("STATUS")}};
    for (const SCANNED& one : frus)
        rows.push_back(Row(one));
    if (const auto width = TerminalWidth())
        FitTable(rows, *width, {0, 1, 2, 3, 4, STATUS_COLUMN});
    for (std::size_t row = 1; row < rows.size(); ++row)
        rows[row][STATUS_COLUMN] =
            Colored(frus[row - 1].IsReadable() ? COLOR::GREEN : COLOR::RED, rows[row][STATUS_COLUMN]);
    return Table(rows);
}

/// RFC 4180: in quotes if it has a comma, a quote or a line end.
std::string CsvLine(const std::vector<std::string>& cells) {
    std::string line;
    for (const std::string& cell : cells) {
        std::string quoted = "\"";
        for (const char character : cell)
            quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
        const bool isPlain = cell.find_first_of(",\"\r\n") == std::string::npos;
        line += (line.empty() ? "" : ",") + (isPlain ? cell : quoted + "\"");
    }
    return line + "\r\n";
}

std::string ScanCsv(const std::vector<SCANNED>& frus) {
    std::string text = CsvLine({"name", "address", "status", "manufacturer", "product", "part-number", "serial-number",
                                "asset-tag", "problem"});
    for (const SCANNED& one : frus) {
        const FRU& fru = one.contents.fru;
        text += CsvLine({one.contents.source.label, AddressText(one.contents.source.address), Status(one),
                         FirstText(fru, {"product.manufacturer", "board.manufacturer"}),
                         FirstText(fru, {"product.name", "board.product-name"}),
                         FirstText(fru, {"product.part-number", "board.part-number"}), Serial(fru), AssetTag(fru),
                         Spoken(Problem(one))});
    }
    return text;
}

void ScanAndLoad(const std::vector<SOURCE>& sources, bool csv) {
    std::vector<SCANNED> all;
    json frus = json::array();
    std::size_t readable = 0;
    for (const SOURCE& source : sources) {
        all.push_back(LoadOne(source));
        readable += all.back().IsReadable() ? 1 : 0;
        if (Settings().json)
            frus.push_back(JsonOne(all.back()));
    }
    if (Settings().json)
        PrintJson({{"frus", std::move(frus)}, {"total", sources.size()}, {"readable", readable}});
    else
        PrintText(csv ? ScanCsv(all) : ScanTable(all));
    if (readable != sources.size())
        throw CToolError(EXIT_PARTIAL, "scan",
                         fmt::format("{} of {} FRUs could not be read", sources.size() - readable, sources.size()));
}

struct SCAN_OPTIONS {
    bool load = false;
    bool csv = false;
    bool last = false;
};

void Scan(const SCAN_OPTIONS& options) {
    if (options.csv && (!options.load || Settings().json))
        throw CToolError(EXIT_USAGE, "--csv", "is a form of --load, beside --json");
    if (options.last)
        return PrintText(KeptDeviceNames());
    const std::vector<SOURCE> sources = ScanDevices();
    KeepDeviceNames(sources);
    if (sources.empty())
        Note("the SDR repository names no FRU device (one record of an unknown type hides them all)");
    if (options.load)
        return ScanAndLoad(sources, options.csv);
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
json ProbeInChild(const CLibrary& library, const SOURCE& device) {
    const ADDRESS& address = device.address;
    const EFI_STATUS status =
        library->FindFruAtAddressAndChecksumHeader(library.Table(), address.type, address.lun, address.deviceAddress,
                                                   address.bus, address.controller, address.deviceId);
    const bool damaged = status == FRU_STATUS_NOT_IPMI_FRU || status == FRU_STATUS_CHECKSUM_ERROR;
    library.Check(status, damaged ? EXIT_DAMAGED : EXIT_DEVICE, device.label);
    return true;
}

void Probe(const SOURCE& device) {
    RunOnBmc(device.label, [&](const CLibrary& library, const PROGRESS&) { return ProbeInChild(library, device); });
    if (Settings().json)
        PrintJson({{"device", JsonSource(device)}, {"valid", true}});
    else
        PrintText(fmt::format("{}: {}\n", ShownLabel(device), Say("valid FRU header")));
}

/// IPMI version, BMC type and the way taken.
json InfoInChild(const CLibrary& library) {
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
    const json bmc = RunOnBmc("BMC", [](const CLibrary& library, const PROGRESS&) { return InfoInChild(library); });
    const std::vector<SOURCE> sources = ScanDevices();
    std::size_t valid = 0;
    for (const SOURCE& source : sources) {
        try {
            RunOnBmc(source.label,
                     [&](const CLibrary& library, const PROGRESS&) { return ProbeInChild(library, source); });
            ++valid;
        } catch (const CToolError&) {
            // A silent one does not count.
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
    PrintText(Table({{title(0, "IPMI version"), std::string(Word(version))},
                     {Say("BMC type"), type},
                     {Say("Transport"), Spoken(std::string(bmc["transport"]))},
                     {title(1, "FRU devices"), std::to_string(sources.size())},
                     {title(2, "FRU devices with a valid header"), std::to_string(valid)}}));
}

} // namespace

void AddScan(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "scan", "List the FRU devices that the SDR repository names",
                   "  fructl scan                  names and addresses, for --at\n"
                   "  fructl scan --load           read each one: what it is, serial number, asset tag\n"
                   "  fructl scan --load --csv     the same for a spreadsheet\n"
                   "  fructl scan --load --json    everything, for programs");
    const auto options = std::make_shared<SCAN_OPTIONS>();
    CLI::Option* load = command.add_flag("--load", options->load, "Read each device");
    command.add_flag("--csv", options->csv, "With --load: comma-separated values with a heading, for spreadsheets");
    command.add_flag("--last", options->last, "Only the names that the last scan found: nothing is asked")
        ->excludes(load);
    command.callback([options] { Scan(*options); });
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
