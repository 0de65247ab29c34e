// Texts of the string table, formatted with their callers' arguments.
#pragma once

#include "common/stringresource.h"

#include <cwchar>

namespace Frudata_Private {

/// The text of `id`, or null where it does not fit `arguments` (see placeholders.h).
const WCHAR* GetFormat(STRING_ID id, const char* arguments);

/// The letter of stringid.h for an argument of this type.
constexpr char ArgumentLetter(const char*) {
    return 's';
}
constexpr char ArgumentLetter(const WCHAR*) {
    return 'w';
}
constexpr char ArgumentLetter(UINT32) {
    return 'u';
}

/// The letters of `ARGUMENTS`.
template <typename... ARGUMENTS>
inline constexpr char ARGUMENT_LETTERS[sizeof...(ARGUMENTS) + 1] = {ArgumentLetter(ARGUMENTS{})..., 0};

/// Formats the text of `id` into `text`, which has `size` characters: cut where it is longer, empty where the string
/// table has none that takes these arguments.
template <typename... ARGUMENTS> void FormatText(WCHAR* text, std::size_t size, STRING_ID id, ARGUMENTS... arguments) {
    std::wmemset(text, 0, size);
    if (const WCHAR* format = GetFormat(id, ARGUMENT_LETTERS<ARGUMENTS...>))
        std::swprintf(text, size, format, arguments...);
    text[size - 1] = 0;
}

} // namespace Frudata_Private
