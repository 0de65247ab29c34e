// Arrays whose size comes from outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace Frudata_Private {

/// `count` elements, all 0; null where there is no memory for them. A size that no object can have is refused here,
/// because the operator throws for it even where it is asked not to.
template <typename ELEMENT> std::unique_ptr<ELEMENT[]> AllocateArray(std::uint64_t count) {
    if (count > PTRDIFF_MAX / sizeof(ELEMENT))
        return nullptr;
    return std::unique_ptr<ELEMENT[]>(new (std::nothrow) ELEMENT[static_cast<std::size_t>(count)]());
}

} // namespace Frudata_Private
