#include "common/openfile.h"

#include "common/allocate.h"

#include <cstdlib>
#include <cwchar>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace Frudata_Private {

namespace {

constexpr mode_t NEW_FILE_RIGHTS = 0666;

bool IsKindWanted(const struct stat& file, OPEN_ALSO also) {
    return S_ISREG(file.st_mode) || (also == OPEN_TERMINAL && S_ISCHR(file.st_mode));
}

/// Whether what was opened is what was asked for: the path may name something else by now.
bool IsOpenedWanted(int descriptor, OPEN_ALSO also) {
    struct stat file {};
    struct statfs system {};
    if (fstat(descriptor, &file) != 0 || !IsKindWanted(file, also))
        return false;
    if (S_ISREG(file.st_mode))
        return fstatfs(descriptor, &system) == 0 && system.f_type != SYSFS_MAGIC;
    // O_NONBLOCK is for the opening only.
    return isatty(descriptor) != 0 && fcntl(descriptor, F_SETFL, 0) == 0;
}

int FlagsOf(char mode) {
    switch (mode) {
    case 'w':
        return O_WRONLY | O_CREAT | O_TRUNC;
    case 'a':
        return O_WRONLY | O_CREAT | O_APPEND;
    default:
        return O_RDONLY;
    }
}

} // namespace

SCOPED_FILE OpenFile(const char* path, char mode, OPEN_ALSO also) {
    struct stat file {};
    // Opening some devices, such as a watchdog, has an effect.
    if (stat(path, &file) == 0 && !IsKindWanted(file, also))
        return nullptr;
    const int descriptor = open(path, FlagsOf(mode) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, NEW_FILE_RIGHTS);
    if (descriptor < 0)
        return nullptr;
    const char modeText[] = {mode, 0};
    SCOPED_FILE stream(IsOpenedWanted(descriptor, also) ? fdopen(descriptor, modeText) : nullptr);
    if (!stream)
        close(descriptor);
    return stream;
}

std::unique_ptr<char[]> ToMultibyte(const WCHAR* text) {
    const std::size_t length = std::wcslen(text);
    std::unique_ptr<char[]> bytes = AllocateArray<char>(std::uint64_t{length} + 1);
    if (!bytes || std::wcstombs(bytes.get(), text, length) == static_cast<std::size_t>(-1))
        return nullptr;
    return bytes;
}

} // namespace Frudata_Private
