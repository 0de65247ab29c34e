// The table itself: input is a locale, a device's image, a FRU text file, the text of a string table, the BMC's faults,
// and a sequence of operations with their arguments. What the headers promise of each is checked: the status, the
// cursor, and that nothing has changed but what was to change.
#include "common/stringresource.h"
#include "fuzz/tablemodel.h"

#include <clocale>
#include <cstdlib>
#include <sanitizer/lsan_interface.h>
#include <unistd.h>

namespace {

using namespace Frudata_Fuzz;
using namespace Frudata_Private;

constexpr const char* LOCALES[] = {"C", "C.UTF-8", "zh_CN.GB18030", "zh_TW.BIG5", "ja_JP.EUC-JP"};
constexpr UINT8 REPAIR = 0x80;
constexpr UINT8 STRINGS = 139;
/// Enough for each to follow each other; FRUs of a run are compared after each operation.
constexpr unsigned int MOST_OPERATIONS = 150;
constexpr unsigned int MOST_LOADS = 6;

/// A string table in which every text is `text`.
BYTES StringTable(const BYTES& text) {
    BYTES table = {STRINGS, 0, 0, 0};
    const unsigned int start = 4 + 8 * STRINGS, length = static_cast<unsigned int>(text.size() + 1);
    for (unsigned int word = 0; word < 2U * STRINGS; ++word) {
        const unsigned int value = word < STRINGS ? start : length;
        table.insert(table.end(), {static_cast<UINT8>(value), static_cast<UINT8>(value >> 8), 0, 0});
    }
    unsigned int sum = 0;
    for (const UINT8 character : text)
        table.insert(table.end(), {character, 0});
    table.insert(table.end(), {0, 0});
    for (std::size_t index = 0; index < table.size(); index += 2)
        sum += table[index] | static_cast<unsigned int>(table[index + 1]) << 8;
    table.insert(table.end(), {static_cast<UINT8>(0 - sum), static_cast<UINT8>((0 - sum) >> 8)});
    return table;
}

locale_t g_locales[std::size(LOCALES)];

void LoadLocales() {
    setenv("LOCPATH", FRUDATA_LOCALES, 1);
    // The C library loses some of the memory that this takes.
    const __lsan::ScopedDisabler disabler;
    for (std::size_t number = 0; number < std::size(LOCALES); ++number) {
        g_locales[number] = newlocale(LC_ALL_MASK, LOCALES[number], nullptr);
        Require(g_locales[number] != nullptr);
    }
}

void RunOperations(CInput& input) {
    const UINT8 control = input.Byte();
    uselocale(g_locales[control % std::size(LOCALES)]);
    BYTES image = input.Take(input.Byte() * 2U);
    if (control & REPAIR)
        RepairImage(image);
    const BYTES text = input.Take(input.Byte() * 8U);
    const BYTES table = StringTable(input.Take(input.Byte()));
    const BYTES faults = input.Take(input.Byte());
    SetInputFile(text);
    SetTextsFile(table);
    CInput faultInput(faults.data(), faults.size());
    CFaultyBmc bmc(faultInput);
    bmc.Bmc().AddFruDevice(0, image);
    bmc.Bmc().AddController(0, PLACES[1].address).AddFruDevice(0, image);
    for (const FRU_PLACE& place : {PLACES[2], PLACES[3]})
        bmc.Bmc().AddEeprom(place.bus, place.address, static_cast<Frudata_Sim::EEPROM_KIND>(place.type), image);
    CHost host(EmptyLibrary(), input);
    for (unsigned int count = 0; !input.IsEmpty() && count < MOST_OPERATIONS && host.Loads() < MOST_LOADS; ++count)
        host.CallNext();
}

/// The descriptor that the next file gets.
int LowestDescriptor() {
    const int descriptor = dup(STDERR_FILENO);
    close(descriptor);
    return descriptor;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    LoadLocales();
    EmptyLibrary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    const int descriptor = LowestDescriptor();
    Run([&] {
        CInput input(data, size);
        RunOperations(input);
    });
    if (CHost::TakeRestartNeed()) {
        g_pStringResource.reset();
        EmptyLibrary();
    }
    SetLibDebugLevel(0);
    Require(LowestDescriptor() == descriptor);
    return 0;
}
