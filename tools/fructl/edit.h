// From the changes on the command line to a plan.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/recordwords.h"

#include "fruimage/edit.h"

#include <string>
#include <vector>

namespace Fructl {

using FruImage::EDIT;
using FruImage::PLAN;

/// The options beside the words.
struct EDIT_OPTIONS {
    std::vector<std::string> remove; ///< names of custom fields, areas
    bool resizeInternal = false;     ///< the length of the internal use area may change
    FruImage::LIMITS limits;
};

/// All changes of one call.
struct CHANGES {
    std::vector<EDIT> edits;
    std::vector<RECORD_CHANGE> records; ///< made first
};

/// Reads words of the command line:
///     AREA.FIELD=VALUE            sets a field, the language, or with VALUE "now" the date to the present minute
///     AREA.FIELD:ENCODING=VALUE   the same in an encoding: text, 6-bit, bcd+, binary, two-byte
///     AREA.custom+=VALUE          adds a custom field behind the last one
///     AREA.customN-  AREA-        removes a custom field; an area
///     multirecord.N.FIELD=VALUE   sets a field of a record; with FIELD "type", makes a new record
///     multirecord.N-              removes a record
///     internal.data=BYTES         replaces the bytes of an area by hexadecimal digits
///     multirecord.data=@FILE      replaces them by the bytes of a file
/// @throws CToolError for a name that does not exist, a word that is none of these, a name set twice
CHANGES ParseEdits(const std::vector<std::string>& words, const EDIT_OPTIONS& options);
/// The bytes of a file: of its hexadecimal text, in pairs or the form of `dump`, or the bytes themselves.
/// @throws CToolError
BYTES AreaBytes(const std::string& path);
/// Replaces the bytes of the internal use or the multi-record area.
EDIT ReplaceArea(AREA_ID area, BYTES bytes, bool resize);
/// The edits that give `target` the field values of `values`. @throws CToolError where it lacks an area
std::vector<EDIT> CopyFields(const FRU& values, const FRU& target);

/// All changes at once. `contents` may use SizeLimit() bytes, or as many as the limits say.
/// @throws CToolError with the reason of a refusal
PLAN MakePlan(const CONTENTS& contents, const CHANGES& changes, FruImage::LIMITS limits);
/// Throws `error` about the source of this name as a CToolError.
[[noreturn]] void Refuse(const FruImage::ERROR& error, const std::string& source);

} // namespace Fructl
