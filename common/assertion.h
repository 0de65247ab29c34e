// Fatal assertions: part of the library's contract, in every build type.
#pragma once

namespace Frudata_Private {

/// Receives every failed assertion: prints `file` and `condition` to standard error and aborts. The one
/// place to replace where a failed assertion must not end the process (the fuzzers do).
[[noreturn]] void FailAssertion(const char* file, const char* condition);

/// Ends the process unless `holds`, and prints `condition`. `file` is the source file by which hosts know the
/// assertion: that of the class or operation it belongs to, not always the one it stands in.
inline void Assert(bool holds, const char* file, const char* condition) {
    if (!holds) [[unlikely]]
        FailAssertion(file, condition);
}

} // namespace Frudata_Private
