#include "tools/fructl/way.h"

#include "tools/fructl/imbseam.h"
#include "tools/fructl/lanway.h"
#include "tools/fructl/lock.h"
#include "tools/fructl/ports.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"

#include "drivers/lan/host.h"
#include "drivers/lan/lan.h"
#include "frudata/openipmi.h"
#include "sim/fronts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace Fructl {

namespace {

/// Fits the buffer of most BMCs; the device's reader asks for less after a refusal.
constexpr std::size_t LOCAL_READ_CHUNK = 64;
/// With its count byte it stays below the answer that every BMC can give on a LAN.
constexpr std::size_t LAN_READ_CHUNK = 32;
static_assert(LAN_READ_CHUNK + 1 <= LAN_SAFE_ANSWER_SIZE);

std::string Nothing() {
    return {};
}

/// Leaves the device to the end of the process: closing it takes the kernel some 10 milliseconds.
int LeaveOpen() {
    return 0;
}

constexpr IMB_DRIVER KERNEL = {OpenIpmiOpen, LeaveOpen, OpenIpmiSend};

std::string OpenKernel() {
    return OpenIpmiOpen() == 0 ? OpenIpmiFailure() : "";
}

std::string DescribeKernel() {
    const char* device = OpenIpmiDevice();
    return fmt::format("the kernel's IPMI driver, {}", device ? device : "closed");
}

void NothingToDo() {}

std::string KernelFailure() {
    return OpenIpmiFailure();
}

std::optional<CPortLock> g_portLock;

std::string OpenPorts() {
    if (std::string reason = PortRefusal(KcsPort(), Settings().force); !reason.empty())
        return reason;
    if (!g_portLock)
        g_portLock.emplace(KcsPort());
    return KcsProblem(KcsPort());
}

void ClosePorts() {
    g_portLock.reset();
}

std::string DescribePorts() {
    return fmt::format("KCS at port {:X}h", KcsPort());
}

template <_IPMI_INTERFACE_TYPE TYPE> std::string StartSession() {
    return SelectIPMIInterface(TYPE) ? "" : "no session with the BMC: is libipmi.so installed?";
}

std::string DescribeSession() {
    return "session library";
}

std::string DescribeLargeSession() {
    return "session library for large requests, KCS for others";
}

constexpr WAY WAYS[] = {
    {"kernel", true, &KERNEL, NothingToDo, OpenKernel, Nothing, DescribeKernel, KernelFailure, NothingToDo,
     LOCAL_READ_CHUNK},
    {"kcs", true, nullptr, NothingToDo, OpenPorts, Nothing, DescribePorts, Nothing, ClosePorts, LOCAL_READ_CHUNK},
    {"session", false, nullptr, NothingToDo, Nothing, StartSession<IPMI_INTERFACE_USB>, DescribeSession, Nothing,
     NothingToDo, LOCAL_READ_CHUNK},
    {"session-large", false, nullptr, NothingToDo, OpenPorts, StartSession<IPMI_INTERFACE_USB_LARGE>,
     DescribeLargeSession, Nothing, ClosePorts, LOCAL_READ_CHUNK},
    {"lan", false, &LAN_DRIVER, ShareLan, OpenLan, Nothing, DescribeLan, LanFailure, NothingToDo, LAN_READ_CHUNK}};

int OpenSimulated() {
    return Frudata_Sim::CurrentBmc() ? 1 : 0;
}

int SendSimulated(const _IMBPREQUESTDATA* request, int, UINT8* responseData, int* responseLength,
                  UINT8* completionCode) {
    return Frudata_Sim::ServeImbRequest(request, responseData, responseLength, completionCode);
}

std::string DescribeSimulated() {
    return fmt::format("simulated BMC in {}", Settings().simDirectory);
}

constexpr IMB_DRIVER SIMULATION = {OpenSimulated, OpenSimulated, SendSimulated};

constexpr WAY SIMULATED = {"simulated",       false,   &SIMULATION, NothingToDo,     Nothing, Nothing,
                           DescribeSimulated, Nothing, NothingToDo, LOCAL_READ_CHUNK};

const WAY* gp_current = &SIMULATED;

} // namespace

std::vector<std::string> WayNames() {
    std::vector<std::string> names;
    std::transform(std::begin(WAYS), std::end(WAYS), std::back_inserter(names),
                   [](const WAY& way) { return way.name; });
    return names;
}

std::string WayKey() {
    const LAN_SETTINGS& lan = Settings().lan;
    return lan.host.empty() ? "bmc" : "lan-" + Frudata_Driver::WithPort(lan.host, lan.port);
}

void ShareWay() {
    for (const WAY& way : WAYS)
        if (Settings().interface == way.name)
            way.Share();
}

bool OpenWay(WAY_USER user) {
    const std::string& asked = Settings().interface;
    std::string reasons;
    for (const WAY& way : WAYS) {
        if (asked.empty() ? !way.isUsual : asked != way.name)
            continue;
        if (user == WAY_USER::THIS_PROCESS && !way.driver)
            return false;
        UseImbDriver(way.driver);
        const std::string reason = way.Open();
        gp_current = &way;
        if (reason.empty())
            return true;
        reasons += fmt::format("{}{}", reasons.empty() ? "" : "; ", reason);
    }
    throw CToolError(EXIT_DEVICE, "BMC", reasons,
                     asked == "lan" ? "" : "--sim DIR works without one, --host NAME reaches another's");
}

CWayCloser::~CWayCloser() {
    gp_current->Close();
}

const WAY& CurrentWay() {
    return *gp_current;
}

void OpenSimulatedWay() {
    UseImbDriver(&SIMULATION);
    gp_current = &SIMULATED;
}

} // namespace Fructl
