// A FRU's contents written out: for people, and as JSON (docs/json.md).
#pragma once

#include "tools/fructl/contents.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Fructl {

/// Version of the JSON form, in every document as "schema".
inline constexpr const char* SCHEMA = "fructl/1";

/// Every area and field.
std::string TextReport(const CONTENTS& contents);

/// One FRU: source, status, problems, areas, fields.
nlohmann::json JsonReport(const CONTENTS& contents);
nlohmann::json JsonSource(const SOURCE& source);
nlohmann::json JsonProblems(const FRU& fru);
/// Value, type and raw bytes of a field.
nlohmann::json JsonField(const std::string& name, const FIELD& field);

/// Prints a document to standard output, with its "schema".
void PrintJson(nlohmann::json document);
/// Prints to standard output.
void PrintText(const std::string& text);

} // namespace Fructl
