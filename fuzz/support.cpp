#include "fuzz/support.h"

#include "common/assertion.h"
#include "common/openfile.h"
#include "common/stringresource.h"
#include "frudata/bmclib.h"
#include "frudata/debug.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <stdio_ext.h>
#include <string_view>
#include <unistd.h>

namespace {

std::FILE* const g_log = std::fopen("/dev/null", "a");
std::span<const UINT8> g_inputFile;
std::span<const UINT8> g_textsFile;
char g_outputFile[1 << 16];

std::FILE* OpenInMemory(std::string_view name, char mode) {
    const char modeText[] = {mode, 0};
    if (name == "out")
        return fmemopen(g_outputFile, mode == 'r' ? Frudata_Fuzz::OutputFile().size() : sizeof g_outputFile, modeText);
    const std::span<const UINT8> file = name == "in" ? g_inputFile : g_textsFile;
    const bool isThere = mode == 'r' && (name == "in" || name == "texts/frudata/str/frudata.str");
    return isThere ? fmemopen(const_cast<UINT8*>(file.data()), file.size(), modeText) : nullptr;
}

} // namespace

namespace Frudata_Private {

// The linker gives OpenFile's callers the second of these in its place (--wrap).
SCOPED_FILE OpenOnDisk(const char* path, char mode, OPEN_ALSO also) __asm__("__real_" FRUDATA_OPEN_FILE);
SCOPED_FILE OpenAnywhere(const char* path, char mode, OPEN_ALSO also) __asm__("__wrap_" FRUDATA_OPEN_FILE);

/// Files that live as long as one run need no system call. Lines of the log are composed, and go nowhere: to open and
/// close a file for each would take most of a run's time.
SCOPED_FILE OpenAnywhere(const char* path, char mode, OPEN_ALSO also) {
    const std::string_view name(path);
    if (name.starts_with("fuzz:"))
        return SCOPED_FILE(OpenInMemory(name.substr(5), mode));
    return name == "DBGLOG.txt" ? SCOPED_FILE(g_log) : OpenOnDisk(path, mode, also);
}

} // namespace Frudata_Private

extern "C" {

int __real_fclose(std::FILE* stream);
int __wrap_fclose(std::FILE* stream);

/// The log stays open, without the buffer that its line has brought.
int __wrap_fclose(std::FILE* stream) {
    static char buffer[1024];
    if (stream != g_log)
        return __real_fclose(stream);
    __fpurge(stream);
    return std::setvbuf(stream, buffer, _IOFBF, sizeof buffer);
}
}

// What stands in the place of the system's functions.
extern "C" {

/// The library's pauses take no time; those of the fuzzing engine's own threads do.
unsigned int sleep(unsigned int seconds) {
    timespec pause = {static_cast<time_t>(seconds), 0};
    if (gettid() != getpid())
        nanosleep(&pause, nullptr);
    return 0;
}
int usleep(useconds_t) {
    return 0;
}

/// Every request asks for it.
int iopl(int) noexcept {
    return -1;
}

UINT8 inb(UINT16) {
    return 0xFF;
}
void outb(UINT8, UINT16) {}
}

namespace Frudata_Private {

void FailAssertion(const char*, const char*) {
    throw Frudata_Fuzz::FailedAssertion();
}

} // namespace Frudata_Private

namespace Frudata_Fuzz {

using namespace Frudata_Private;

unsigned int Progress(PROGRESS_CALLBACK_TYPE, const WCHAR* message, unsigned int, unsigned int) {
    Read(message);
    return 0;
}

EFI_STATUS Initialize(_EFI_FRU_INTERFACE* This, int platform) {
    Frudata_Sim::CSimulatedBmc* const before = Frudata_Sim::CurrentBmc();
    Frudata_Sim::CSimulatedBmc bmc;
    Frudata_Sim::SetCurrentBmc(&bmc);
    const EFI_STATUS status = GetFruDataInterface()->Initialize(This, platform);
    Frudata_Sim::SetCurrentBmc(before);
    return status;
}

_EFI_FRU_INTERFACE* EmptyLibrary() {
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    if (!g_pStringResource) {
        SetLibDebugLevel(0);
        if (Initialize(nullptr, FRU_PLATFORM_MBMC) != 0 ||
            table->SetLanguageLocale(table, FRUDATA_TEXTS L"/en", L"us") != 0)
            std::abort();
    }
    g_FruData.reset(new CFruData);
    table->SetProgressCallback(table, Progress);
    const WCHAR* message = nullptr;
    table->GetLastErrorMessage(table, message);
    return table;
}

void SelectNewFru(std::unique_ptr<CFru> fru) {
    g_FruData->m_pFileList->Add(fru.release());
    g_FruData->m_fLoaded = true;
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    table->SelectList(table, FRU_LIST_FILE);
    table->SelectFru(table, g_FruData->m_pFileList->Count() - 1);
}

void SetInputFile(std::span<const UINT8> content) {
    g_inputFile = content;
}

void SetTextsFile(std::span<const UINT8> content) {
    g_textsFile = content;
}

std::span<const UINT8> OutputFile() {
    return {reinterpret_cast<const UINT8*>(g_outputFile), strnlen(g_outputFile, sizeof g_outputFile)};
}

BYTES StringTable(std::size_t count, const BYTES& text) {
    BYTES table;
    const auto put = [&table](std::size_t value) {
        table.insert(table.end(), {static_cast<UINT8>(value), static_cast<UINT8>(value >> 8)});
    };
    put(count);
    put(0);
    for (std::size_t word = 0; word < 2 * count; ++word) {
        put(word < count ? 4 + 8 * count : text.size() + 1);
        put(0);
    }
    for (const UINT8 character : text)
        put(character);
    put(0);
    CompleteSum(table);
    return table;
}

void CompleteSum(BYTES& table) {
    std::size_t sum = 0;
    table.resize(table.size() / 2 * 2);
    for (std::size_t index = 0; index < table.size(); index += 2)
        sum += table[index] + table[index + 1] * 256U;
    table.insert(table.end(), {static_cast<UINT8>(0 - sum), static_cast<UINT8>((0 - sum) >> 8)});
}

} // namespace Frudata_Fuzz
