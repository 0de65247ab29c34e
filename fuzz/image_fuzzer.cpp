// The standard's view of an image: input is an image. Any bytes give a model; what is described is built again byte for
// byte; a repair leaves no more damage than there was.
#include "fruimage/description.h"
#include "fruimage/repair.h"
#include "fuzz/input.h"

namespace {

using namespace FruImage;
using Frudata_Fuzz::Require;

std::ptrdiff_t Damages(const FRU& fru) {
    return std::count_if(fru.findings.begin(), fru.findings.end(),
                         [](const FINDING& finding) { return finding.severity == SEVERITY::DAMAGE; });
}

void DescribeAndBuild(const FRU& fru) {
    const Result<DESCRIPTION> description = Describe(fru);
    Require(description || !fru.IsSound());
    if (!description || fru.bytes.empty())
        return;
    const Result<BYTES> built = Build(*description);
    Require(built && *built == fru.bytes);
}

/// What is read piece by piece shows the same as the whole.
void ReadInPieces(const FRU& fru) {
    BYTES known(fru.bytes.size(), 0x5A);
    std::vector<RANGE> read;
    for (auto wanted = WantedRanges(known, read); !wanted.empty(); wanted = WantedRanges(known, read))
        for (const RANGE& range : wanted) {
            const BYTE_VIEW bytes = fru.View(range);
            Require(!bytes.empty() && bytes.size() == range.length);
            std::copy(bytes.begin(), bytes.end(), known.begin() + static_cast<std::ptrdiff_t>(range.offset));
            read.push_back(range);
        }
    const FRU part = Parse(known, read);
    Require(part.state == fru.state && part.areas.size() == fru.areas.size());
    Require(Damages(part) == Damages(fru));
}

void RepairAndLook(const FRU& fru) {
    const Result<PLAN> plan = Repair(fru);
    Require(!plan || plan->bytes.size() == fru.bytes.size());
    Require(!plan || !fru.IsSound());
    Require(!plan || static_cast<std::size_t>(Damages(Parse(plan->bytes))) == plan->notes.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FRU fru = Parse({data, size});
    DescribeAndBuild(fru);
    ReadInPieces(fru);
    RepairAndLook(fru);
    return 0;
}
