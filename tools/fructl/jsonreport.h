// A FRU's contents as JSON (docs/json.md).
#pragma once

#include "tools/fructl/compare.h"
#include "tools/fructl/contents.h"
#include "tools/fructl/recordwords.h"

#include <nlohmann/json_fwd.hpp>

namespace Fructl {

/// Version of the JSON form, in every document as "schema".
inline constexpr const char* SCHEMA = "fructl/1";

/// One FRU: source, status, findings, areas, fields, and all else that its image is built from.
nlohmann::json JsonReport(const CONTENTS& contents);
nlohmann::json JsonSource(const SOURCE& source);
/// The findings of severity DAMAGE.
nlohmann::json JsonProblems(const FRU& fru);
/// All findings.
nlohmann::json JsonFindings(const FRU& fru);
/// The JSON value of a record's field.
nlohmann::json JsonRecordValue(const FruRecords::RECORD_FIELD& field);
/// Value, type and raw bytes of an entry.
nlohmann::json JsonEntry(const ENTRY& entry);

/// Prints a document to standard output, with its "schema".
void PrintJson(nlohmann::json document);

} // namespace Fructl
