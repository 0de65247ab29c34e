// The string table loader: input is a control byte and the table file.
#include "common/lasterror.h"
#include "fuzz/support.h"

#include <string_view>

namespace {

using namespace Frudata_Private;

constexpr UINT8 REPAIR = 1;
constexpr UINT8 CACHE = 2;
/// Numbers asked for, beyond the largest that has a name.
constexpr UINT32 MOST_STRINGS = 150;

/// Records text `id` with arguments of the types that `letters` stand for, as its users in the library do.
void Record(STRING_ID id, std::string_view letters) {
    const UINT32 number = 0xFFFFFFFF;
    if (letters.empty())
        RecordLastError(id);
    else if (letters == "s")
        RecordLastError(id, "file");
    else if (letters == "w")
        RecordLastError(id, L"text");
    else if (letters == "ws")
        RecordLastError(id, L"text", "file");
    else if (letters == "uu")
        RecordLastError(id, number, number);
    else if (letters == "uuuu")
        RecordLastError(id, number, number, number, number);
    else
        RecordLastError(id, number, number, number, number, number, number);
}

void RecordAll() {
#define FRU_RECORD(number, name, arguments) Record(STRING_##name, arguments);
    FRU_STRING_IDS(FRU_RECORD)
#undef FRU_RECORD
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    using namespace Frudata_Fuzz;
    SetLibDebugLevel(0);
    CInput input(data, size);
    const UINT8 control = input.Byte();
    BYTES file = input.Rest();
    if (control & REPAIR)
        CompleteSum(file);
    SetInputFile(file);
    auto strings = std::make_unique<CStringResource>();
    if (strings->Initialize(INPUT_PATH, 0) != 0 || ((control & CACHE) && strings->CacheAll() != 0))
        return 0;
    const auto previous = std::move(g_pStringResource);
    g_pStringResource = std::move(strings);
    RecordAll();
    for (UINT32 id = 0; id < MOST_STRINGS; ++id) {
        GetText(id);
        g_pStringResource->ReleaseString(id);
    }
    g_pStringResource->ReleaseAll();
    RecordAll();
    g_pStringResource.reset();
    return 0;
}
