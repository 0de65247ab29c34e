#include "drivers/lan/lanloader.h"

#include <filesystem>

#include <dlfcn.h>

namespace Frudata_Driver {

namespace {

constexpr const char* MODULE = "frudata/frudata-lan.so";
constexpr const char* TO_INSTALL = "sessions over LAN need the package frudata-lan (to build it: libfreeipmi-dev for "
                                   "the program's word size): ";

const LAN_INTERFACE* g_lan = nullptr;
LAN_SESSION* g_session = nullptr;

} // namespace

std::string LanModulePath() {
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
    for (const char* libraries : {FRUDATA_LIBDIR, "lib"})
        if (const auto path = (program / ".." / libraries / MODULE).lexically_normal();
            std::filesystem::exists(path, ignored))
            return path;
    return {};
}

const LAN_INTERFACE* LoadLan(const std::string& path, std::string& message) {
    if (path.empty()) {
        message = std::string(TO_INSTALL) + MODULE + " is not there";
        return nullptr;
    }
    void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const entry = module ? dlsym(module, LAN_ENTRY_NAME) : nullptr;
    if (!entry) {
        message = std::string(TO_INSTALL) + dlerror();
        return nullptr;
    }
    const LAN_INTERFACE* const lan = reinterpret_cast<LAN_ENTRY>(entry)();
    if (lan->version != LAN_INTERFACE_VERSION) {
        message = TO_INSTALL + path + " is of version " + std::to_string(lan->version) + ", not " +
                  std::to_string(LAN_INTERFACE_VERSION);
        return nullptr;
    }
    return lan;
}

void UseLanSession(const LAN_INTERFACE* lan, LAN_SESSION* session) {
    g_lan = lan;
    g_session = session;
}

int LanOpenImb() {
    return g_session ? 1 : 0;
}

int LanCloseImb() {
    return g_session ? 1 : 0;
}

int LanSendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                            UINT8* completionCode) {
    return g_session ? g_lan->Send(g_session, request, timeout, responseData, responseLength, completionCode)
                     : LAN_ERR_SESSION;
}

} // namespace Frudata_Driver
