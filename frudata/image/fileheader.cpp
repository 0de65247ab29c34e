#include "frudata/image/fileheader.h"

#include "common/allocate.h"
#include "common/assertion.h"

#include <cstring>

namespace Frudata_Private {

bool CFileHeader::Store(const WCHAR* operation, std::unique_ptr<char[]>& value, const char* text) {
    const CTrace trace(L"CFileHeader", operation);
    Assert(text != nullptr, "fileheader.cpp", "text");
    const std::size_t size = std::strlen(text) + 1;
    value = AllocateArray<char>(size);
    if (!value)
        return false;
    std::memcpy(value.get(), text, size);
    return trace.Exit(true);
}

} // namespace Frudata_Private
