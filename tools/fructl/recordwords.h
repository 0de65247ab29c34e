// The fields of multi-records by name: multirecord.1.rated-capacity. The tool's only access to the
// meaning of records.
#pragma once

#include "tools/fructl/compare.h"

#include "fruimage/edit.h"
#include "fruimage/records/records.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Fructl {

/// A field of a record, or with the key "type" the record itself.
struct RECORD_NAME {
    std::size_t index = 0; ///< of the record, counted from 0
    std::string key;
};
/// Reads "multirecord.N.KEY"; nothing for any other text. The record decides whether the key exists.
std::optional<RECORD_NAME> ParseRecordName(std::string_view text);
std::string RecordNameText(std::size_t index, std::string_view key);

/// The decoded record, in the language of this run except `key`, `value`, `unit` and `bare`.
FruRecords::DECODED_RECORD Decoded(const RECORD& record);
/// Its fields, and its type, as entries.
std::vector<ENTRY> RecordEntries(const AREA& area);

/// A field of a record to be set.
struct RECORD_CHANGE {
    RECORD_NAME name;
    std::string value;
};
/// The edits that set fields of records. A new record, behind the last one, begins with its type.
/// @throws CToolError for what is no record, no field of it, or no value of the field
std::vector<FruImage::EDIT> RecordEdits(const std::vector<RECORD_CHANGE>& changes, const FRU& fru);

} // namespace Fructl
