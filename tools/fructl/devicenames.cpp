#include "tools/fructl/devicenames.h"

#include "tools/fructl/files.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/way.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace Fructl {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> CacheFile() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    const char* home = std::getenv("HOME");
    fs::path directory;
    if (cache && *cache)
        directory = cache;
    else if (home && *home)
        directory = fs::path(home) / ".cache";
    else
        return std::nullopt;
    std::error_code ignored;
    const std::string& simulated = Settings().simDirectory;
    std::string name = simulated.empty() ? WayKey() : "sim" + fs::weakly_canonical(simulated, ignored).string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '-');
    return directory / "fructl" / ("devices-" + name);
}

} // namespace

void KeepDeviceNames(const std::vector<SOURCE>& devices) {
    const auto file = CacheFile();
    if (!file)
        return;
    std::string names;
    for (const SOURCE& device : devices)
        names += (device.title.empty() ? DeviceText(device) : device.title) + "\n";
    try {
        fs::create_directories(file->parent_path());
        WriteFile(file->string(), BYTES(names.begin(), names.end()));
    } catch (const fs::filesystem_error&) {
        // Completion works without names.
    } catch (const CToolError&) {
    }
}

std::string KeptDeviceNames() {
    const auto file = CacheFile();
    std::error_code ignored;
    if (!file || !fs::is_regular_file(*file, ignored))
        return {};
    const BYTES bytes = ReadFile(file->string());
    return {bytes.begin(), bytes.end()};
}

} // namespace Fructl
