#include "tools/fructl/files.h"

#include "tools/fructl/toolerror.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Fructl {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const fs::path& path, const char* doing, int error) {
    throw CToolError(EXIT_REFUSED, path.string(), std::string(doing) + ": " + std::strerror(error));
}

/// A file name given through a link means the file behind it.
fs::path Resolve(const std::string& target) {
    std::error_code failed;
    const fs::path resolved = fs::weakly_canonical(target, failed);
    return failed ? fs::path(target) : resolved;
}

} // namespace

BYTES ReadFile(const std::string& path) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored))
        Fail(path, "cannot be read", EISDIR);
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    BYTES bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad())
        Fail(path, "cannot be read", errno);
    return bytes;
}

CReplacement::CReplacement(const std::string& target) : m_target(Resolve(target)) {
    std::string pattern = (m_target.parent_path() / ".fructl-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        Fail(m_target, "cannot be written", errno);
    m_directory = pattern;
}

CReplacement::~CReplacement() {
    std::error_code ignored;
    fs::remove_all(m_directory, ignored);
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
    const int file = open(Path().c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        Fail(m_target, "cannot be written", errno);
    struct stat old {};
    if (stat(m_target.c_str(), &old) == 0) {
        // Only root may give a file away; for all others it stays with the one who wrote it.
        [[maybe_unused]] const int ignored = fchown(file, old.st_uid, old.st_gid);
        fchmod(file, old.st_mode & 07777);
    }
    // The contents must be on the disk before the name points to them.
    const bool stored = fsync(file) == 0 || errno == EINVAL;
    close(file);
    if (!stored || rename(Path().c_str(), m_target.c_str()) != 0)
        Fail(m_target, "cannot be written", errno);
}

void WriteFile(const std::string& path, BYTE_VIEW bytes) {
    const CReplacement replacement(path);
    replacement.Write(bytes);
    replacement.Finish();
}

} // namespace Fructl
