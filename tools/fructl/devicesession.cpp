#include "tools/fructl/devicesession.h"

#include "tools/fructl/eeprom.h"
#include "tools/fructl/loaded.h"
#include "tools/fructl/session.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>

namespace Fructl {

namespace {

using FruImage::STEP;
using nlohmann::json;

/// What the library reports while it writes: one call when it begins, then one before the header is
/// followed by each of the areas. The callback is a plain function, so the state is global; it lives in a
/// child process with one commit.
struct COMMIT_STEPS {
    PROGRESS report;
    std::vector<std::size_t> done; ///< bytes written when each call comes
    std::size_t total = 0;
    std::size_t next = 0;
};
COMMIT_STEPS g_steps;

unsigned int ReportStep(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int, unsigned int) {
    if (type == PROGRESS_CALLBACK_WRITE && g_steps.report)
        g_steps.report(g_steps.done[std::min(g_steps.next++, g_steps.done.size() - 1)], g_steps.total, Utf8(message));
    return 0;
}

void PrepareSteps(const FRU& fru, const LIBRARY_CHANGES& changes, const PROGRESS& report) {
    g_steps = {report, {0, FruImage::HEADER_SIZE}, FruImage::HEADER_SIZE, 0};
    for (const AREA_ROW& row : Areas()) {
        // The board area is always written.
        if (const AREA* area = fru.Find(row.id); area && (changes.Touches(row.id) || row.id == AREA_ID::BOARD))
            g_steps.total += row.id == AREA_ID::MULTIRECORD ? changes.multiRecord->size() : area->length;
        if (row.id != AREA_ID::MULTIRECORD)
            g_steps.done.push_back(g_steps.total);
    }
}

json JsonDevice(const DEVICE_BYTES& device) {
    json ranges = json::array();
    for (const RANGE& range : device.read)
        ranges.push_back({range.offset, range.length});
    return {{"bytes", json::binary(device.bytes)},
            {"read", std::move(ranges)},
            {"sizeKnown", device.sizeKnown},
            {"failure", device.failure}};
}

DEVICE_BYTES DeviceOfJson(const json& result) {
    DEVICE_BYTES device{result.at("bytes").get_binary(), {}, result.at("sizeKnown"), result.at("failure")};
    for (const json& range : result.at("read"))
        device.read.push_back({range[0], range[1]});
    return device;
}

/// Each step is a write of the whole image of which only the step's bytes are new.
void MakeSteps(const std::vector<STEP>& steps, BYTES before,
               const std::function<void(BYTE_VIEW after, BYTE_VIEW known)>& write, const PROGRESS& report) {
    std::size_t total = 0;
    for (const STEP& step : steps)
        total += step.bytes.size();
    std::size_t done = 0;
    BYTES after = before;
    for (const STEP& step : steps) {
        report(done, total, step.what);
        FruImage::Copy(after, step.offset, step.bytes);
        write(after, before);
        before = after;
        done += step.bytes.size();
    }
    report(total, total, "done");
}

} // namespace

DEVICE_BYTES ReadDevice(const SOURCE& source, READING reading, std::size_t atLeast, const PROGRESS& progress) {
    if (source.isEeprom) {
        BYTES bytes = CEeprom(source.label).Read();
        const std::vector<RANGE> all = {{0, bytes.size()}};
        return {std::move(bytes), all, true, {}};
    }
    const auto read = [&](const PROGRESS& report) {
        return CDevice(source.address, source.label).ReadContents(reading, atLeast, report);
    };
    // Reading is nothing but requests, and a driver carries them out without the library's assertions.
    if (const auto bmc = CBmc::Here())
        return read(progress);
    return DeviceOfJson(RunOnBmc(
        source.label, [&](const CLibrary&, const PROGRESS& report) { return JsonDevice(read(report)); }, progress));
}

void WriteDevice(const SOURCE& source, BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress) {
    if (source.isEeprom)
        return CEeprom(source.label).Write(bytes, known, progress);
    RunOnBmc(
        source.label,
        [&](const CLibrary&, const PROGRESS& report) {
            CDevice(source.address, source.label).Write(bytes, known, report);
            return json();
        },
        progress);
}

void WriteSteps(const SOURCE& source, const std::vector<FruImage::STEP>& steps, const BYTES& before,
                const PROGRESS& progress) {
    if (source.isEeprom) {
        const CEeprom eeprom(source.label);
        return MakeSteps(
            steps, before, [&](BYTE_VIEW after, BYTE_VIEW known) { eeprom.Write(after, known, {}); }, progress);
    }
    RunOnBmc(
        source.label,
        [&](const CLibrary&, const PROGRESS& report) {
            CDevice device(source.address, source.label);
            MakeSteps(
                steps, before, [&](BYTE_VIEW after, BYTE_VIEW known) { device.Write(after, known); }, report);
            return json();
        },
        progress);
}

bool LibraryWrites(const CONTENTS& contents, const LIBRARY_CHANGES& changes, const BYTES& expected) {
    const std::string& name = contents.source.label;
    try {
        return RunSession(name, [&](const PROGRESS&) {
            const auto library = ImageLibrary(contents);
            ApplyChanges(*library, contents.fru, changes);
            library->Check((*library)->CommitConfigurationToSystem(library->Table()), EXIT_REFUSED, name);
            return json(library->Image() == expected);
        });
    } catch (const CToolError&) {
        return false;
    }
}

void CommitDevice(const CONTENTS& contents, const LIBRARY_CHANGES& changes, const PROGRESS& progress) {
    const std::string& name = contents.source.label;
    RunOnBmc(
        name,
        [&](const CLibrary& library, const PROGRESS& report) {
            LoadDevice(library, contents.source);
            ApplyChanges(library, contents.fru, changes);
            PrepareSteps(contents.fru, changes, report);
            library->SetProgressCallback(library.Table(), ReportStep);
            library.Check(library->CommitConfigurationToSystem(library.Table()), EXIT_DEVICE, name);
            report(g_steps.total, g_steps.total, "done");
            return json();
        },
        progress);
}

} // namespace Fructl
