#include "tools/fructl/lock.h"

#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/way.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Fructl {

namespace fs = std::filesystem;

namespace {

constexpr useconds_t PAUSE = 20'000;

/// Where the lock of a device behind a BMC lies: everyone who can reach that BMC must find the same place.
fs::path LockPath(const SOURCE& device) {
    std::string name = fmt::format("fructl-{}-{}.lock", WayKey(), AddressText(device.address));
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c) && c != '.'; }, '-');
    if (!Settings().simDirectory.empty())
        return fs::path(Settings().simDirectory) / ("." + name);
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    for (const fs::path& directory : {fs::path("/run/lock"), fs::path(runtime ? runtime : "")})
        if (!directory.empty() && access(directory.c_str(), W_OK | X_OK) == 0)
            return directory / name;
    std::error_code ignored;
    return fs::temp_directory_path(ignored) / name;
}

int OpenLock(const fs::path& path) {
    // One that another user has left in a directory of all may be opened, but not with the right to create it.
    for (const int flags : {O_RDWR | O_CREAT, O_RDWR, O_RDONLY})
        if (const int file = open(path.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, 0666); file >= 0)
            return file;
    return -1;
}

} // namespace

CDeviceLock::CDeviceLock(const SOURCE& device) : m_isOwnFile(!device.isEeprom) {
    const fs::path path = device.isEeprom ? fs::path(device.label) : LockPath(device);
    m_file = device.isEeprom ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : OpenLock(path);
    if (m_file < 0)
        throw CToolError(EXIT_REFUSED, path.string(), fmt::format("cannot be locked: {}", std::strerror(errno)));
    try {
        Wait(device.label);
    } catch (...) {
        close(m_file);
        throw;
    }
    const std::string signature = fmt::format("process {}, which writes {}\n", getpid(), Printable(device.label));
    // A lock without a signature is one, too.
    if (m_isOwnFile && ftruncate(m_file, 0) == 0) [[maybe_unused]]
        const ssize_t ignored = pwrite(m_file, signature.data(), signature.size(), 0);
}

CDeviceLock::~CDeviceLock() {
    close(m_file);
}

std::string CDeviceLock::Holder() const {
    char text[256] = "";
    const ssize_t length = m_isOwnFile ? pread(m_file, text, sizeof text, 0) : 0;
    std::string holder(text, length > 0 ? static_cast<std::size_t>(length) : 0);
    holder.resize(std::min(holder.find('\n'), holder.size()));
    return holder.empty() ? "another process, which writes it" : Printable(holder);
}

void CDeviceLock::Wait(const std::string& what) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(Settings().wait);
    bool told = false;
    while (flock(m_file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            throw CToolError(EXIT_REFUSED, what, fmt::format("cannot be locked: {}", std::strerror(errno)));
        if (std::chrono::steady_clock::now() >= end)
            throw CToolError(EXIT_REFUSED, what, fmt::format("is in use by {}", Holder()),
                             "--wait SECONDS waits for it");
        if (!told)
            Note(fmt::format("{}: waiting for {}", what, Holder()));
        told = true;
        usleep(PAUSE);
    }
}

} // namespace Fructl
