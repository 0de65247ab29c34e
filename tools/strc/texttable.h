// The texts of one language, between the readable source and the compiled file.
#pragma once

#include <string>
#include <vector>

namespace Frudata_Private {

/// Texts by number, in UTF-16 without surrogates; a number without a text has an empty one.
using TEXT_TABLE = std::vector<std::u16string>;

} // namespace Frudata_Private
