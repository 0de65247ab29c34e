#include "frudata/areas/typelength.h"

#include "common/allocate.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace Frudata_Private {

bool CFruField::Assign(int type, UINT8 length, const UINT8* data) {
    std::unique_ptr<UINT8[]> copy(new (std::nothrow) UINT8[length + 1U]);
    if (!copy)
        return false;
    std::memcpy(copy.get(), data, length);
    copy[length] = 0;
    m_data = std::move(copy);
    m_typeLength = static_cast<UINT8>(type | length);
    return true;
}

std::unique_ptr<WCHAR[]> ToDisplayText(const UINT8* data) {
    const char* bytes = data ? reinterpret_cast<const char*>(data) : "";
    std::size_t length = std::mbstowcs(nullptr, bytes, 0);
    if (length == static_cast<std::size_t>(-1)) {
        bytes = "";
        length = 0;
    }
    std::unique_ptr<WCHAR[]> text = AllocateArray<WCHAR>(std::uint64_t{length} + 1);
    // The last place stays 0: a text that ends inside a character is converted without a terminator.
    if (text)
        std::mbstowcs(text.get(), bytes, length);
    return text;
}

} // namespace Frudata_Private
