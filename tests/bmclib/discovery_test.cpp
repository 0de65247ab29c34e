// The start-up discovery against a pretended firmware. The access path is decided once a process, so each
// case runs in a child, whose output is the result.
#include "frudata/debug.h"
#include "frudata/frudata.h"
#include "kcsmodel.h"
#include "tests/support/physicalmemory.h"

#include <cstring>
#include <cwchar>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

constexpr int MEMORY_DESCRIPTOR = 0x103; // the library keeps eight bits of it
constexpr size_t MAPPING = 65535;
constexpr UINT32 TABLE_ADDRESS = 0xFFFF1F0E;

// The memories are exactly as long as a mapping, so that the address sanitizer sees a read behind it.
BYTES g_firmware(MAPPING);
BYTES g_table(MAPPING);
int g_mapped = 0;
int g_imbLength = 0; // of the IMB driver's answers; 0: no driver
BYTES g_unreported;  // what the IMB driver's next answer has behind its length

} // namespace

extern "C" {
// Under the name that 64-bit file offsets give it.
void* HostMap(void* hint, size_t size, int protection, int flags, int descriptor, long long offset) __asm__("mmap64");

void* HostMap(void*, size_t size, int, int, int descriptor, long long offset) {
    const bool isMemory = descriptor == (MEMORY_DESCRIPTOR & 0xFF) && size == MAPPING;
    ++g_mapped;
    if (isMemory && offset == 0xF0000)
        return g_firmware.data();
    return isMemory && offset == (TABLE_ADDRESS & ~0xFFFU) ? g_table.data() : reinterpret_cast<void*>(-1);
}
int open_imb(void) {
    return g_imbLength;
}
int close_imb(void) {
    return 77;
}
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* data, int* length, UINT8* code) {
    data[0] = timeout == 5000 && *length == 65535 && request->rsSa == 0x20 ? request->cmdType : UINT8{0};
    std::copy(g_unreported.begin(), g_unreported.end(), data);
    if (!std::exchange(g_unreported, {}).empty())
        return *length = *code = 0;
    *length = g_imbLength;
    return *code = 0xC7, 0;
}
} // extern "C"

