#include "tools/fructl/devicesession.h"

#include "tools/fructl/eeprom.h"
#include "tools/fructl/loaded.h"
#include "tools/fructl/session.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Fructl {

namespace {

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

void PrepareSteps(const FRU& fru, const EDITS& edits, const PROGRESS& report) {
    g_steps = {report, {0, HEADER_SIZE}, HEADER_SIZE, 0};
    for (const FRU_AREA id :
         {FRU_AREA_INTERNAL_USE, FRU_AREA_CHASSIS, FRU_AREA_BOARD, FRU_AREA_PRODUCT, FRU_AREA_MULTIRECORD}) {
        // The board area is always written.
        if (const AREA* area = fru.Find(id); area && (edits.Touches(id) || id == FRU_AREA_BOARD))
            g_steps.total += id == FRU_AREA_MULTIRECORD ? edits.multiRecord->size() : area->bytes.size();
        if (id != FRU_AREA_MULTIRECORD)
            g_steps.done.push_back(g_steps.total);
    }
}

} // namespace

BYTES ReadDevice(const SOURCE& source, std::size_t atLeast, const PROGRESS& progress) {
    if (source.isEeprom)
        return CEeprom(source.label).Read();
    return RunSession(
               source.label,
               [&](const PROGRESS& report) {
                   const CLibrary library(CLibrary::SYSTEM_BMC);
                   return json::binary(CDevice(source.address, source.label).ReadContents(atLeast, report));
               },
               progress)
        .get_binary();
}

void WriteDevice(const SOURCE& source, BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress) {
    if (source.isEeprom)
        return CEeprom(source.label).Write(bytes, known, progress);
    RunSession(
        source.label,
        [&](const PROGRESS& report) {
            const CLibrary library(CLibrary::SYSTEM_BMC);
            CDevice(source.address, source.label).Write(bytes, known, report);
            return json();
        },
        progress);
}

void CommitDevice(const CONTENTS& contents, const EDITS& edits, const PROGRESS& progress) {
    const std::string& name = contents.source.label;
    RunSession(
        name,
        [&](const PROGRESS& report) {
            const auto library = LoadedLibrary(contents);
            ApplyEdits(*library, contents.fru, edits);
            PrepareSteps(contents.fru, edits, report);
            (*library)->SetProgressCallback(library->Table(), ReportStep);
            library->Check((*library)->CommitConfigurationToSystem(library->Table()), EXIT_DEVICE, name);
            report(g_steps.total, g_steps.total, "done");
            return json();
        },
        progress);
}

} // namespace Fructl
