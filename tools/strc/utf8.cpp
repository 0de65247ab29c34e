#include "tools/strc/utf8.h"

namespace Frudata_Private {

namespace {

/// Lead bytes of the UTF-8 sequences (RFC 3629) and the least code point that needs each length.
struct CUtf8Form {
    unsigned int mask;
    unsigned int lead;
    std::size_t continuations;
    char32_t least;
};

constexpr CUtf8Form UTF8_FORMS[] = {
    {0x80, 0x00, 0, 0x0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
};

bool IsSurrogate(char32_t point) {
    return point >= 0xD800 && point <= 0xDFFF;
}

/// Takes one sequence off the front of `text`; false leaves it anywhere.
bool TakePoint(std::string_view& text, char32_t& point) {
    const unsigned int first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    for (const CUtf8Form& form : UTF8_FORMS) {
        if ((first & form.mask) != form.lead)
            continue;
        if (text.size() < form.continuations)
            return false;
        point = first & ~form.mask;
        for (std::size_t i = 0; i < form.continuations; ++i) {
            const unsigned int next = static_cast<unsigned char>(text[i]);
            if ((next & 0xC0) != 0x80)
                return false;
            point = (point << 6) | (next & 0x3F);
        }
        text.remove_prefix(form.continuations);
        return point >= form.least && point <= 0x10FFFF && !IsSurrogate(point);
    }
    return false;
}

} // namespace

const char* DecodeUtf8(std::string_view text, std::u16string& characters) {
    characters.clear();
    while (!text.empty()) {
        char32_t point = 0;
        if (!TakePoint(text, point))
            return "the text is not valid UTF-8";
        if (point == 0)
            return "the text contains a zero character, which would end it";
        // The library widens each unit alone: a pair of surrogates would show as two characters.
        if (point > 0xFFFF)
            return "the text contains a character above U+FFFF, which a table cannot hold";
        characters.push_back(static_cast<char16_t>(point));
    }
    return nullptr;
}

std::string EncodeUtf8(std::u16string_view characters) {
    std::string text;
    for (char32_t point : characters) {
        if (IsSurrogate(point))
            point = 0xFFFD;
        if (point < 0x80) {
            text += static_cast<char>(point);
            continue;
        }
        if (point < 0x800) {
            text += static_cast<char>(0xC0 | (point >> 6));
        } else {
            text += static_cast<char>(0xE0 | (point >> 12));
            text += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
        }
        text += static_cast<char>(0x80 | (point & 0x3F));
    }
    return text;
}

} // namespace Frudata_Private
