// Names that the standards give to numbers: chassis types, languages, IPMI completion codes.
#pragma once

#include "frudata/types.h"

#include <optional>
#include <string>
#include <string_view>

namespace Fructl {

/// Name of a chassis type (SMBIOS enclosure types 1 to 32); empty for any other number.
std::string_view ChassisTypeName(UINT8 type);
/// The chassis type of a name, without regard to case, blanks and hyphens.
std::optional<UINT8> ChassisTypeFromName(std::string_view name);
/// "Rack mount chassis (23)"; "type 200" where there is no name.
std::string ChassisTypeText(UINT8 type);

/// Name of a language code (FRU Information Storage Definition, section 15); empty where undefined.
std::string_view LanguageName(UINT8 code);

/// What an IPMI completion code means (IPMI 2.0, section 5.2), with its number.
std::string CompletionCodeText(UINT8 code);

} // namespace Fructl
