#include "tools/fructl/bmc.h"

#include "tools/fructl/imbseam.h"
#include "tools/fructl/ports.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"

#include "frudata/debug.h"
#include "sim/directory.h"
#include "sim/fronts.h"

#include <fmt/format.h>

namespace Fructl {

namespace {

constexpr unsigned TIMEOUT = 5000;

} // namespace

std::string TransportText(int status) {
    const std::string reason = IsAnswerLost() ? CurrentWay().Failure() : "";
    return reason.empty() ? fmt::format("no answer (transport status {})", status) : "no answer: " + reason;
}

CBmc::CBmc(std::unique_ptr<Frudata_Sim::CSimulatedBmc> simulated) : CBmc(std::move(simulated), WAY_USER::CHILD) {}

CBmc::CBmc(std::unique_ptr<Frudata_Sim::CSimulatedBmc> simulated, WAY_USER user) : m_simulated(std::move(simulated)) {
    Frudata_Sim::SetCurrentBmc(m_simulated.get());
    KCSAddress = KcsPort();
    if (m_simulated)
        OpenSimulatedWay();
    else
        m_isOpen = OpenWay(user);
    SetLibDebugLevel(Settings().debugLevel);
}

CBmc::~CBmc() {
    Frudata_Sim::SetCurrentBmc(nullptr);
}

std::unique_ptr<CBmc> CBmc::Here() {
    std::unique_ptr<CBmc> bmc(new CBmc(Configured(), WAY_USER::THIS_PROCESS));
    if (!bmc->m_isOpen)
        return nullptr;
    BmcLibInitialize();
    bmc->Check();
    return bmc;
}

std::unique_ptr<Frudata_Sim::CSimulatedBmc> CBmc::Configured() {
    if (Settings().simDirectory.empty())
        return nullptr;
    try {
        return Frudata_Sim::LoadBmcDirectory(Settings().simDirectory);
    } catch (const std::exception& error) {
        throw CToolError(EXIT_REFUSED, "--sim", error.what(), "sim/README.md describes the directory");
    }
}

void CBmc::Check() const {
    if (const std::string reason = CurrentWay().Started(); !reason.empty())
        throw CToolError(EXIT_DEVICE, CurrentWay().name, reason);
    const auto request = std::make_unique<BMC_MESSAGE>();
    const auto response = std::make_unique<BMC_MESSAGE>();
    request->rsSa = 0x20;
    request->netFn = 0x06;
    request->cmd = 0x01;
    const int status = ProcessMessage(request.get(), response.get(), TIMEOUT);
    // A BMC behind an interface that is not KCS is never asked: the answer is all of the buffer.
    if (status == 0 && response->dataLength < 0xFF)
        return;
    throw CToolError(EXIT_DEVICE, "BMC",
                     status == 0 ? "its system interface is not KCS"
                                 : "Get Device ID over " + CurrentWay().Description() + ": " + TransportText(status),
                     "is there a BMC, and is no other driver using it? --sim DIR works without one");
}

} // namespace Fructl
