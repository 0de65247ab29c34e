// The counted cost: what an operation takes in instructions, a request in port accesses and system calls, and a host
// in memory. Under callgrind each operation becomes a dump of its own that carries the operation's name; what is
// counted here is printed as "name value". bench/check-cost compares both with the budget.
#include "bench/host.h"
#include "common/trace.h"
#include "frudata/image/fru.h"

#include <csignal>
#include <cstdio>
#include <malloc.h>
#include <memory>
#include <string>
#include <valgrind/callgrind.h>

namespace {

unsigned int g_systemCalls = 0;

}

// The system calls of a request, counted in the place of the C library's.
extern "C" {
int iopl(int) noexcept {
    ++g_systemCalls;
    return 0;
}
unsigned int alarm(unsigned int) noexcept {
    ++g_systemCalls;
    return 0;
}
__sighandler_t signal(int, __sighandler_t) noexcept {
    ++g_systemCalls;
    return SIG_DFL;
}
}

namespace {

using namespace Frudata_Bench;
using namespace Frudata_Private;
using Frudata_Sim::FRONT;

/// Counts the second run of `operation`: the first one fills what is filled once.
template <typename OPERATION> void Count(const std::string& name, OPERATION operation) {
    operation();
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    operation();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

void Print(const std::string& name, std::uintmax_t value) {
    std::printf("%s %ju\n", name.c_str(), value);
}

/// Between two trace points lies code of the operation that may change anything.
void CompilerBarrier() {
    asm volatile("" : : : "memory");
}

/// Functions with two and with three trace points: what one costs is their difference.
[[gnu::noipa]] void TwoTracePoints() {
    const CTrace trace(L"class", L"operation");
    CompilerBarrier();
    trace.Exit();
}
[[gnu::noipa]] void ThreeTracePoints() {
    const CTrace trace(L"class", L"operation");
    CompilerBarrier();
    trace.Exit();
    CompilerBarrier();
    trace.Exit();
}

void CountTracePoints() {
    const auto thousandTimes = [](void (*function)()) {
        for (int call = 0; call < 1000; ++call)
            function();
    };
    Count("trace.two.1000", [&] { thousandTimes(TwoTracePoints); });
    Count("trace.three.1000", [&] { thousandTimes(ThreeTracePoints); });
}

template <typename AREA> void CountArea(const std::string& name, FRU_HEADER_BYTE place, AREA&& area) {
    const BYTES bytes = InfoArea(FruImage(LARGEST_FRU), place);
    Count("parse." + name, [&] { Check(!area.SetData(bytes.data(), static_cast<UINTN>(bytes.size())), "SetData"); });
    Count("serialise." + name, [&] { area.GetData(); });
}

void CountAreas() {
    CountArea("chassis", FRU_HEADER_CHASSIS, CChassisInfoArea());
    CountArea("board", FRU_HEADER_BOARD, CBoardInfoArea());
    CountArea("product", FRU_HEADER_PRODUCT, CProductInfoArea());
    const BYTES internalUse(504, 0x5A);
    CInternalUseArea area;
    Count("parse.internaluse", [&] { area.SetData(internalUse.data(), 504, false); });
    const BYTES records = MultiRecords();
    CFru fru;
    Count("parse.multirecord", [&] { fru.SetMultiRecArea(records.data(), static_cast<UINTN>(records.size()), false); });
    UINT8 buffer[512];
    Count("serialise.multirecord", [&] {
        UINTN length = sizeof buffer;
        Check(fru.SerializeMultiRecArea(buffer, length), "SerializeMultiRecArea");
    });
}

void CountFileWork(CHost& host) {
    for (const std::size_t size : FRU_SIZES) {
        const std::string suffix = "." + std::to_string(size);
        Count("load" + suffix, [&] { host.LoadText(size); });
        Print("textfile" + suffix, std::filesystem::file_size(std::to_string(size) + ".fru"));
        host.Restart();
        host.LoadText(size);
        host.Select(FRU_LIST_FILE, 0);
        Count("save" + suffix, [&] { host.SaveText(); });
    }
    Count("load.digits.2048", [&] { host.LoadDigits(); });
    Print("textfile.digits.2048", std::filesystem::file_size("digits.fru"));
    host.Restart();
    host.LoadText(LARGEST_FRU);
    host.Select(FRU_LIST_FILE, 0);
    host.SelectAssetTag();
    Count("set.field", [&] { host.SetAssetTag(); });
    Count("read.fields", [&] { host.ReadAllFields(); });
}

void CountSelection(CHost& host) {
    host.Restart();
    unsigned int loaded = 0;
    for (const unsigned int frus : {1U, 16U, 255U}) {
        while (loaded < frus) {
            host.LoadText(LARGEST_FRU);
            ++loaded;
        }
        Count("select." + std::to_string(frus), [&] {
            host.Select(FRU_LIST_FILE, frus - 1);
            host.SelectAssetTag();
        });
    }
}

/// Heap of a host with 255 FRUs.
void CountMemory(CHost& host) {
    constexpr unsigned int frus = 255;
    host.Restart();
    host.LoadText(LARGEST_FRU);
    const std::size_t before = mallinfo2().uordblks;
    for (unsigned int fru = 1; fru < frus; ++fru)
        host.LoadText(LARGEST_FRU);
    const struct mallinfo2 after = mallinfo2();
    Print("memory.fru", (after.uordblks - before) / (frus - 1));
    Print("memory.heap", after.arena + after.hblkhd);
}

/// Counts an operation on the device, on the KCS front also in port accesses and system calls.
template <typename OPERATION> void CountRequests(CHost& host, const std::string& name, OPERATION operation) {
    Count(name, [&] {
        host.Kcs().ResetCounts();
        g_systemCalls = 0;
        operation();
    });
    const Frudata_Sim::KcsCounts& counts = host.Kcs().Counts();
    if (counts.statusReads == 0)
        return;
    Print(name + ".reads.status", counts.statusReads);
    Print(name + ".reads.data", counts.dataReads);
    Print(name + ".writes", counts.commandWrites + counts.dataWrites);
    Print(name + ".systemcalls", g_systemCalls);
}

void CountDeviceWork(CHost& host, const std::string& front) {
    host.Restart();
    host.FillDevice(LARGEST_FRU);
    host.LoadDevice();
    host.Select(FRU_LIST_SYSTEM, 0);
    host.SelectAssetTag();
    FRU_LOCATOR bmc;
    UINT8 bytes[8];
    CountRequests(host, "request." + front,
                  [&] { Check(CFru::ReadDataFromFRU(&bmc, 0, 8, bytes), "ReadDataFromFRU"); });
    CountRequests(host, "load." + front, [&] { host.LoadDevice(); });
    CountRequests(host, "commit." + front, [&] {
        host.SetAssetTag();
        host.Commit();
    });
    for (const unsigned int records : {10U, 100U, 1000U}) {
        host.FillRepository(records);
        CountRequests(host, "scan." + std::to_string(records) + "." + front, [&] { host.Scan(); });
    }
}

} // namespace

int main() {
    CountTracePoints();
    CountAreas();
    {
        CHost host(FRONT::KCS);
        CountFileWork(host);
        CountSelection(host);
        CountMemory(host);
        CountDeviceWork(host, "kcs");
    }
    CHost host(FRONT::IMB);
    CountDeviceWork(host, "imb");
    return 0;
}