namespace {

struct FIRMWARE {
    const char* outcome; // result and last port read; with requests, their results
    size_t entryPoint;
    UINT16 structures;
    BYTES first; // of the table
    UINT8 filling = 0;
    BYTES last = {};
    UINT8 port = 0;
    std::vector<int> requests = {}; // responder addresses
    int imbLength = 0;
    int starts = 1;
};

[[noreturn]] void Discover(const FIRMWARE& firmware) {
    UINT8 entry[0x1E] = {'_', 'S', 'M', '_'};
    const UINT32 address = firmware.filling == 0xEE ? 0 : TABLE_ADDRESS;
    std::memcpy(entry + 0x18, &address, 4);
    std::memcpy(entry + 0x1C, &firmware.structures, 2);
    std::memcpy(g_firmware.data() + firmware.entryPoint, entry, std::min(sizeof entry, MAPPING - firmware.entryPoint));
    std::fill(g_table.begin(), g_table.end(), firmware.filling);
    std::copy(firmware.first.begin(), firmware.first.end(), g_table.begin() + (TABLE_ADDRESS & 0xFFF));
    std::copy_backward(firmware.last.begin(), firmware.last.end(), g_table.end());
    g_host = HOST{};
    g_host.m_EveryPort = firmware.port;
    g_imbLength = firmware.imbLength;
    stdout = fdopen(STDERR_FILENO, "w"); // not yet narrow, and what the test framework captures
    int result = 0;
    for (int start = 0; start < firmware.starts; ++start)
        result = firmware.requests.empty() ? MainInit() : BmcLibInitialize();
    std::wprintf(L"%d %x", result, g_host.m_LastPort);
    if (firmware.starts > 1)
        std::wprintf(L"; opened %d, mapped %d", Frudata_Tests::g_memoryOpened, g_mapped);
    // What the host selects does not change the way that the discovery has found.
    if (!firmware.requests.empty() && !SelectIPMIInterface(IPMI_INTERFACE_USB))
        std::wprintf(L"; no session");
    static BMC_MESSAGE request;
    static BMC_MESSAGE response;
    for (const int responder : firmware.requests) {
        request.rsSa = static_cast<UINT8>(responder);
        request.cmd = 0x42;
        const int status = ProcessMessage(&request, &response, 5000);
        std::wprintf(L"; %d %x %u %x", status, response.completionCode, response.dataLength, response.data[0]);
    }
    if (!firmware.requests.empty())
        std::wprintf(L"; %d", BmcLibDeinitialize());
    std::fflush(stdout);
    _exit(0);
}

// Two structures with and without strings, then the IPMI device: an interface type, base address 0x0CA8.
BYTES Table(UINT8 interfaceType) {
    return {1, 6, 0,  0,  1, 2, 'a',           0,    'b',  0, 0,    2,    4, 0, 0,
            0, 0, 38, 18, 0, 0, interfaceType, 0x20, 0x20, 0, 0xA9, 0x0C, 0, 0};
}

// Bytes that a driver left behind those it reported do not become part of the next answer.
[[noreturn]] void FindTwice() {
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    const auto find = [table] {
        return table->FindFruAtAddressAndChecksumHeader(table, FRU_TYPE_IMBDEVICE, 0, 0x20, 0xFF, 0x20, 0);
    };
    g_imbLength = 1;
    bool isGood = chdir(FRUDATA_TEXTS) == 0 && table->Initialize(table, 0) == 0;
    g_unreported = {8, 1, 0, 0, 1, 0, 0, 0, 0xFE};
    isGood = isGood && find() == 0;
    g_unreported = {8};
    isGood = isGood && find() == FRU_STATUS_NOT_IPMI_FRU;
    _exit(isGood ? 0 : 1);
}

// Wide text, after which standard output stays wide: hence a child.
[[noreturn]] void Print() {
    stdout = fdopen(STDERR_FILENO, "w");
    constexpr UINT8 bytes[] = {0x00, 0x9A, 0xFF};
    PrintBuffer(L"KCS", bytes, 3);
    PrintBuffer(L"", bytes, 0);
    std::fflush(stdout);
    _exit(0);
}

#define NOT_FOUND "SMBIOS Table Not Found!!!\n-502 0"
#define SILENT "No Response from BMC...Exiting\n"

TEST(ImbDriver, UnreportedBytesAreDropped) {
    EXPECT_EXIT(FindTwice(), testing::ExitedWithCode(0), "");
}

TEST(DebugOutput, PrintBuffer) {
    EXPECT_EXIT(Print(), testing::ExitedWithCode(0), testing::Eq(std::string("K 00 9A FF\n\n")));
}

TEST(Discovery, PathsToTheBmc) {
    Frudata_Tests::g_memoryDescriptor = MEMORY_DESCRIPTOR;
    const FIRMWARE rows[] = {
        {NOT_FOUND, MAPPING, 0, {}},                 // no entry point
        {NOT_FOUND, 0x1008, 3, Table(1)},            // entry point off its place
        {NOT_FOUND, 65520, 3, Table(1)},             // entry point cut off
        {"0 ca9", 0x1000, 3, Table(1), 0, {}, 0xFE}, // KCS
        // Each start keeps what it takes: it is no more than a descriptor and two mappings.
        {"0 ca9; opened 3, mapped 6", 0x1000, 3, Table(1), 0, {}, 0xFE, {}, 0, 3},
        {SILENT "-502 ca9", 65504, 3, Table(1), 0, {}, 0xFF}, // KCS, silent
        {"0 ca3", 0, 2, Table(1)},                            // device behind the count
        {SILENT "-1 ca3", 0, 0, Table(1), 0, {}, 0xFF},       // no device, silent
        {"-1 0", 0, 3, {}, 0xEE},                             // table cannot be mapped
        {"0 ca3", 0, 0xFFFF, {}, 0xFF},                       // no string ever ends
        {"0 ca3", 0, 0xFFFF, {}, 0, {38, 18, 0, 0, 1}},       // zeros to the end, device cut off
        {"0 ca3", 0, 0xFFFF, {}, 0, {1, 255}},                // length behind the end
        {"0 ca3", 0, 0xFFFF, {1, 0, 0, 0}, 1, {1, 0}},        // length zero, string not ended
        {"-502 0", 0, 3, Table(2)},                           // another kind
        {"-502 0; 0 0 65535 0; -504 0 65535 0; 0", 0, 3, Table(2), 0, {}, 4, {0x20, 0x72}}, // requests seem to succeed
        {"0 0; 0 c7 2 42; 77", MAPPING, 0, {}, 0, {}, 0, {0x20}, 2},                        // IMB driver
        {"0 0; 1 c7 0 42; 77", MAPPING, 0, {}, 0, {}, 0, {0x20}, -1},                       // its length is impossible
        {"0 0; 1 c7 0 42; 77", MAPPING, 0, {}, 0, {}, 0, {0x20}, 65536},
    };
    for (const FIRMWARE& row : rows)
        EXPECT_EXIT(Discover(row), testing::ExitedWithCode(0), testing::Eq(std::string(row.outcome))) << &row - rows;
    Frudata_Tests::g_memoryDescriptor = -1; // none
    EXPECT_EXIT(Discover({"", 0, 3, Table(1)}), testing::ExitedWithCode(0), testing::Eq(std::string("-1 0")));
}

} // namespace
