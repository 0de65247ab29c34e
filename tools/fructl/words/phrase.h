// One phrase of the tool in two languages.
#pragma once

#include <span>
#include <string_view>

namespace Fructl {

struct PHRASE_ROW {
    std::string_view english; ///< with {} where something is filled in, such as {:03X}
    std::string_view words;   ///< the same in the language, with the same {} in the same order
};
/// In the order of the English phrases' bytes.
using PHRASES = std::span<const PHRASE_ROW>;

} // namespace Fructl
