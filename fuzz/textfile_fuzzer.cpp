// The FRU text file reader: input is the file.
#include "fuzz/support.h"

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    using namespace Frudata_Fuzz;
    return Run(data, size, [&](_EFI_FRU_INTERFACE* table, CInput& edits) {
        SetInputFile({data, size});
        if (table->LoadConfigurationFromFile(table, INPUT_PATH, nullptr) != 0)
            return;
        UseSelectedFru(table, edits);
        SaveAndReload(table, edits);
    });
}
