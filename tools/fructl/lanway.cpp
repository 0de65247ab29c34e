#include "tools/fructl/lanway.h"

#include "tools/fructl/imbseam.h"
#include "tools/fructl/password.h"
#include "tools/fructl/settings.h"

#include "drivers/lan/lanloader.h"

#include <fmt/format.h>

namespace Fructl {

namespace {

using namespace Frudata_Driver;

constexpr IMB_DRIVER DRIVER = {LanOpenImb, LanCloseImb, LanSendTimedImbpRequest};

const LAN_INTERFACE* gp_lan = nullptr;
LAN_SESSION* gp_session = nullptr;

} // namespace

std::string OpenLan() {
    if (gp_session)
        return {};
    const LAN_SETTINGS& lan = Settings().lan;
    std::string reason;
    gp_lan = LoadLan(LanModulePath(), reason);
    if (!gp_lan)
        return reason;
    // The module overwrites its copy of the password.
    CPassword password = Password();
    LAN_SESSION_OPTIONS options = {};
    options.host = lan.host.c_str();
    options.port = lan.port;
    options.user = lan.user.empty() ? nullptr : lan.user.c_str();
    options.password = password.Text();
    options.cipherSuite = lan.cipherSuite;
    options.ipmi15 = lan.isIpmi15 ? 1 : 0;
    options.privilege = lan.privilege;
    options.timeout = lan.timeout;
    char message[512] = "";
    if (gp_lan->Open(&options, &gp_session, message, sizeof message) != LAN_OK)
        return message;
    UseLanSession(gp_lan, gp_session);
    UseImbDriver(&DRIVER);
    return {};
}

std::string DescribeLan() {
    return fmt::format("LAN, {}", gp_session ? gp_lan->Description(gp_session) : "closed");
}

void CloseLan() {
    UseLanSession(nullptr, nullptr);
    if (gp_session)
        gp_lan->Close(gp_session);
    gp_session = nullptr;
}

std::string LanFailure() {
    return gp_session ? gp_lan->Message(gp_session) : "";
}

} // namespace Fructl
