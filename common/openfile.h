// Opening the files that a host or the current directory names.
#pragma once

#include "common/scopedfile.h"
#include "frudata/types.h"

#include <memory>

namespace Frudata_Private {

/// What may be opened besides a regular file.
enum OPEN_ALSO {
    OPEN_NOTHING_ELSE,
    OPEN_TERMINAL
};

/// Opens the file at `path` to read ("r"), write ("w") or append ("a"), close-on-exec. Refuses without waiting what may
/// block or never end (directories, FIFOs, sockets, devices) and files of sysfs, which are shorter than their size.
/// @return null when it is refused or cannot be opened
SCOPED_FILE OpenFile(const char* path, char mode, OPEN_ALSO also = OPEN_NOTHING_ELSE);

/// `text` in the current locale's multibyte form, cut at as many bytes as it has characters.
/// @return null when it cannot be converted or the allocation fails
std::unique_ptr<char[]> ToMultibyte(const WCHAR* text);

} // namespace Frudata_Private
