// FRU text files as lines: input is the file. What is read without a fault is the same after it was edited to the same
// image, composed anew, and edited to an image with other bytes.
#include "fuzz/input.h"
#include "tools/fructl/text/frutext.h"

namespace {

using namespace Fructl;
using Frudata_Fuzz::Require;

/// Whether a text file can hold the image: its blocks stand for the areas, as far as the model sees them.
bool HoldsAreas(const FruImage::FRU& fru) {
    return fru.IsSound() && TextObstacle(fru).empty();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const FRU_TEXT read = ReadFruText(text, size % 2 == 0);
    if (!read.faults.empty())
        return 0;
    const FruImage::FRU fru = FruImage::Parse(read.image);
    Require(EditFruText(read, fru) == text || !fru.IsSound());
    if (!HoldsAreas(fru))
        return 0;
    Require(ReadFruText(ComposeFruText({}, fru), false).image == read.image);
    FruImage::BYTES other = read.image;
    for (std::size_t offset = 16; offset < other.size(); offset += 7)
        other[offset] ^= data[offset % size];
    const FruImage::FRU changed = FruImage::Parse(other);
    if (!HoldsAreas(changed))
        return 0;
    const FRU_TEXT edited = ReadFruText(EditFruText(read, changed), size % 2 == 0);
    Require(edited.faults.empty() && edited.image == changed.bytes);
    return 0;
}
