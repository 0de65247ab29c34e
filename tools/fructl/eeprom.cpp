#include "tools/fructl/eeprom.h"

#include "tools/fructl/files.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Fructl {

namespace {

/// The kernel splits a write at the chip's pages; short ones let signals and the progress through.
constexpr std::size_t PIECE = 16;

} // namespace

bool IsEepromPath(const std::string& path) {
    std::error_code failed;
    const std::filesystem::path real = std::filesystem::canonical(path, failed);
    return !failed && real.string().starts_with("/sys/") && (real.filename() == "eeprom" || real.filename() == "nvmem");
}

CEeprom::CEeprom(std::string path) : m_path(std::move(path)) {
    struct stat status {};
    if (stat(m_path.c_str(), &status) != 0)
        Fail("cannot be read");
    if (!S_ISREG(status.st_mode) || status.st_size == 0)
        throw CToolError(EXIT_REFUSED, m_path, "is no EEPROM: it is no file of a fixed size");
    m_size = static_cast<std::size_t>(status.st_size);
}

void CEeprom::Fail(const char* doing) const {
    throw CToolError(EXIT_DEVICE, m_path, fmt::format("{}: {}", doing, std::strerror(errno)));
}

BYTES CEeprom::Read() const {
    // A part larger than any FRU holds it at its start.
    return ReadStart(m_path, std::min(m_size, IMAGE_LIMIT));
}

void CEeprom::Write(BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress) const {
    if (bytes.size() > m_size)
        throw CToolError(EXIT_REFUSED, m_path,
                         fmt::format("the image has {}, the EEPROM {}", Counted(bytes.size(), "byte"), m_size));
    const int file = open(m_path.c_str(), O_WRONLY | O_SYNC | O_CLOEXEC);
    if (file < 0)
        Fail("cannot be written");
    ssize_t written = 0;
    for (std::size_t offset = 0; offset < bytes.size() && written >= 0;) {
        const BYTE_VIEW next = Slice(bytes, offset, PIECE);
        const BYTE_VIEW present = Slice(known, offset, PIECE);
        const bool same = std::equal(next.begin(), next.end(), present.begin(), present.end());
        written = same ? static_cast<ssize_t>(next.size())
                       : pwrite(file, next.data(), next.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            written = 0;
        offset += written > 0 ? static_cast<std::size_t>(written) : 0;
        if (progress)
            progress(offset, bytes.size(), "");
    }
    const int error = errno;
    close(file);
    errno = error;
    if (written < 0)
        Fail("cannot be written");
}

} // namespace Fructl
