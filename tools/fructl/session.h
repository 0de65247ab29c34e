// Sessions with the library over one FRU, each in a child process of its own.
#pragma once

#include "tools/fructl/child.h"
#include "tools/fructl/source.h"

#include <map>
#include <string>
#include <vector>

namespace Fructl {

/// One change of a field.
struct ASSIGNMENT {
    FIELD_NAME name;
    FIELD before;
    BYTES data;

    std::ptrdiff_t Growth() const {
        return static_cast<std::ptrdiff_t>(data.size()) - static_cast<std::ptrdiff_t>(before.data.size());
    }
};

/// All changes of one call.
struct EDITS {
    std::vector<ASSIGNMENT> fields;
    std::optional<BYTES> internalUse;
    std::optional<BYTES> multiRecord;

    bool IsEmpty() const { return fields.empty() && !internalUse && !multiRecord; }
    bool Touches(FRU_AREA area) const;
};

/// Titles in the language of this run: for each area its own, then those of its fixed fields, then the one
/// of its custom fields. An empty one: the library has none.
using TITLES = std::map<FRU_AREA, std::vector<std::string>>;
const TITLES& Titles();
/// The title of field `position` of an area; the tool's own where the library has none.
std::string Title(const AREA_ROW& row, std::size_t position);
std::string AreaTitle(FRU_AREA area);

/// Has the library load the source and compares what it sees with `contents.fru`. What it refuses becomes a
/// problem of `contents.fru`.
void LoadWithLibrary(CONTENTS& contents);
/// For ReadDevice: all that the device has.
inline constexpr std::size_t WHOLE = ~std::size_t{0};
/// Reads what a device's header and areas cover, and at least `atLeast` bytes. @throws CToolError
BYTES ReadDevice(const SOURCE& source, std::size_t atLeast, const PROGRESS& progress = {});
/// Writes a device's bytes from its start on, except where `known` says that they are there. @throws CToolError
void WriteDevice(const SOURCE& source, BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress);

/// A sound image with `edits`, made by the library in a simulated device. @throws CToolError
BYTES EditImage(const BYTES& image, const FRU& fru, const EDITS& edits, const std::string& name);
/// Saves the source with `edits` as a FRU text file `path`, relative to `directory`. @throws CToolError
void SaveText(const CONTENTS& contents, const EDITS& edits, const std::string& directory, const std::string& path);
/// The FRU devices that the SDR repository names, in its order.
std::vector<SOURCE> ScanDevices();
/// Loads the device, applies `edits` and writes it back through the table. @throws CToolError
void CommitDevice(const CONTENTS& contents, const EDITS& edits, const PROGRESS& progress);

} // namespace Fructl
