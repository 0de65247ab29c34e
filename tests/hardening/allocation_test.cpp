// Every allocation of every operation fails once.
#include "support.h"

#include "frudata/debug.h"
#include "frudata/sdrscan.h"

#include <algorithm>
#include <dlfcn.h>
#include <fstream>
#include <iterator>
#include <new>
#include <vector>

namespace {

constexpr unsigned int MOST_RUNS = 300;
/// The allocation that fails, counted down; 0: none.
unsigned int g_failAt = 0;
/// Those behind it fail, too.
bool g_failsOn = false;

bool Fails() {
    if (g_failAt == 0 || --g_failAt > 0)
        return false;
    g_failAt = g_failsOn ? 1 : 0;
    return true;
}

void* Allocate(std::size_t size) {
    static const auto next = reinterpret_cast<void* (*)(std::size_t)>(dlsym(RTLD_NEXT, "malloc"));
    return next(size);
}

} // namespace

// The library's memory, and the C library's for its sake, comes through malloc; with the sanitizers through the
// operators that do not throw. Those that throw serve the test and the simulated BMC.
extern "C" {
[[gnu::visibility("default")]] void* malloc(std::size_t size) {
    return Fails() ? nullptr : Allocate(size);
}
[[gnu::visibility("default")]] const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0";
}
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Fails() ? nullptr : Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Fails() ? nullptr : Allocate(size);
}
void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}

namespace Frudata_Tests {
namespace {

/// At the level of the debug log that is the parameter: its lines need memory, too. At the default level memory that
/// has run out stays so, and the failure's line lacks it.
class CAllocationTest : public CHardeningTest, public testing::WithParamInterface<unsigned int> {
  protected:
    CAllocationTest() { g_failsOn = GetParam() == 1; }
    template <typename OPERATE> EFI_STATUS AtLevel(OPERATE operate) {
        SetLibDebugLevel(GetParam());
        const EFI_STATUS status = operate();
        SetLibDebugLevel(0);
        return status;
    }

    /// Lets each allocation of `operate` fail, or a sample of them where there are very many. `prepare` runs before,
    /// `check` after each; the operation's statuses are `statuses`, and it works again at once.
    template <typename PREPARE, typename OPERATE, typename CHECK>
    void FailEach(const std::string& title, const std::vector<EFI_STATUS>& statuses, PREPARE prepare, OPERATE operate,
                  CHECK check, unsigned int assertions = 0) {
        prepare();
        g_failAt = 1000000;
        ASSERT_EQ(AtLevel(operate), 0U) << title;
        const unsigned int allocations = 1000000 - g_failAt;
        g_failAt = 0;
        // Odd, so that the two allocations of each line take turns.
        const unsigned int step = allocations / MOST_RUNS * 2 + 1;
        RunInChildren(
            title, allocations / step,
            [&](unsigned int run) {
                prepare();
                g_failAt = 1 + run * step;
                const EFI_STATUS status = AtLevel(operate);
                g_failAt = 0;
                Require(std::count(statuses.begin(), statuses.end(), status) == 1, "status " + StatusText(status));
                check(status);
                prepare();
                Require(operate() == 0, "the library no longer works");
            },
            assertions);
    }

