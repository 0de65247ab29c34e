// Inside a session: a library with its FRU loaded, and changes made to it.
#pragma once

#include "tools/fructl/session.h"

namespace Fructl {

/// Runs a session whose death means that `name` is damaged.
nlohmann::json RunSession(const std::string& name, const std::function<nlohmann::json(const PROGRESS&)>& work,
                          const PROGRESS& progress = {});
/// Starts the library, and loads and selects the FRU that the bytes of `contents` are an image of.
std::unique_ptr<CLibrary> ImageLibrary(const CONTENTS& contents);
/// The same from the device or the file itself.
std::unique_ptr<CLibrary> LoadedLibrary(const CONTENTS& contents);
/// Makes the changes; `fru` is what the loaded FRU holds.
void ApplyEdits(const CLibrary& library, const FRU& fru, EDITS edits);

} // namespace Fructl
