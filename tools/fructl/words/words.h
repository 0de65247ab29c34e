// The tool's own words in the language of this run, for what people read on standard output. The English phrase is the
// key. Messages on standard error stay English, so that logs of different machines can be compared and searched.
#pragma once

#include "tools/fructl/words/de-de.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <type_traits>

namespace Fructl {

/// The languages that have phrases, beside the texts of frudata/str.
inline constexpr struct {
    std::string_view language;
    PHRASES phrases;
} TRANSLATIONS[] = {{"de-de", DE_DE}};

/// The number of the row of an English phrase; that behind the last row where there is none.
constexpr std::size_t FindRow(PHRASES phrases, std::string_view english) {
    std::size_t first = 0;
    std::size_t end = phrases.size();
    while (first < end) {
        const std::size_t middle = (first + end) / 2;
        if (phrases[middle].english < english)
            first = middle + 1;
        else
            end = middle;
    }
    return first < phrases.size() && phrases[first].english == english ? first : phrases.size();
}

/// From here on the words are those of this language; English where it has none.
void ChooseWords(std::string_view language);
/// The words for a phrase; the phrase itself where there are none.
std::string_view Word(std::string_view english);

/// An English format of which every language has a row: that is checked where it is compiled.
template <class... ARGUMENTS> struct PHRASE {
    template <std::size_t LENGTH> consteval PHRASE(const char (&english)[LENGTH]) : format(english) {
        for (const auto& translation : TRANSLATIONS)
            if (FindRow(translation.phrases, std::string_view(english, LENGTH - 1)) == translation.phrases.size())
                throw "a language lacks this phrase";
    }

    fmt::format_string<ARGUMENTS...> format;
};

/// The words for a phrase, filled in.
template <class... ARGUMENTS>
std::string Say(const PHRASE<std::type_identity_t<const ARGUMENTS&>...> phrase, const ARGUMENTS&... arguments) {
    const fmt::string_view english = phrase.format;
    const std::string_view words = Word({english.data(), english.size()});
    return fmt::vformat(fmt::string_view(words.data(), words.size()), fmt::make_format_args(arguments...));
}

/// "1 byte", "2 bytes".
std::string SayCount(std::size_t count, std::string_view unit);
/// A composed English text, such as a finding: the words for the phrases that it is made of. Nothing in it may be the
/// content of a FRU, which is the same in every language.
std::string Spoken(std::string_view english);
/// The English phrase for such words, in any case of ASCII letters; the words themselves where there is none.
std::string InEnglish(std::string_view words);

} // namespace Fructl
