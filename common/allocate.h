// Arrays whose size comes from outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace Frudata_Private {

/// `count` elements, all 0, or null when memory runs out. Refuses a size above PTRDIFF_MAX itself: operator new throws
/// for one even with std::nothrow.
template <typename ELEMENT> std::unique_ptr<ELEMENT[]> AllocateArray(std::uint64_t count) {
    if (count > PTRDIFF_MAX / sizeof(ELEMENT))
        return nullptr;
    return std::unique_ptr<ELEMENT[]>(new (std::nothrow) ELEMENT[static_cast<std::size_t>(count)]());
}

} // namespace Frudata_Private
