// The start-up discovery against a pretended firmware. The access path is decided once a process, so each
// case runs in a child, whose standard output is the result.
#include "frudata/bmclib.h"

#include <cstring>
#include <cwchar>
#include <functional>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using BYTES = std::vector<UINT8>;

constexpr int MEMORY_DESCRIPTOR = 0x103; // the library keeps eight bits of it
constexpr size_t MAPPING = 65535;
constexpr UINT32 TABLE_ADDRESS = 0xFFFF1F0E;

// The memories are exactly as long as a mapping, so that the address sanitizer sees a read behind it.
BYTES g_firmware(MAPPING);
BYTES g_table(MAPPING);
int g_descriptor = MEMORY_DESCRIPTOR;
UINT8 g_port = 0xFF;
unsigned int g_probed = 0;
int g_imbOpens = 0;
int g_imbLength = 2;

std::string InChild(const std::function<void()>& body) {
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        stdout = fdopen(ends[1], "w"); // the test framework's output has made the other one narrow
        body();
        std::fflush(stdout);
        _exit(0);
    }
    close(ends[1]);
    std::string output;
    char character;
    while (read(ends[0], &character, 1) == 1)
        output += character;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0 ? output : "crashed";
}

} // namespace

extern "C" {

// Under the names that 64-bit file offsets give them.
int HostOpen(const char* path, int flags, ...) __asm__("open64");
void* HostMap(void* hint, size_t size, int protection, int flags, int descriptor, long long offset) __asm__("mmap64");

int HostOpen(const char* path, int flags, ...) {
    return std::strcmp(path, "/dev/mem") == 0 ? g_descriptor
                                              : static_cast<int>(syscall(SYS_openat, -100, path, flags, 0600));
}
void* HostMap(void*, size_t size, int, int, int descriptor, long long offset) {
    const bool isMemory = descriptor == (MEMORY_DESCRIPTOR & 0xFF) && size == MAPPING;
    if (isMemory && offset == 0xF0000)
        return g_firmware.data();
    return isMemory && offset == (TABLE_ADDRESS & ~0xFFFU) ? g_table.data() : reinterpret_cast<void*>(-1);
}
UINT8 inb(UINT16 port) {
    g_probed = port;
    return g_port;
}
void outb(UINT8, UINT16) {}
int iopl(int) noexcept {
    return 0;
}
int open_imb(void) {
    return g_imbOpens;
}
int close_imb(void) {
    return 77;
}
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* data, int* length, UINT8* code) {
    data[0] = timeout == 5000 && *length == 65535 && request->rsSa == 0x20 ? request->cmdType : UINT8{0};
    *length = g_imbLength;
    *code = 0xC7;
    return 0;
}

} // extern "C"

