// Preloaded into fructl: a process that is killed at the write to the file DIES_IMAGE whose number is DIES_AT.
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <sys/uio.h>
#include <unistd.h>

#pragma GCC visibility push(default)

namespace {

void DieAtImage(int file) {
    static const char* const image = std::getenv("DIES_IMAGE");
    static long left = std::getenv("DIES_AT") ? std::atol(std::getenv("DIES_AT")) : 0;
    char path[PATH_MAX] = "", link[64] = "";
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    if (image && readlink(link, path, sizeof path - 1) > 0 && std::strstr(path, image) && --left == 0)
        kill(getpid(), SIGKILL);
}

} // namespace

extern "C" {

ssize_t write(int file, const void* bytes, size_t count) {
    static const auto next = reinterpret_cast<decltype(&write)>(dlsym(RTLD_NEXT, "write"));
    DieAtImage(file);
    return next(file, bytes, count);
}

ssize_t writev(int file, const iovec* parts, int count) {
    static const auto next = reinterpret_cast<decltype(&writev)>(dlsym(RTLD_NEXT, "writev"));
    DieAtImage(file);
    return next(file, parts, count);
}
}
