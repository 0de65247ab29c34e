// Checks a localised text against the arguments that it is formatted with.
#pragma once

namespace Frudata_Private {

/// One placeholder of a text.
struct PLACEHOLDER {
    char argument = 0;     ///< its argument, a letter of stringid.h
    unsigned position = 0; ///< the number of its argument, from 1; 0: the next one
    bool isPlain = true;   ///< in the spelling of this library's texts
};

template <typename CHARACTER> constexpr bool IsOneOf(CHARACTER character, const char* set) {
    while (*set && static_cast<CHARACTER>(*set) != character)
        ++set;
    return *set != 0;
}

/// No column needs more than two digits; a third would let a text ask for much memory.
template <typename CHARACTER> constexpr void SkipNumber(const CHARACTER*& text) {
    for (int digits = 0; digits < 2 && IsOneOf(*text, "0123456789"); ++digits)
        ++text;
}

/// Reads a length and a conversion. @return false where they take no argument that callers give
template <typename CHARACTER> constexpr bool ReadConversion(const CHARACTER*& text, PLACEHOLDER& found) {
    int shorts = 0;
    while (*text == 'h' && shorts < 2) {
        ++text;
        ++shorts;
    }
    const bool isLong = *text == 'l' && shorts == 0;
    text += isLong ? 1 : 0;
    const bool isNumber = IsOneOf(*text, "udixXo");
    if (isNumber)
        found.argument = 'u';
    else if (*text == 's' && shorts < 2)
        found.argument = isLong ? 'w' : 's';
    else if (*text == 'S' && shorts == 0 && !isLong)
        found.argument = 'w';
    found.isPlain = found.isPlain && shorts == 0 && !(isNumber && isLong) && !IsOneOf(*text, "So");
    // A number has 32 bits, and a long may have more.
    if (found.argument == 0 || (isNumber && isLong && sizeof(long) != 4))
        return false;
    ++text;
    return true;
}

/// Reads what stands behind a percent sign. @return false where it takes no argument that callers give
template <typename CHARACTER> constexpr bool ReadPlaceholder(const CHARACTER*& text, PLACEHOLDER& found) {
    if (IsOneOf(text[0], "123456789") && text[1] == '$') {
        found.position = static_cast<unsigned>(text[0] - '0');
        text += 2;
    }
    while (IsOneOf(*text, "-+ 0#'")) {
        found.isPlain = found.isPlain && !IsOneOf(*text, "#'");
        ++text;
    }
    SkipNumber(text);
    if (*text == '.') {
        found.isPlain = false;
        SkipNumber(++text);
    }
    return ReadConversion(text, found);
}

/// The arguments that a text takes.
struct PLACEHOLDERS {
    unsigned given = 0; ///< arguments that there are
    unsigned count = 0; ///< placeholders
    unsigned used = 0;  ///< bit n: argument n
    bool isPlain = true;
    bool areNumbered = false;
};

/// Reads the placeholders of `text`. @return whether each takes one of `arguments` (see stringid.h), and either all or
/// none have a position
template <typename CHARACTER>
constexpr bool ReadPlaceholders(const CHARACTER* text, const char* arguments, PLACEHOLDERS& all) {
    while (arguments[all.given])
        ++all.given;
    while (*text) {
        if (*text++ != '%')
            continue;
        if (*text == '%') {
            ++text;
            continue;
        }
        PLACEHOLDER found;
        if (!ReadPlaceholder(text, found))
            return false;
        const unsigned index = found.position > 0 ? found.position - 1 : all.count;
        if (index >= all.given || arguments[index] != found.argument ||
            (all.count > 0 && all.areNumbered != (found.position > 0)))
            return false;
        all.areNumbered = found.position > 0;
        all.isPlain = all.isPlain && found.isPlain;
        all.used |= 1U << index;
        ++all.count;
    }
    return true;
}

/// Whether `text` can go to a wide printf function with `arguments`. Anyone may have written the text's file, and one
/// placeholder too many, or of another type, would make printf read what was never passed. A text may leave out the
/// last arguments but none before one it takes: printf could not find that one.
template <typename CHARACTER> constexpr bool PlaceholdersFit(const CHARACTER* text, const char* arguments) {
    PLACEHOLDERS all;
    return ReadPlaceholders(text, arguments, all) && (all.used & (all.used + 1)) == 0;
}

/// Whether `text` takes each of `arguments` once, in the spelling of this library's texts.
template <typename CHARACTER> constexpr bool PlaceholdersMatch(const CHARACTER* text, const char* arguments) {
    PLACEHOLDERS all;
    return ReadPlaceholders(text, arguments, all) && all.isPlain && all.count == all.given &&
           all.used == (1U << all.given) - 1;
}

} // namespace Frudata_Private
