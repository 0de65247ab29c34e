// The time of an operation. The KCS front comes first: the access path is decided once a process.
#include "bench/host.h"
#include "frudata/image/fru.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Frudata_Bench;
using namespace Frudata_Private;
using Frudata_Sim::FRONT;

/// Lists of a usual length: a load appends to its list.
constexpr int LOADS_A_LIST = 64;

template <typename LOAD> void LoadAgainAndAgain(benchmark::State& state, CHost& host, LOAD load) {
    int loads = 0;
    for (auto _ : state) {
        load();
        if (++loads % LOADS_A_LIST == 0) {
            state.PauseTiming();
            host.Restart();
            state.ResumeTiming();
        }
    }
}

void LoadText(benchmark::State& state) {
    CHost host(FRONT::KCS);
    LoadAgainAndAgain(state, host, [&] { host.LoadText(static_cast<std::size_t>(state.range(0))); });
}

void SaveText(benchmark::State& state) {
    CHost host(FRONT::KCS);
    host.LoadText(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        host.SaveText();
}

template <typename AREA, FRU_HEADER_BYTE PLACE> void ParseArea(benchmark::State& state) {
    const BYTES bytes = InfoArea(FruImage(LARGEST_FRU), PLACE);
    AREA area;
    for (auto _ : state)
        benchmark::DoNotOptimize(area.SetData(bytes.data(), static_cast<UINTN>(bytes.size())));
}

template <typename AREA, FRU_HEADER_BYTE PLACE> void SerialiseArea(benchmark::State& state) {
    const BYTES bytes = InfoArea(FruImage(LARGEST_FRU), PLACE);
    AREA area;
    area.SetData(bytes.data(), static_cast<UINTN>(bytes.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(area.GetData());
}

void ParseMultiRecord(benchmark::State& state) {
    const BYTES records = MultiRecords();
    CFru fru;
    for (auto _ : state)
        fru.SetMultiRecArea(records.data(), static_cast<UINTN>(records.size()), false);
}

void SerialiseMultiRecord(benchmark::State& state) {
    const BYTES records = MultiRecords();
    CFru fru;
    fru.SetMultiRecArea(records.data(), static_cast<UINTN>(records.size()), false);
    UINT8 buffer[512];
    for (auto _ : state) {
        UINTN length = sizeof buffer;
        Check(fru.SerializeMultiRecArea(buffer, length), "SerializeMultiRecArea");
    }
}

void ParseInternalUse(benchmark::State& state) {
    const BYTES bytes(504, 0x5A);
    CInternalUseArea area;
    for (auto _ : state)
        benchmark::DoNotOptimize(area.SetData(bytes.data(), 504, false));
}

void SetField(benchmark::State& state) {
    CHost host(FRONT::KCS);
    host.LoadText(LARGEST_FRU);
    host.Select(FRU_LIST_FILE, 0);
    host.SelectAssetTag();
    for (auto _ : state)
        host.SetAssetTag();
}

void ReadAllFields(benchmark::State& state) {
    CHost host(FRONT::KCS);
    host.LoadText(LARGEST_FRU);
    host.Select(FRU_LIST_FILE, 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(host.ReadAllFields());
}

void Select(benchmark::State& state) {
    CHost host(FRONT::KCS);
    const auto frus = static_cast<unsigned int>(state.range(0));
    for (unsigned int fru = 0; fru < frus; ++fru)
        host.LoadText(LARGEST_FRU);
    for (auto _ : state) {
        host.Select(FRU_LIST_FILE, frus - 1);
        host.SelectAssetTag();
    }
}

template <FRONT WAY> void Scan(benchmark::State& state) {
    CHost host(WAY);
    host.FillRepository(static_cast<unsigned int>(state.range(0)));
    for (auto _ : state)
        host.Scan();
}

template <FRONT WAY> void LoadDevice(benchmark::State& state) {
    CHost host(WAY);
    host.FillDevice(LARGEST_FRU);
    LoadAgainAndAgain(state, host, [&] { host.LoadDevice(); });
}

template <FRONT WAY> void Commit(benchmark::State& state) {
    CHost host(WAY);
    host.FillDevice(LARGEST_FRU);
    host.LoadDevice();
    host.Select(FRU_LIST_SYSTEM, 0);
    host.SelectAssetTag();
    for (auto _ : state) {
        host.SetAssetTag();
        host.Commit();
    }
}

BENCHMARK(LoadText)->Arg(256)->Arg(1024)->Arg(2048);
BENCHMARK(SaveText)->Arg(256)->Arg(1024)->Arg(2048);
BENCHMARK(ParseArea<CChassisInfoArea, FRU_HEADER_CHASSIS>);
BENCHMARK(ParseArea<CBoardInfoArea, FRU_HEADER_BOARD>);
BENCHMARK(ParseArea<CProductInfoArea, FRU_HEADER_PRODUCT>);
BENCHMARK(ParseInternalUse);
BENCHMARK(ParseMultiRecord);
BENCHMARK(SerialiseArea<CChassisInfoArea, FRU_HEADER_CHASSIS>);
BENCHMARK(SerialiseArea<CBoardInfoArea, FRU_HEADER_BOARD>);
BENCHMARK(SerialiseArea<CProductInfoArea, FRU_HEADER_PRODUCT>);
BENCHMARK(SerialiseMultiRecord);
BENCHMARK(SetField);
BENCHMARK(ReadAllFields);
BENCHMARK(Select)->Arg(1)->Arg(16)->Arg(255);
BENCHMARK(LoadDevice<FRONT::KCS>);
BENCHMARK(Commit<FRONT::KCS>);
BENCHMARK(Scan<FRONT::KCS>)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(LoadDevice<FRONT::IMB>);
BENCHMARK(Commit<FRONT::IMB>);
BENCHMARK(Scan<FRONT::IMB>)->Arg(10)->Arg(100)->Arg(1000);

} // namespace

BENCHMARK_MAIN();
