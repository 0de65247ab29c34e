// A FRU's contents written out for people.
#pragma once

#include "tools/fructl/contents.h"

#include <string>

namespace Fructl {

/// Every area and field.
std::string TextReport(const CONTENTS& contents);
/// Prints to standard output.
void PrintText(const std::string& text);

} // namespace Fructl
