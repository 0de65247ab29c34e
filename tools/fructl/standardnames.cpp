#include "tools/fructl/standardnames.h"

#include <fmt/format.h>

#include <array>
#include <cctype>
#include <utility>

namespace Fructl {

namespace {

constexpr std::array<std::string_view, 33> CHASSIS_TYPES = {"",
                                                            "Other",
                                                            "Unknown",
                                                            "Desktop",
                                                            "Low profile desktop",
                                                            "Pizza box",
                                                            "Mini tower",
                                                            "Tower",
                                                            "Portable",
                                                            "Laptop",
                                                            "Notebook",
                                                            "Hand held",
                                                            "Docking station",
                                                            "All in one",
                                                            "Sub notebook",
                                                            "Space-saving",
                                                            "Lunch box",
                                                            "Main server chassis",
                                                            "Expansion chassis",
                                                            "Sub chassis",
                                                            "Bus expansion chassis",
                                                            "Peripheral chassis",
                                                            "RAID chassis",
                                                            "Rack mount chassis",
                                                            "Sealed-case PC",
                                                            "Multi-system chassis",
                                                            "Compact PCI",
                                                            "Advanced TCA",
                                                            "Blade",
                                                            "Blade enclosure",
                                                            "Tablet",
                                                            "Convertible",
                                                            "Detachable"};

constexpr std::array<std::string_view, 137> LANGUAGES = {
    "English",    "Afar",           "Abkhazian",      "Afrikaans",    "Amharic",     "Arabic",      "Assamese",
    "Aymara",     "Azerbaijani",    "Bashkir",        "Byelorussian", "Bulgarian",   "Bihari",      "Bislama",
    "Bengali",    "Tibetan",        "Breton",         "Catalan",      "Corsican",    "Czech",       "Welsh",
    "Danish",     "German",         "Bhutani",        "Greek",        "English",     "Esperanto",   "Spanish",
    "Estonian",   "Basque",         "Persian",        "Finnish",      "Fiji",        "Faeroese",    "French",
    "Frisian",    "Irish",          "Scots Gaelic",   "Galician",     "Guarani",     "Gujarati",    "Hausa",
    "Hindi",      "Croatian",       "Hungarian",      "Armenian",     "Interlingua", "Interlingue", "Inupiak",
    "Indonesian", "Icelandic",      "Italian",        "Hebrew",       "Japanese",    "Yiddish",     "Javanese",
    "Georgian",   "Kazakh",         "Greenlandic",    "Cambodian",    "Kannada",     "Korean",      "Kashmiri",
    "Kurdish",    "Kirghiz",        "Latin",          "Lingala",      "Laothian",    "Lithuanian",  "Latvian",
    "Malagasy",   "Maori",          "Macedonian",     "Malayalam",    "Mongolian",   "Moldavian",   "Marathi",
    "Malay",      "Maltese",        "Burmese",        "Nauru",        "Nepali",      "Dutch",       "Norwegian",
    "Occitan",    "Oromo",          "Oriya",          "Punjabi",      "Polish",      "Pashto",      "Portuguese",
    "Quechua",    "Rhaeto-Romance", "Kirundi",        "Romanian",     "Russian",     "Kinyarwanda", "Sanskrit",
    "Sindhi",     "Sangro",         "Serbo-Croatian", "Singhalese",   "Slovak",      "Slovenian",   "Samoan",
    "Shona",      "Somali",         "Albanian",       "Serbian",      "Siswati",     "Sesotho",     "Sundanese",
    "Swedish",    "Swahili",        "Tamil",          "Tegulu",       "Tajik",       "Thai",        "Tigrinya",
    "Turkmen",    "Tagalog",        "Setswana",       "Tonga",        "Turkish",     "Tsonga",      "Tatar",
    "Twi",        "Ukrainian",      "Urdu",           "Uzbek",        "Vietnamese",  "Volapuk",     "Wolof",
    "Xhosa",      "Yoruba",         "Chinese",        "Zulu"};

constexpr std::pair<UINT8, std::string_view> COMPLETION_CODES[] = {{0x80, "write protected or not possible now"},
                                                                   {0x81, "FRU device busy"},
                                                                   {0x82, "bus error"},
                                                                   {0x83, "no acknowledgement from the device"},
                                                                   {0xC0, "node busy"},
                                                                   {0xC1, "command not supported"},
                                                                   {0xC3, "time-out"},
                                                                   {0xC4, "out of space"},
                                                                   {0xC7, "wrong request length"},
                                                                   {0xC8, "request too long"},
                                                                   {0xC9, "offset out of range"},
                                                                   {0xCA, "cannot return that many bytes"},
                                                                   {0xCB, "no such device"},
                                                                   {0xCC, "invalid request"},
                                                                   {0xD3, "destination not there"},
                                                                   {0xD4, "not permitted"},
                                                                   {0xD5, "not possible in the present state"},
                                                                   {0xFF, "unspecified error"}};

std::string Folded(std::string_view text) {
    std::string folded;
    for (const char character : text)
        if (character != ' ' && character != '-')
            folded += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return folded;
}

} // namespace

std::string_view ChassisTypeName(UINT8 type) {
    return type < CHASSIS_TYPES.size() ? CHASSIS_TYPES[type] : std::string_view();
}

std::optional<UINT8> ChassisTypeFromName(std::string_view name) {
    for (std::size_t type = 1; type < CHASSIS_TYPES.size(); ++type)
        if (Folded(CHASSIS_TYPES[type]) == Folded(name))
            return static_cast<UINT8>(type);
    return std::nullopt;
}

std::string ChassisTypeText(UINT8 type) {
    const std::string_view name = ChassisTypeName(type);
    return name.empty() ? fmt::format("type {}", type) : fmt::format("{} ({})", name, type);
}

std::string_view LanguageName(UINT8 code) {
    return code < LANGUAGES.size() ? LANGUAGES[code] : std::string_view();
}

std::string CompletionCodeText(UINT8 code) {
    for (const auto& [known, text] : COMPLETION_CODES)
        if (known == code)
            return fmt::format("{} (completion code {:02X}h)", text, code);
    return fmt::format("completion code {:02X}h", code);
}

} // namespace Fructl
