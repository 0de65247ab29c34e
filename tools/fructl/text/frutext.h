// A FRU text file as the lines that it is made of (docs/file-format.md): read with the place of every value, edited
// line by line, composed from nothing. The library judges whether it takes a file; this names what is wrong with it.
#pragma once

#include "common/ipmi.h"
#include "fruimage/image.h"

#include <string>
#include <string_view>
#include <vector>

namespace Fructl {

/// Most bytes of an area block: one fewer than the buffer of the format's readers.
inline constexpr std::size_t MAXIMUM_BLOCK = 511;

/// One line, and what of it is not a comment.
struct TEXT_LINE {
    std::string text;           ///< without its line end
    std::string end;            ///< its line end as it stands; empty where the file ends without one
    std::size_t codeBegin = 0;  ///< what counts: without the comment and the blanks at both ends
    std::size_t codeEnd = 0;    ///< equal to `codeBegin` in an empty line
    FruImage::BYTES bytes = {}; ///< of a data line: the area bytes that it stands for

    std::string_view Code() const { return std::string_view(text).substr(codeBegin, codeEnd - codeBegin); }
};

/// One area block. Lines are indices into FRU_TEXT::lines.
struct TEXT_BLOCK {
    FruImage::AREA_ID area = FruImage::AREA_ID::HEADER;
    std::size_t tag = 0;   ///< the line with the area's tag
    std::size_t end = 0;   ///< the line behind the last data line
    FruImage::BYTES bytes; ///< as they stand: without the padding and the checksum that are implied
};

struct TEXT_FAULT {
    std::size_t line = 0; ///< counted from 1; 0: the file as a whole
    std::string text;     ///< for people: one clause without a full stop
};

/// One text file taken apart. Total: any text gives one, its faults say why a reader refuses it.
struct FRU_TEXT {
    std::vector<TEXT_LINE> lines;
    std::vector<TEXT_BLOCK> blocks; ///< the common header's first, then those of the areas
    std::string title;              ///< the bytes of the file
    std::size_t lengthLine = 0;     ///< the line of _DATA_LEN
    std::vector<TEXT_FAULT> faults; ///< empty: nothing speaks against the file
    FruImage::BYTES image;          ///< the image that it describes, up to the end of its last area
};

/// @param acceptsMiniBmc whether FRUs behind a mini-BMC are taken (platform code 3)
FRU_TEXT ReadFruText(std::string_view text, bool acceptsMiniBmc);

/// The file with the areas of `image` in the place of its own. Comments, and lines that stand for the same bytes as
/// before, stay as they are. For texts without faults.
std::string EditFruText(const FRU_TEXT& before, const FruImage::FRU& image);

/// What a text file says besides the image. Addresses as FRU_LOCATOR has them.
struct TEXT_HEADER {
    std::string name;  ///< the file's own name
    std::string title; ///< of the FRU; may be empty
    std::string type = "IMBDEVICE";
    unsigned deviceId = 0;
    unsigned controller = Frudata_Private::BMC_ADDRESS;
    unsigned lun = 0;
    unsigned bus = Frudata_Private::NO_BUS;
    unsigned address = Frudata_Private::BMC_ADDRESS;
};
/// A text file of the image's areas, fields that text cannot hold as hexadecimal lines.
std::string ComposeFruText(const TEXT_HEADER& header, const FruImage::FRU& image);

/// Why no text file can hold the image byte for byte; empty where one can.
std::string TextObstacle(const FruImage::FRU& image);

} // namespace Fructl
