#include "tools/fructl/words/words.h"

#include "tools/fructl/bytes.h"

#include "fruimage/names.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace Fructl {

namespace {

/// What is behind the first {} of a format; `place` gets the {} itself, and is empty where there is none.
constexpr std::string_view NextPlace(std::string_view format, std::string_view& place) {
    const std::size_t open = format.find('{');
    place = open == std::string_view::npos ? "" : format.substr(open, format.find('}', open) + 1 - open);
    return place.empty() ? "" : format.substr(open + place.size());
}

constexpr bool HaveSamePlaces(std::string_view english, std::string_view words) {
    for (std::string_view left = "{", right = "{"; !left.empty() || !right.empty();) {
        english = NextPlace(english, left);
        words = NextPlace(words, right);
        if (left != right)
            return false;
    }
    return true;
}

constexpr bool IsInOrder(PHRASES phrases) {
    for (std::size_t index = 1; index < phrases.size(); ++index)
        if (phrases[index].english <= phrases[index - 1].english)
            return false;
    return true;
}

constexpr bool IsEach(bool (*isGood)(PHRASES)) {
    for (const auto& translation : TRANSLATIONS)
        if (!isGood(translation.phrases))
            return false;
    return true;
}

static_assert(IsEach(IsInOrder), "phrases are looked up by halves");
static_assert(IsEach([](PHRASES phrases) {
                  for (const PHRASE_ROW& row : phrases)
                      if (!HaveSamePlaces(row.english, row.words))
                          return false;
                  return true;
              }),
              "both sides of a phrase have the same {}");

PHRASES g_phrases;

/// What stands in `text` where the format has its {}; nothing where it is no such text.
std::optional<std::vector<std::string_view>> Match(std::string_view format, std::string_view text) {
    std::vector<std::string_view> parts;
    std::string_view place;
    std::string_view rest = NextPlace(format, place);
    const std::string_view head = format.substr(0, format.find('{'));
    if (place.empty() || !text.starts_with(head))
        return std::nullopt;
    text.remove_prefix(head.size());
    while (!place.empty()) {
        const std::string_view literal = rest.substr(0, rest.find('{'));
        rest = NextPlace(rest, place);
        const std::size_t end =
            place.empty() ? text.size() - std::min(text.size(), literal.size()) : text.find(literal);
        if (end == 0 || end == std::string_view::npos || text.substr(end).substr(0, literal.size()) != literal)
            return std::nullopt;
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + literal.size());
    }
    return parts;
}

/// Characters of a format that are no {}: the more of them are there, the surer is it meant.
std::size_t Certainty(std::string_view format) {
    std::size_t count = format.size();
    for (std::string_view place; format = NextPlace(format, place), !place.empty();)
        count -= place.size();
    return count;
}

std::string Filled(std::string_view words, const std::vector<std::string_view>& parts) {
    std::string text;
    for (const std::string_view part : parts) {
        text.append(words.substr(0, words.find('{'))).append(Spoken(part));
        words.remove_prefix(words.find('}') + 1);
    }
    return text.append(words);
}

} // namespace

void ChooseWords(std::string_view language) {
    g_phrases = {};
    for (const auto& translation : TRANSLATIONS)
        if (translation.language == language)
            g_phrases = translation.phrases;
}

std::string_view Word(std::string_view english) {
    const std::size_t row = FindRow(g_phrases, english);
    return row < g_phrases.size() ? g_phrases[row].words : english;
}

std::string SayCount(std::size_t count, std::string_view unit) {
    return Spoken(Counted(count, unit));
}

std::string Spoken(std::string_view english) {
    if (g_phrases.empty())
        return std::string(english);
    if (const std::size_t row = FindRow(g_phrases, english); row < g_phrases.size())
        return std::string(g_phrases[row].words);
    const auto split = [&](std::string_view head, std::string_view separator) {
        return Spoken(head) + std::string(separator) + Spoken(english.substr(head.size() + separator.size()));
    };
    if (const std::size_t end = english.find("; "); end != std::string_view::npos)
        return split(english.substr(0, end), "; ");
    const std::size_t colon = english.find(": ");
    if (colon != std::string_view::npos && FruImage::AreaFromName(english.substr(0, colon)))
        return split(english.substr(0, colon), ": ");
    std::vector<std::string_view> parts;
    std::string_view words = english;
    std::size_t most = 0;
    for (const PHRASE_ROW& row : g_phrases)
        if (const std::size_t certainty = Certainty(row.english); certainty > most)
            if (auto found = Match(row.english, english)) {
                parts = std::move(*found);
                words = row.words;
                most = certainty;
            }
    return Filled(words, parts);
}

std::string InEnglish(std::string_view words) {
    const auto isSame = [](char left, char right) {
        const auto lower = [](char letter) { return letter >= 'A' && letter <= 'Z' ? letter + ('a' - 'A') : letter; };
        return lower(left) == lower(right);
    };
    const auto found = std::ranges::find_if(
        g_phrases, [&](const PHRASE_ROW& row) { return std::ranges::equal(row.words, words, isSame); });
    return std::string(found == g_phrases.end() ? words : found->english);
}

} // namespace Fructl