namespace {

struct FIRMWARE {
    const char* name;
    size_t entryPoint;
    UINT16 structures;
    BYTES first; // of the table
    UINT8 filling;
    BYTES last;
    UINT8 port;
    const char* outcome;
};

void Install(const FIRMWARE& firmware) {
    UINT8 entry[0x1E] = {'_', 'S', 'M', '_'};
    UINT32 address = firmware.filling == 0xEE ? 0 : TABLE_ADDRESS;
    std::memcpy(entry + 0x18, &address, 4);
    std::memcpy(entry + 0x1C, &firmware.structures, 2);
    if (firmware.entryPoint < MAPPING)
        std::memcpy(&g_firmware[firmware.entryPoint], entry, std::min(sizeof entry, MAPPING - firmware.entryPoint));
    std::fill(g_table.begin(), g_table.end(), firmware.filling);
    std::copy(firmware.first.begin(), firmware.first.end(), g_table.begin() + (TABLE_ADDRESS & 0xFFF));
    std::copy(firmware.last.rbegin(), firmware.last.rend(), g_table.rbegin());
    g_port = firmware.port;
}

// Two structures with and without strings, then the IPMI device: an interface type, base address 0x0CA8.
BYTES Table(UINT8 interfaceType) {
    return {1, 6, 0,  0,  1, 2, 'a',           0,    'b',  0, 0,    2,    4, 0, 0,
            0, 0, 38, 18, 0, 0, interfaceType, 0x20, 0x20, 0, 0xA9, 0x0C, 0, 0};
}

#define NOT_FOUND "SMBIOS Table Not Found!!!\n-502 0"
#define SILENT "No Response from BMC...Exiting\n"

TEST(Discovery, PathsToTheBmc) {
    const FIRMWARE rows[] = {
        {"no entry point", MAPPING, 0, {}, 0, {}, 0, NOT_FOUND},
        {"entry point off its place", 0x1008, 3, Table(1), 0, {}, 0, NOT_FOUND},
        {"entry point cut off", 65520, 3, Table(1), 0, {}, 0, NOT_FOUND},
        {"KCS", 0x1000, 3, Table(1), 0, {}, 0xFE, "0 ca9"},
        {"KCS, silent", 65504, 3, Table(1), 0, {}, 0xFF, SILENT "-502 ca9"},
        {"another kind", 0, 3, Table(2), 0, {}, 0, "-502 0"},
        {"device behind the count", 0, 2, Table(1), 0, {}, 0, "0 ca3"},
        {"no device, silent", 0, 0, Table(1), 0, {}, 0xFF, SILENT "-1 ca3"},
        {"table cannot be mapped", 0, 3, {}, 0xEE, {}, 0, "-1 0"},
        {"no string ever ends", 0, 0xFFFF, {}, 0xFF, {}, 0, "0 ca3"},
        {"zeros to the end, device cut off", 0, 0xFFFF, {}, 0, {38, 18, 0, 0, 1}, 0, "0 ca3"},
        {"length behind the end", 0, 0xFFFF, {}, 0, {1, 255}, 0, "0 ca3"},
        {"length zero, string not ended", 0, 0xFFFF, {1, 0, 0, 0}, 1, {1, 0}, 0, "0 ca3"},
    };
    for (const FIRMWARE& row : rows) {
        const auto run = [&row] {
            Install(row);
            const int result = MainInit();
            std::wprintf(L"%d %x", result, g_probed);
        };
        EXPECT_EQ(InChild(run), row.outcome) << row.name;
    }
    EXPECT_EQ(InChild([] {
                  g_descriptor = -1;
                  std::wprintf(L"%d", MainInit());
              }),
              "-1")
        << "no physical memory";
}

void PrintRequest(UINT8 address) {
    static BMC_MESSAGE request;
    static BMC_MESSAGE response;
    request.rsSa = address;
    request.cmd = 0x42;
    const int status = ProcessMessage(&request, &response, 5000);
    std::wprintf(L"%d %x %u %x; ", status, response.completionCode, response.dataLength, response.data[0]);
}

TEST(Discovery, NoDriverForTheInterface) {
    const auto run = [] {
        Install({"", 0, 3, Table(2), 0, {}, 0x04, ""});
        std::wprintf(L"%d ", BmcLibInitialize());
        PrintRequest(0x20);
        PrintRequest(0x72);
        std::wprintf(L"%d", BmcLibDeinitialize());
    };
    EXPECT_EQ(InChild(run), "-502 0 0 65535 0; -504 0 65535 0; 0") << "a request seems to succeed";
}

TEST(Discovery, DriverOfTheHost) {
    const auto run = [] {
        g_imbOpens = 1;
        std::wprintf(L"%d ", BmcLibInitialize());
        for (const int length : {2, -1, 65536}) {
            g_imbLength = length;
            PrintRequest(0x20);
        }
        std::wprintf(L"%d", BmcLibDeinitialize());
    };
    EXPECT_EQ(InChild(run), "0 0 c7 2 42; 1 c7 0 42; 1 c7 0 42; 77");
}

} // namespace
