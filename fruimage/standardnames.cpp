#include "fruimage/names.h"
#include "fruimage/text.h"

#include <array>

namespace FruImage {

namespace {

constexpr std::array<std::string_view, 37> CHASSIS_TYPES = {"",
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
                                                            "Detachable",
                                                            "IoT gateway",
                                                            "Embedded PC",
                                                            "Mini PC",
                                                            "Stick PC"};

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

/// Lower case, without blanks and hyphens.
std::string Folded(std::string_view text) {
    std::string folded;
    for (const char character : text)
        if (character != ' ' && character != '-')
            folded += static_cast<char>(character >= 'A' && character <= 'Z' ? character + ('a' - 'A') : character);
    return folded;
}

/// The index of `name` in `names`, from `first` on.
std::optional<std::uint8_t> Find(std::span<const std::string_view> names, std::size_t first, std::string_view name) {
    const std::string wanted = Folded(name);
    for (std::size_t index = first; index < names.size(); ++index)
        if (Folded(names[index]) == wanted)
            return static_cast<std::uint8_t>(index);
    return std::nullopt;
}

} // namespace

std::string_view ChassisTypeName(std::uint8_t type) {
    return type < CHASSIS_TYPES.size() ? CHASSIS_TYPES[type] : std::string_view();
}

std::optional<std::uint8_t> ChassisTypeFromName(std::string_view name) {
    return Find(CHASSIS_TYPES, 1, name);
}

std::string ChassisTypeText(std::uint8_t type) {
    const std::string_view name = ChassisTypeName(type);
    return name.empty() ? Text("type ", type) : Text(name, " (", type, ")");
}

std::string_view LanguageName(std::uint8_t code) {
    return code < LANGUAGES.size() ? LANGUAGES[code] : std::string_view();
}

std::optional<std::uint8_t> LanguageFromName(std::string_view name) {
    return Find(LANGUAGES, 0, name);
}

} // namespace FruImage
