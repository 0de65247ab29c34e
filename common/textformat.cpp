#include "common/textformat.h"

#include "common/placeholders.h"

namespace Frudata_Private {

const WCHAR* GetFormat(STRING_ID id, const char* arguments) {
    const WCHAR* text = GetText(id);
    return text && PlaceholdersFit(text, arguments) ? text : nullptr;
}

} // namespace Frudata_Private
