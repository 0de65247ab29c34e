// Keeping a password out of freed memory and core dumps.
#pragma once

#include <cstring>
#include <mutex>

#include <sys/prctl.h>

namespace Frudata_Driver {

/// A text of at most SIZE bytes (of a longer one the first), overwritten when this object goes. No copies.
template <std::size_t SIZE> class CSecret {
  public:
    explicit CSecret(const char* text) { std::memcpy(m_bytes, text, strnlen(text, SIZE)); }
    CSecret(const CSecret&) = delete;
    CSecret& operator=(const CSecret&) = delete;
    ~CSecret() { explicit_bzero(m_bytes, sizeof m_bytes); }
    const char* Text() const { return m_bytes; }

  private:
    char m_bytes[SIZE + 1] = {};
};

/// While one of these lives, the process writes no core dump.
class CNoCoreDump {
  public:
    CNoCoreDump() {
        const std::lock_guard lock(g_mutex);
        if (g_count++ == 0) {
            g_before = prctl(PR_GET_DUMPABLE);
            prctl(PR_SET_DUMPABLE, 0);
        }
    }
    CNoCoreDump(const CNoCoreDump&) = delete;
    CNoCoreDump& operator=(const CNoCoreDump&) = delete;
    ~CNoCoreDump() {
        const std::lock_guard lock(g_mutex);
        if (--g_count == 0 && g_before == 1)
            prctl(PR_SET_DUMPABLE, 1);
    }

  private:
    static inline std::mutex g_mutex;
    static inline int g_count = 0;
    static inline int g_before = 0;
};

} // namespace Frudata_Driver
