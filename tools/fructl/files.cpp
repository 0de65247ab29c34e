#include "tools/fructl/files.h"

#include "tools/fructl/eeprom.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Fructl {

namespace fs = std::filesystem;

namespace {

/// As many links as the kernel follows.
constexpr int LINK_LIMIT = 40;

[[noreturn]] void Fail(const fs::path& path, const char* doing, int error) {
    throw CToolError(EXIT_REFUSED, path.string(), std::string(doing) + ": " + std::strerror(error));
}

/// A link stands for the file behind it.
fs::path Resolve(const std::string& target) {
    std::error_code failed;
    const fs::path resolved = fs::weakly_canonical(target, failed);
    return failed ? fs::path(target) : resolved;
}

/// The descriptor of a path such as /dev/stdout or /dev/fd/3: opening the name anew would not share its offset.
std::optional<int> Descriptor(fs::path path) {
    if (path == STANDARD_STREAM)
        return STDOUT_FILENO;
    std::error_code failed;
    const fs::path own = fs::canonical("/proc/self/fd", failed);
    for (int link = 0; link < LINK_LIMIT && !failed; ++link) {
        const fs::path parent = fs::canonical(path.has_parent_path() ? path.parent_path() : fs::path("."), failed);
        if (!failed && parent == own)
            if (const auto number = ParseNumber(path.filename().string(), 0xFFFF))
                return static_cast<int>(*number);
        if (failed || !fs::is_symlink(path, failed))
            return std::nullopt;
        path = parent / fs::read_symlink(path, failed);
    }
    return std::nullopt;
}

bool IsWrittenThrough(const std::string& target) {
    struct stat status {};
    if (Descriptor(target))
        return true;
    if (IsEepromPath(target))
        throw CToolError(EXIT_REFUSED, target, "is an EEPROM: it is written in place, as a device",
                         "'fructl restore IMAGE --to EEPROM' keeps a backup and verifies");
    if (stat(target.c_str(), &status) != 0)
        return false;
    if (S_ISDIR(status.st_mode))
        Fail(target, "cannot be written", EISDIR);
    return !S_ISREG(status.st_mode);
}

void WriteThrough(const std::string& target, BYTE_VIEW bytes) {
    std::fflush(stdout);
    const auto shared = Descriptor(target);
    const int file = shared ? dup(*shared) : open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    bool failed = file < 0;
    while (!failed && !bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        failed = written < 0 && errno != EINTR;
        bytes = bytes.subspan(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    const int error = errno;
    if (file >= 0 && close(file) != 0 && !failed)
        Fail(target, "cannot be written", errno);
    if (failed)
        Fail(target, "cannot be written", error);
}

} // namespace

BYTES ReadStart(const std::string& path, std::size_t count) {
    const bool isStream = path == STANDARD_STREAM;
    const int file = isStream ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (file < 0)
        Fail(path, "cannot be read", errno);
    // Most files are far smaller than the limit, and room costs time.
    constexpr std::size_t USUAL = 0x4000;
    BYTES bytes;
    std::size_t length = 0;
    ssize_t got = 1;
    while (got != 0 && length < count) {
        if (length == bytes.size())
            bytes.resize(std::min(count, std::max(USUAL, 2 * length)));
        got = read(file, bytes.data() + length, bytes.size() - length);
        if (got < 0 && errno != EINTR)
            break;
        length += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    const int error = errno;
    close(file);
    if (got < 0)
        Fail(path, "cannot be read", error);
    bytes.resize(length);
    return bytes;
}

void CheckSize(const std::string& path, const BYTES& bytes, std::size_t limit) {
    if (bytes.size() > limit)
        throw CToolError(EXIT_REFUSED, path,
                         fmt::format("has more than {} KiB, the most that {} may have", limit / 1024,
                                     limit == IMAGE_LIMIT ? "a binary FRU image" : "a text file"));
}

BYTES ReadFile(const std::string& path, std::size_t limit) {
    BYTES bytes = ReadStart(path, limit + 1);
    CheckSize(path, bytes, limit);
    return bytes;
}

CReplacement::CReplacement(const std::string& target) : m_target(target), m_through(IsWrittenThrough(target)) {
    if (!m_through)
        m_target = Resolve(target);
    std::error_code ignored;
    std::string pattern =
        ((m_through ? fs::temp_directory_path(ignored) : m_target.parent_path()) / ".fructl-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        Fail(m_target, "cannot be written", errno);
    m_directory = pattern;
}

CReplacement::~CReplacement() {
    std::error_code ignored;
    fs::remove_all(m_directory, ignored);
}

std::string CReplacement::Name() const {
    return m_target == STANDARD_STREAM ? "stdout" : m_target.filename().string();
}

void CReplacement::Write(BYTE_VIEW bytes) const {
    std::ofstream file(Path(), std::ios::binary);
    for (const UINT8 byte : bytes)
        file.put(static_cast<char>(byte));
    file.close();
    if (!file)
        Fail(m_target, "cannot be written", errno);
}

void CReplacement::Finish() const {
    if (!m_through)
        return Replace();
    const BYTES bytes = ReadFile(Path().string());
    WriteThrough(m_target.string(), bytes);
}

void CReplacement::Replace() const {
    const int file = open(Path().c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        Fail(m_target, "cannot be written", errno);
    struct stat old {};
    if (stat(m_target.c_str(), &old) == 0) {
        // Only root may change the owner; for others it stays the writer.
        [[maybe_unused]] const int ignored = fchown(file, old.st_uid, old.st_gid);
        fchmod(file, old.st_mode & 07777);
    }
    // The contents must be on disk before the name points to them.
    const bool stored = fsync(file) == 0 || errno == EINVAL;
    close(file);
    if (!stored || rename(Path().c_str(), m_target.c_str()) != 0)
        Fail(m_target, "cannot be written", errno);
}

void WriteFile(const std::string& path, BYTE_VIEW bytes) {
    if (IsWrittenThrough(path))
        return WriteThrough(path, bytes);
    const CReplacement replacement(path);
    replacement.Write(bytes);
    replacement.Finish();
}

} // namespace Fructl
