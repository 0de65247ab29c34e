// The languages of the library's texts: those that the build compiles, by name.
#pragma once

#include <string>
#include <vector>

namespace Fructl {

/// Names as "en-us": two letters of a language, a hyphen, two letters of a country. The first one stands in for
/// those that are not among them.
const std::vector<std::string>& Languages();
/// The one that LC_ALL, LC_MESSAGES and LANG ask for.
std::string LanguageOfLocale();
/// The name of the directory that holds a language's texts.
std::string TextDirectory(std::string language);

} // namespace Fructl