    void LoadAgain() {
        m_table->DeInitialize(m_table);
        Require(m_table->Initialize(m_table, 0) == 0 && Load(BMC_DEVICE) == 0, "no start");
        m_table->SetProgressCallback(m_table, IgnoreProgress);
        Select(0);
    }
};

// The C library does without a buffer for a stream: such a failure shows in no status.
TEST_P(CAllocationTest, EveryOperation) {
    const auto again = [this] { LoadAgain(); };
    const auto nothing = [](EFI_STATUS) {};
    LoadAgain();
    ASSERT_EQ(m_table->SaveConfigurationToFile(m_table, L"named.fru", nullptr), 0U);
    std::string named = ReadFile("named.fru");
    named.replace(named.find("_FRU_TITLE\t'"), 12, "_FRU_TITLE\t'Title");
    std::ofstream("named.fru") << named;
    const auto loadNamed = [this] { m_table->LoadConfigurationFromFile(m_table, L"named.fru", nullptr); };
    loadNamed();
    ASSERT_EQ(m_table->SaveConfigurationToFile(m_table, L"saved.fru", nullptr), 0U);
    const std::string saved = ReadFile("saved.fru");
    FailEach(
        "Initialize", {FRU_STATUS_SUCCESS, FRU_STATUS_INIT_FAILED}, [this] { m_table->DeInitialize(m_table); },
        [this] { return m_table->Initialize(m_table, 0); }, nothing);
    FailEach(
        "Initialize, again", {FRU_STATUS_SUCCESS, FRU_STATUS_INIT_FAILED}, again,
        [this] { return m_table->Initialize(m_table, 0); },
        [this](EFI_STATUS status) {
            bool isLoaded = false;
            Require(m_table->IsLoaded(m_table, isLoaded) == (status == 0 ? 0 : FRU_STATUS_NOT_INITIALIZED),
                    "half a start");
        });
    FailEach(
        "SetLanguageLocale", {FRU_STATUS_SUCCESS, FRU_STATUS_MEMORY_ALLOCATION_ERROR, FRU_STATUS_STRING_RESOURCE_ERROR},
        again, [this] { return m_table->SetLanguageLocale(m_table, L"en", L"us"); },
        [this](EFI_STATUS) {
            const WCHAR* name = nullptr;
            m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD);
            Require(m_table->GetAreaName(m_table, name) == 0 && name, "the old texts are gone");
        });
    FailEach(
        "LoadFruAtAddress",
        {FRU_STATUS_SUCCESS, FRU_STATUS_MEMORY_ALLOCATION_ERROR, FRU_STATUS_BUFFER_TOO_SMALL, FRU_STATUS_OUT_OF_MEMORY,
         FRU_STATUS_INVALID_BOARD_AREA, FRU_STATUS_INVALID_PRODUCT_AREA, FRU_STATUS_INVALID_CHASSIS_AREA},
        again, [this] { return Load(BMC_DEVICE); },
        [this](EFI_STATUS status) { Require(NumberOfFrus() == (status == 0 ? 2U : 1U), "the list is wrong"); });
    FailEach(
        "LoadConfigurationFromSystem", {FRU_STATUS_SUCCESS, FRU_STATUS_OUT_OF_MEMORY}, again,
        [this] { return m_table->LoadConfigurationFromSystem(m_table); }, nothing);
    FailEach(
        "LoadPropertiesFromSystem", {FRU_STATUS_SUCCESS}, again,
        [this] { return m_table->LoadPropertiesFromSystem(m_table); }, nothing);
    FailEach(
        "SaveConfigurationToFile",
        {FRU_STATUS_SUCCESS, FRU_STATUS_OUT_OF_MEMORY, FRU_STATUS_FILE_CREATE_ERROR, FRU_STATUS_FILE_WRITE_ERROR},
        loadNamed, [this] { return m_table->SaveConfigurationToFile(m_table, L"saved.fru", nullptr); },
        [&](EFI_STATUS status) {
            Require(status != 0 || ReadFile("saved.fru") == saved, "a file that lacks something");
        });
    FailEach(
        "LoadConfigurationFromFile", {FRU_STATUS_SUCCESS, FRU_STATUS_OUT_OF_MEMORY, FRU_STATUS_FILE_READ_ERROR}, again,
        [this] { return m_table->LoadConfigurationFromFile(m_table, L"named.fru", nullptr); }, nothing,
        2); // the file in memory is asserted: alone, and where the buffer to read it has failed before
    FailEach(
        "CommitConfigurationToSystem", {FRU_STATUS_SUCCESS}, again,
        [this] { return m_table->CommitConfigurationToSystem(m_table); }, nothing);
    FailEach(
        "ScanSystemForFruLocators", {FRU_STATUS_SUCCESS}, again,
        [] {
            OrderedList<FRU_LOCATOR*> list;
            OrderedList<FRU_LOCATOR*>* locators = &list;
            const EFI_STATUS status = ScanSystemForFruLocators(locators);
            while (FRU_LOCATOR* locator = list.First())
                const std::unique_ptr<FRU_LOCATOR> removed(list.Remove(locator));
            return status;
        },
        nothing);
}

TEST_P(CAllocationTest, EveryValue) {
    constexpr FRU_AREA AREAS[] = {FRU_AREA_INTERNAL_USE, FRU_AREA_CHASSIS, FRU_AREA_BOARD, FRU_AREA_PRODUCT};
    bool isMissing = false;
    for (const FRU_AREA area : AREAS) {
        FailEach(
            "text of area " + std::to_string(area), {FRU_STATUS_SUCCESS},
            [this, area] {
                LoadAgain();
                Select(0);
                m_table->SelectAreaEnum(m_table, area);
            },
            [&, this] {
                const WCHAR* text = nullptr;
                unsigned int fields = 0;
                EFI_STATUS status = m_table->GetNumberOfFields(m_table, fields);
                isMissing = false;
                for (unsigned int field = 0; field < fields && status == 0; ++field) {
                    m_table->SelectFieldInteger(m_table, field);
                    status = m_table->GetFieldStringValue(m_table, text);
                    isMissing = isMissing || !text;
                }
                return status;
            },
            [&, this](EFI_STATUS) {
                const WCHAR* message = nullptr;
                m_table->GetLastErrorMessage(m_table, message);
                Require(!isMissing || message || area == FRU_AREA_CHASSIS, "a missing text without a message");
            },
            area == FRU_AREA_INTERNAL_USE ? 1 : 0);
    }
    std::string before;
    const auto select = [&](FRU_AREA area) {
        LoadAgain();
        before = Snapshot();
        Select(0);
        m_table->SelectAreaEnum(m_table, area);
    };
    // A line of the log that is lost is no failure.
    const auto orSuccess = [](EFI_STATUS status) {
        return GetParam() < 3 ? std::vector{status} : std::vector{status, EFI_STATUS{FRU_STATUS_SUCCESS}};
    };
    FailEach(
        "SetFieldDataValue", orSuccess(FRU_STATUS_SET_FIELD_FAILED), [&] { select(FRU_AREA_PRODUCT); },
        [this] { return Set(1, "name"); },
        [&](EFI_STATUS status) {
            Require(status == 0 || Snapshot() == before, "a refused value has changed the image");
        });
    FailEach(
        "SetAreaData", orSuccess(FRU_STATUS_OUT_OF_MEMORY), [&] { select(FRU_AREA_MULTIRECORD); },
        [this] {
            const UINT8 records[] = {0xC0, 0x02, 0x01, 0xF6, 0x47, 0x0A, 0xC0, 0x82, 0x01, 0xF6, 0xC7, 0x0A};
            return m_table->SetAreaData(m_table, records, sizeof records);
        },
        [](EFI_STATUS) {});
}

INSTANTIATE_TEST_SUITE_P(Levels, CAllocationTest, testing::Values(0U, 1U, 3U));

} // namespace
} // namespace Frudata_Tests
