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

/// The directory of locks: everyone who can reach a device must find the same one.
std::string LockPath(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c) && c != '.'; }, '-');
    name = "fructl-" + name + ".lock";
    if (!Settings().simDirectory.empty())
        return fs::path(Settings().simDirectory) / ("." + name);
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    for (const fs::path& directory : {fs::path("/run/lock"), fs::path(runtime ? runtime : "")})
        if (!directory.empty() && access(directory.c_str(), W_OK | X_OK) == 0)
            return directory / name;
    return fs::path("/tmp") / name;
}

std::string DevicePath(const SOURCE& device) {
    return device.isEeprom ? device.label : LockPath(WayKey() + "-" + AddressText(device.address));
}

/// A link stands for the file behind it.
std::string DirectoryOf(const std::string& file) {
    std::error_code failed;
    const fs::path resolved = fs::weakly_canonical(file, failed);
    return (failed ? fs::absolute(file, failed) : resolved).parent_path();
}

int OpenLock(const fs::path& path) {
    // In a shared directory the kernel refuses to open another user's file with O_CREAT.
    for (const int flags : {O_RDWR | O_CREAT, O_RDWR, O_RDONLY})
        if (const int file = open(path.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, 0666); file >= 0)
            return file;
    return -1;
}

} // namespace

CFileLock::CFileLock(const std::string& path, std::string what, std::string use)
    : m_what(std::move(what)), m_use(std::move(use)),
      m_file(m_use.empty() ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : OpenLock(path)) {
    if (m_file < 0)
        throw CToolError(EXIT_REFUSED, path, fmt::format("cannot be locked: {}", std::strerror(errno)));
    try {
        Wait();
    } catch (...) {
        close(m_file);
        throw;
    }
    const std::string signature = fmt::format("process {}, which {}\n", getpid(), m_use);
    // A lock counts without a signature.
    if (!m_use.empty() && ftruncate(m_file, 0) == 0) [[maybe_unused]]
        const ssize_t ignored = pwrite(m_file, signature.data(), signature.size(), 0);
}

CFileLock::~CFileLock() {
    // A child process may hold the file open a little longer.
    flock(m_file, LOCK_UN);
    close(m_file);
}

std::string CFileLock::Holder() const {
    char text[256] = "";
    const ssize_t length = m_use.empty() ? 0 : pread(m_file, text, sizeof text, 0);
    std::string holder(text, length > 0 ? static_cast<std::size_t>(length) : 0);
    holder.resize(std::min(holder.find('\n'), holder.size()));
    return holder.empty() ? "another process" : Printable(holder);
}

void CFileLock::Wait() const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(Settings().wait);
    bool told = false;
    while (flock(m_file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            throw CToolError(EXIT_REFUSED, m_what, fmt::format("cannot be locked: {}", std::strerror(errno)));
        if (std::chrono::steady_clock::now() >= end)
            throw CToolError(EXIT_REFUSED, m_what, fmt::format("is in use by {}", Holder()),
                             "--wait SECONDS waits for it");
        if (!told)
            Note(fmt::format("{}: waiting for {}", m_what, Holder()));
        told = true;
        usleep(PAUSE);
    }
}

CDeviceLock::CDeviceLock(const SOURCE& device)
    : CFileLock(DevicePath(device), device.label, device.isEeprom ? "" : "writes " + Printable(device.label)) {}

CDirectoryLock::CDirectoryLock(const std::string& file) : CFileLock(DirectoryOf(file), file, "") {}

CPortLock::CPortLock(UINT16 port)
    : CFileLock(LockPath(fmt::format("kcs-{:X}", port)), fmt::format("the KCS interface at {:X}h", port), "uses it") {}

} // namespace Fructl
