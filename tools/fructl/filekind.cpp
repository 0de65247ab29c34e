#include "tools/fructl/filekind.h"

#include "fruimage/image.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace Fructl {

bool LooksLikeImage(BYTE_VIEW bytes) {
    constexpr std::string_view KEY = "_FRU";
    if (bytes.empty())
        return false;
    const auto isText = [](UINT8 byte) { return std::isprint(byte) || std::isspace(byte); };
    if (!isText(bytes[0]))
        return true;
    if (std::search(bytes.begin(), bytes.end(), KEY.begin(), KEY.end()) != bytes.end())
        return false;
    // A damaged header may begin with any byte: the areas behind it decide.
    const FruImage::FRU fru = FruImage::Parse(bytes);
    return fru.state != FruImage::STATE::NOT_A_FRU || !std::all_of(bytes.begin(), bytes.end(), isText);
}

} // namespace Fructl
