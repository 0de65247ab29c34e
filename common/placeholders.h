// Checks a localised text against the arguments that it is formatted with.
#pragma once

/// Whether the placeholders of `text` are exactly those of `arguments` (see stringid.h), so that the
/// text can be given to a wide printf function with them. A text comes from a file that anyone may have
/// written: a placeholder too many or of another type would make printf read what was never passed.
template <typename CHARACTER> constexpr bool PlaceholdersMatch(const CHARACTER* text, const char* arguments) {
    const auto isOneOf = [](CHARACTER character, const char* set) {
        while (*set && static_cast<CHARACTER>(*set) != character)
            ++set;
        return *set != 0;
    };
    while (*text) {
        if (*text++ != '%')
            continue;
        if (*text == '%') {
            ++text;
            continue;
        }
        while (isOneOf(*text, "-+ 0"))
            ++text;
        // Two digits are more than any column of ours needs and keep a text from asking for gigabytes.
        for (int digits = 0; digits < 2 && isOneOf(*text, "0123456789"); ++digits)
            ++text;
        char argument = 0;
        if (*text == 's')
            argument = 's';
        else if (isOneOf(*text, "udixX"))
            argument = 'u';
        else if (*text == 'l' && *++text == 's')
            argument = 'w';
        if (argument == 0 || argument != *arguments)
            return false;
        ++arguments;
        ++text;
    }
    return *arguments == 0;
}
