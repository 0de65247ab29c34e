// The names of the languages that the build compiles.
#pragma once

#include <string>
#include <vector>

namespace Fructl {

/// Names such as "en-us": two letters of a language, a hyphen, two letters of a country. The first one stands in for
/// all others.
const std::vector<std::string>& Languages();
/// The language of LC_ALL, LC_MESSAGES and LANG.
std::string LanguageOfLocale();
/// The name of the directory of a language's texts.
std::string TextDirectory(std::string language);

} // namespace Fructl
