#include "tools/fructl/ports.h"

#include "tools/fructl/settings.h"

#include "frudata/bmclib.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>

#include <unistd.h>

// <sys/io.h> would bring inline definitions of inb and outb, which nothing could replace.
extern "C" int iopl(int level) noexcept;

namespace Fructl {

namespace {

constexpr UINT16 USUAL_PORT = 0x0CA2;

/// Regions that a bus or the firmware reserves, or that belong to a device by its place ("0000:00:1f.0", "IPI0001:00")
/// or by the firmware's tables ("IPMI Address 1"): nobody drives their ports.
bool IsReservation(std::string_view name) {
    static constexpr std::array<std::string_view, 5> RESERVATIONS = {"PCI ", "pnp ", "ACPI ", "dmi-", "IPMI Address "};
    return name.find(':') != std::string_view::npos ||
           std::any_of(RESERVATIONS.begin(), RESERVATIONS.end(),
                       [&](std::string_view start) { return name.starts_with(start); });
}

} // namespace

UINT16 KcsPort() {
    return static_cast<UINT16>(Settings().kcsPort.value_or(USUAL_PORT));
}

std::string PortOwner(UINT16 port) {
    // Lines such as "  0ca2-0ca3 : ipmi_si"; a region follows the one around it.
    std::ifstream regions("/proc/ioports");
    std::string owner;
    for (std::string line; std::getline(regions, line);) {
        unsigned first = 0;
        char dash = 0;
        unsigned last = 0;
        const std::size_t colon = line.find(" : ");
        if (colon == std::string::npos || !(std::istringstream(line) >> std::hex >> first >> dash >> last))
            continue;
        const std::string name = line.substr(colon + 3);
        if (first <= port + 1U && last >= port && !IsReservation(name))
            owner = name;
    }
    return owner;
}

std::string PortRefusal(UINT16 port, bool insist) {
    if (iopl(3) != 0)
        return fmt::format("the kernel refuses access to the KCS ports: {}",
                           geteuid() == 0 ? "a container, or a locked kernel?" : "that needs root");
    if (const std::string owner = PortOwner(port); !owner.empty() && !insist)
        return fmt::format("the kernel's driver {} owns the KCS ports at {:X}h (its device is /dev/ipmi0, of the "
                           "module ipmi_devintf; --force uses the ports nevertheless)",
                           owner, port);
    return {};
}

std::string KcsProblem(UINT16 port) {
    KCSAddress = port;
    return IsKCS() != 0 ? "" : fmt::format("no KCS interface answers at port {:X}h", port);
}

} // namespace Fructl
