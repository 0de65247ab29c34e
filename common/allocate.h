// Arrays whose size comes from outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace Frudata_Private {

/// `count` elements, all 0; null where there is no memory for them. A size above PTRDIFF_MAX is refused here: operator
/// new throws for it, with std::nothrow too.
template <typename ELEMENT> std::unique_ptr<ELEMENT[]> AllocateArray(std::uint64_t count) {
    if (count > PTRDIFF_MAX / sizeof(ELEMENT))
        return nullptr;
    return std::unique_ptr<ELEMENT[]>(new (std::nothrow) ELEMENT[static_cast<std::size_t>(count)]());
}

} // namespace Frudata_Private
