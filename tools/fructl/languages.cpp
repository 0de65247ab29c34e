#include "tools/fructl/languages.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace Fructl {

const std::vector<std::string>& Languages() {
    static const std::vector<std::string> languages = [] {
        std::istringstream words(FRUCTL_LANGUAGES);
        std::vector<std::string> names;
        for (std::string name; words >> name;)
            names.push_back(name);
        return names;
    }();
    return languages;
}

std::string LanguageOfLocale() {
    std::string_view locale;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(variable); value && *value && locale.empty())
            locale = value;
    const auto speaks = [&](const std::string& name) {
        return locale.starts_with(name.substr(0, 2)) && (locale.size() == 2 || locale[2] < 'a');
    };
    const auto found = std::find_if(Languages().begin(), Languages().end(), speaks);
    return found == Languages().end() ? Languages().front() : *found;
}

std::string TextDirectory(std::string language) {
    std::erase(language, '-');
    return language;
}

} // namespace Fructl
