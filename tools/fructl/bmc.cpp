#include "tools/fructl/bmc.h"

#include "tools/fructl/imbseam.h"
#include "tools/fructl/ports.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"

#include "common/ipmi.h"
#include "frudata/debug.h"
#include "frudata/imbdriver.h"
#include "sim/directory.h"
#include "sim/fronts.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

using namespace Frudata_Private;

constexpr unsigned TIMEOUT = 5000;

/// Straight to the driver: the library would clear a record of 64 KiB for each answer and ask for the ports.
int SendOverDriver(const BMC_REQUEST& request, BMC_ANSWER& answer) {
    UINT8 data[1024];
    int length = sizeof data;
    const _IMBPREQUESTDATA record = {request.cmd,
                                     BMC_ADDRESS,
                                     0,
                                     request.netFn,
                                     request.lun,
                                     request.data.data(),
                                     static_cast<int>(request.data.size())};
    const int status = SendTimedImbpRequest(&record, TIMEOUT, data, &length, &answer.completionCode);
    if (status == 0)
        answer.data.assign(data, data + std::clamp<int>(length, 0, sizeof data));
    return status;
}

/// Through the library, which also bridges.
int SendThroughLibrary(const BMC_REQUEST& request, BMC_ANSWER& answer) {
    static const auto message = std::make_unique<BMC_MESSAGE>();
    static const auto response = std::make_unique<BMC_MESSAGE>();
    message->rsSa = request.controller;
    message->netFn = request.netFn;
    message->lun = request.lun;
    message->cmd = request.cmd;
    message->dataLength = static_cast<UINT32>(request.data.size());
    std::copy(request.data.begin(), request.data.end(), message->data);
    const auto& bridge = request.bridge;
    const int status = bridge ? ProcessSendMessage(message.get(), response.get(), bridge->channel, bridge->target)
                              : ProcessMessage(message.get(), response.get(), TIMEOUT);
    answer.completionCode = response->completionCode;
    answer.data.assign(response->data,
                       response->data + std::min<std::size_t>(response->dataLength, sizeof response->data));
    return status;
}

} // namespace

int SendRequest(const BMC_REQUEST& request, BMC_ANSWER& answer) {
    const bool isDirect = CurrentWay().driver && request.controller == BMC_ADDRESS && !request.bridge;
    return isDirect ? SendOverDriver(request, answer) : SendThroughLibrary(request, answer);
}

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
    BMC_ANSWER answer;
    const int status = SendRequest(
        {.controller = BMC_ADDRESS, .netFn = NETFN_APPLICATION, .lun = 0, .cmd = COMMAND_GET_DEVICE_ID}, answer);
    // No request reaches a BMC whose interface is not KCS: the answer is the whole buffer.
    if (status == 0 && answer.data.size() < 0xFF)
        return;
    throw CToolError(EXIT_DEVICE, "BMC",
                     status == 0 ? "its system interface is not KCS"
                                 : "Get Device ID over " + CurrentWay().Description() + ": " + TransportText(status),
                     "is there a BMC, and is no other driver using it? --sim DIR works without one");
}

} // namespace Fructl
