// The table itself: input is a locale, a device's image, a FRU text file, the text of a string table, the BMC's faults,
// and a sequence of operations with their arguments. What the headers promise of each is checked: the status, the
// cursor, and that nothing has changed but what was to change.
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
/// Enough for each to follow each other; FRUs of a run are compared after each operation.
constexpr unsigned int MOST_OPERATIONS = 150;
constexpr unsigned int MOST_LOADS = 6;

locale_t g_locales[std::size(LOCALES)];

void LoadLocales() {
    setenv("LOCPATH", FRUDATA_LOCALES, 1);
#if __has_feature(address_sanitizer)
    // The C library loses some of the memory that this takes.
    const __lsan::ScopedDisabler disabler;
#endif
    for (std::size_t number = 0; number < std::size(LOCALES); ++number) {
        g_locales[number] = newlocale(LC_ALL_MASK, LOCALES[number], nullptr);
        Require(g_locales[number] != nullptr);
    }
}

void RunOperations(_EFI_FRU_INTERFACE* table, CInput& input) {
    const UINT8 control = input.Byte();
    uselocale(g_locales[control % std::size(LOCALES)]);
    BYTES image = input.Take(input.Byte() * 2U);
    if (control & REPAIR)
        RepairImage(image);
    const BYTES file = input.Take(input.Byte() * 8U);
    BYTES text = input.Take(input.Byte());
    const BYTES faults = input.Take(input.Byte());
    SetInputFile(file);
    CInput faultInput(faults.data(), faults.size());
    CFaultyBmc bmc(faultInput);
    bmc.Bmc().AddFruDevice(0, image);
    bmc.Bmc().AddController(0, PLACES[1].address).AddFruDevice(0, image);
    for (const FRU_PLACE& place : {PLACES[2], PLACES[3]})
        bmc.Bmc().AddEeprom(place.bus, place.address, static_cast<Frudata_Sim::EEPROM_KIND>(place.type), image);
    HOST host(table, input, std::move(text));
    for (unsigned int count = 0; !input.IsEmpty() && count < MOST_OPERATIONS && host.loads < MOST_LOADS; ++count)
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
    Run(data, size, RunOperations);
    SetLibDebugLevel(0);
    HOST::Restore();
    Require(LowestDescriptor() == descriptor);
    return 0;
}
