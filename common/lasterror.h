// The caller-visible reason of the last failure.
#pragma once

#include "common/textformat.h"

namespace Frudata_Private {

/// Characters of one message, terminator included.
constexpr UINTN LAST_ERROR_SIZE = 512;

// Two buffers take turns: a message handed out survives the next failure.
extern WCHAR ga_lastError1[LAST_ERROR_SIZE];
extern WCHAR ga_lastError2[LAST_ERROR_SIZE];
/// The buffer that SetLastError writes next.
extern WCHAR* gp_lastError;

/// Empties both buffers.
void ResetLastError();

/// Formats a message into the current buffer, cut at 511 characters. @return the buffer; null when
/// `format` is null, and nothing is recorded
const WCHAR* SetLastError(const WCHAR* format, ...);

/// Hands out the message recorded since the last call, or null, and switches to the other buffer.
const WCHAR* TakeLastError();

/// Records the text of `id`, formatted with `arguments`.
template <typename... ARGUMENTS> void RecordLastError(STRING_ID id, ARGUMENTS... arguments) {
    SetLastError(GetFormat(id, ARGUMENT_LETTERS<ARGUMENTS...>), arguments...);
}

} // namespace Frudata_Private
