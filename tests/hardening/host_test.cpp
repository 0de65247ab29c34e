// Hosts with threads, with children, and with a library that comes and goes.
#include "frudata/frudata.h"
#include "sim/fronts.h"
#include "sim/samples.h"
#include "tests/support/tablehost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dlfcn.h>
#include <malloc.h>
#include <mutex>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace Frudata_Sim;

/// The library, as a host has it that loads it at run time.
class CLoadedLibrary {
  public:
    CLoadedLibrary() : m_library(dlopen(FRUDATA_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
        if (!m_library)
            throw std::runtime_error(dlerror());
        m_table = Function<_EFI_FRU_INTERFACE* (*)()>("GetFruDataInterface")();
        if (m_table->Initialize(m_table, 0) != 0)
            throw std::runtime_error("not started");
        m_table->SetProgressCallback(m_table, Frudata_Tests::IgnoreProgress);
    }
    ~CLoadedLibrary() {
        m_table->DeInitialize(m_table);
        dlclose(m_library);
    }
    CLoadedLibrary(const CLoadedLibrary&) = delete;
    CLoadedLibrary& operator=(const CLoadedLibrary&) = delete;

    template <typename FUNCTION> FUNCTION Function(const char* name) const {
        return reinterpret_cast<FUNCTION>(dlsym(m_library, name));
    }
    _EFI_FRU_INTERFACE* Table() const { return m_table; }
    /// Loads the BMC's FRU, edits it, and takes it through the file `name`. @return whether all came back
    bool WorkOnce(const WCHAR* name) const;

  private:
    void* m_library;
    _EFI_FRU_INTERFACE* m_table = nullptr;
};

bool CLoadedLibrary::WorkOnce(const WCHAR* name) const {
    static const UINT8 value[] = {'7', '7'};
    const UINT8* data = nullptr;
    unsigned int length = 0;
    if (m_table->LoadConfigurationFromSystem(m_table) != 0 || m_table->SelectList(m_table, FRU_LIST_SYSTEM) != 0 ||
        m_table->SelectFru(m_table, 0) != 0 || m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD) != 0 ||
        m_table->SelectFieldInteger(m_table, 3) != 0 || m_table->SetFieldDataValue(m_table, value, sizeof value) != 0 ||
        m_table->SaveConfigurationToFile(m_table, name, nullptr) != 0 ||
        m_table->LoadConfigurationFromFile(m_table, name, nullptr) != 0 ||
        m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD) != 0 || m_table->SelectFieldInteger(m_table, 3) != 0 ||
        m_table->GetFieldDataValue(m_table, data, length) != 0)
        return false;
    return length == sizeof value && std::equal(value, value + length, data);
}

class CHostTest : public testing::Test {
  protected:
    CHostTest() {
        fs::create_directory_symlink(FRUDATA_TEXTS "/enus", "enus");
        m_bmc.AddFruDevice(0, SampleBmcFru());
        SetCurrentBmc(&m_bmc);
    }
    ~CHostTest() override { SetCurrentBmc(nullptr); }

    Frudata_Tests::CFreshDirectory m_directory;
    CSimulatedBmc m_bmc;
};

/// What a process holds.
struct HOLDINGS {
    std::int64_t descriptors;
    std::int64_t mappings;
    std::size_t memory; ///< 0 with the sanitizers, which keep it and look for leaks themselves
};

HOLDINGS Holdings() {
    std::ifstream maps("/proc/self/maps");
    return {std::distance(fs::directory_iterator("/proc/self/fd"), {}),
            std::count(std::istreambuf_iterator<char>(maps), {}, '\n'), mallinfo2().uordblks};
}

TEST_F(CHostTest, LoadsAndUnloadsAThousandTimes) {
    HOLDINGS first = {};
    for (unsigned int cycle = 0; cycle < 1010; ++cycle) {
        {
            const CLoadedLibrary library;
            ASSERT_TRUE(library.WorkOnce(L"one.fru")) << cycle;
        }
        // The C library and the simulated BMC keep what they take in the first rounds.
        if (cycle == 9)
            first = Holdings();
    }
    const HOLDINGS last = Holdings();
    EXPECT_EQ(last.descriptors, first.descriptors);
    EXPECT_TRUE(last.memory == 0 || last.mappings == first.mappings) << last.mappings << " " << first.mappings;
    // The least that could leak takes 16 bytes a cycle. The allocator's caches, which count as used, fill up meanwhile.
    EXPECT_LT(last.memory, first.memory + 8000);
}

TEST_F(CHostTest, ForksAfterTheStart) {
    const CLoadedLibrary library;
    ASSERT_TRUE(library.WorkOnce(L"before.fru"));
    const pid_t child = fork();
    if (child == 0) {
        bool isGood = true;
        for (unsigned int turn = 0; turn < 20; ++turn)
            isGood = library.WorkOnce(L"child.fru") && isGood;
        library.Table()->DeInitialize(library.Table());
        _exit(isGood ? 0 : 1);
    }
    for (unsigned int turn = 0; turn < 20; ++turn)
        EXPECT_TRUE(library.WorkOnce(L"parent.fru"));
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(library.Table()->SetLanguageLocale(library.Table(), L"en", L"us"), 0U);
}

// Calls are serialised by the host; nothing in the library belongs to the thread that has started it.
TEST_F(CHostTest, LogsFromOneThreadAndCallsFromAnother) {
    constexpr unsigned int LINES = 300;
    const CLoadedLibrary library;
    const auto log = library.Function<void (*)(const wchar_t*, unsigned int, ...)>("Dbg");
    library.Table()->SetDebugLevel(library.Table(), 3);
    std::mutex turn;
    std::thread logger([&] {
        for (unsigned int line = 0; line < LINES; ++line) {
            const std::lock_guard lock(turn);
            log(L"host's line %u %ls", 1, line, L"with a text");
        }
    });
    bool isGood = true;
    for (unsigned int round = 0; round < 3; ++round) {
        const std::lock_guard lock(turn);
        isGood = library.WorkOnce(L"thread.fru") && isGood;
    }
    logger.join();
    EXPECT_TRUE(isGood);
    std::ifstream file("DBGLOG.txt", std::ios::binary);
    unsigned int lines = 0, others = 0;
    for (std::string line; std::getline(file, line);) {
        if (line == "host's line " + std::to_string(lines) + " with a text\r")
            ++lines;
        else
            others += line.ends_with(" [ENTRY]\r") || line.ends_with(" [EXIT]\r");
    }
    EXPECT_EQ(lines, LINES);
    EXPECT_GT(others, 100U);
}

} // namespace
