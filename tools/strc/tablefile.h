// The compiled form of a string table, as the library loads it.
//
// All numbers are little-endian:
//   0              count, 32 bits
//   4              offset of each text from the start of the file, 32 bits each, even
//   4 + 4 * count  length of each text in 16-bit units with its terminating 0, 32 bits each
//   4 + 8 * count  the texts in UTF-16 without surrogates, one after another
//   last           one unit that brings the sum of the file's 16-bit words to 0
#pragma once

#include "tools/strc/texttable.h"

#include <string>

namespace Frudata_Private {

/// The compiled file's bytes.
std::string CompileTable(const TEXT_TABLE& table);

/// Reads a compiled file's bytes. @return null, or their fault
const char* ReadCompiledTable(const std::string& bytes, TEXT_TABLE& table);

} // namespace Frudata_Private
