#include "sim/simulatedbmc.h"

#include <algorithm>

namespace Frudata_Sim {

namespace {

constexpr UINT8 PRIMARY_IPMB = 0;
/// The LUN whose messages go to the receive queue for the system software.
constexpr UINT8 SMS_LUN = 2;
constexpr UINT8 RECEIVE_MESSAGE_FLAG = 0x01;
constexpr UINT8 FILLER = 0xEE;

/// The answer of a rule that replaces that of the controller.
std::optional<IpmiAnswer> AnswerInstead(const FaultRule& fault) {
    switch (fault.action) {
    case FAULT_ACTION::COMPLETION_CODE:
        return Refuse(static_cast<UINT8>(fault.value));
    case FAULT_ACTION::TRANSPORT_ERROR:
        return IpmiAnswer{
            .data = {}, .delivery = DELIVERY::TRANSPORT_ERROR, .transportStatus = std::max<int>(fault.value, 1)};
    case FAULT_ACTION::CUT:
        return IpmiAnswer{.data = {}, .delivery = DELIVERY::TRANSPORT_ERROR, .transportStatus = 1};
    case FAULT_ACTION::SILENCE:
        return IpmiAnswer{.data = {}, .delivery = DELIVERY::SILENCE};
    default:
        return std::nullopt;
    }
}

void Distort(const FaultRule& fault, const IpmiRequest& request, IpmiAnswer& answer) {
    const std::size_t count = std::max<std::size_t>(fault.value, 1);
    BYTES& data = answer.data;
    if (fault.action == FAULT_ACTION::SHORT_ANSWER)
        data.resize(data.size() - std::min(count, data.size()));
    else if (fault.action == FAULT_ACTION::LONG_ANSWER)
        data.insert(data.end(), count, FILLER);
    else if (fault.action == FAULT_ACTION::ACKNOWLEDGE_NONE && request.cmd == CMD_WRITE_FRU_DATA && !data.empty())
        data[0] = 0;
    else if (fault.action == FAULT_ACTION::NEXT_RECORD && data.size() >= 2) {
        data[0] = static_cast<UINT8>(fault.value & 0xFF);
        data[1] = static_cast<UINT8>(fault.value >> 8);
    }
}

IpmiAnswer Ask(CManagementController& controller, const IpmiRequest& request, const FaultRule* fault) {
    if (!fault)
        return controller.Handle(request, true);
    if (std::optional<IpmiAnswer> answer = AnswerInstead(*fault))
        return *answer;
    const bool store = fault->action != FAULT_ACTION::DROP_WRITE && fault->action != FAULT_ACTION::ACKNOWLEDGE_NONE;
    IpmiAnswer answer = controller.Handle(request, store);
    Distort(*fault, request, answer);
    return answer;
}

} // namespace

CManagementController& CSimulatedBmc::AddController(UINT8 channel, UINT8 address, DeviceIdentity identity) {
    return m_controllers.insert_or_assign({channel, address}, CManagementController(identity)).first->second;
}

CManagementController& CSimulatedBmc::Controller(UINT8 channel, UINT8 address) {
    return m_controllers.at({channel, address});
}

IpmiAnswer CSimulatedBmc::Execute(const IpmiRequest& request, FRONT front) {
    // Recorded before its execution: a bridged request follows the one that carried it.
    const std::size_t entry = m_exchanges.size();
    if (m_recording)
        m_exchanges.push_back({front, 0, BMC_ADDRESS, request, {}});
    std::optional<IpmiAnswer> answer = m_script ? m_script(request) : std::nullopt;
    if (!answer)
        answer = Ask(*this, request, m_faults.Apply(BMC_ADDRESS, request));
    if (m_recording)
        m_exchanges[entry].answer = *answer;
    return *std::move(answer);
}

IpmiAnswer CSimulatedBmc::Handle(const IpmiRequest& request, bool store) {
    const bool isMessaging =
        request.netFn == NETFN_APP && request.cmd >= CMD_CLEAR_MESSAGE_FLAGS && request.cmd <= CMD_SEND_MESSAGE;
    const bool isSdr =
        request.netFn == NETFN_STORAGE && request.cmd >= CMD_GET_SDR_REPOSITORY_INFO && request.cmd <= CMD_GET_SDR;
    if (!isMessaging && !isSdr)
        return CManagementController::Handle(request, store);
    if (request.lun != 0)
        return Refuse(CC_INVALID_LUN);
    return isMessaging ? HandleMessaging(request) : HandleSdr(request);
}

IpmiAnswer CSimulatedBmc::HandleMessaging(const IpmiRequest& request) {
    const bool isEmpty = request.data.empty();
    switch (request.cmd) {
    case CMD_SEND_MESSAGE:
        return SendMessage(request);
    case CMD_GET_MESSAGE:
        return isEmpty ? m_messages.Take() : Refuse(CC_BAD_LENGTH);
    case CMD_GET_MESSAGE_FLAGS:
        return isEmpty ? IpmiAnswer{.data = {HasMessage() ? RECEIVE_MESSAGE_FLAG : UINT8{0}}} : Refuse(CC_BAD_LENGTH);
    case CMD_CLEAR_MESSAGE_FLAGS:
        if (request.data.size() != 1)
            return Refuse(CC_BAD_LENGTH);
        if (request.data[0] & RECEIVE_MESSAGE_FLAG)
            m_messages.Clear();
        return {};
    default:
        return Refuse(CC_INVALID_COMMAND);
    }
}

IpmiAnswer CSimulatedBmc::HandleSdr(const IpmiRequest& request) {
    if (request.cmd == CMD_GET_SDR)
        return m_sdrs.Get(request.data);
    if (request.cmd != CMD_GET_SDR_REPOSITORY_INFO && request.cmd != CMD_RESERVE_SDR_REPOSITORY)
        return Refuse(CC_INVALID_COMMAND);
    if (!request.data.empty())
        return Refuse(CC_BAD_LENGTH);
    return request.cmd == CMD_RESERVE_SDR_REPOSITORY ? m_sdrs.Reserve() : m_sdrs.Info();
}

IpmiAnswer CSimulatedBmc::SendMessage(const IpmiRequest& request) {
    const std::optional<BridgedRequest> bridged = ParseSendMessage(request.data);
    if (!bridged)
        return Refuse(CC_BAD_LENGTH);
    const UINT8 channel = bridged->channel;
    const bool isChannelThere =
        channel == PRIMARY_IPMB || std::any_of(m_controllers.begin(), m_controllers.end(),
                                               [&](const auto& entry) { return entry.first.first == channel; });
    // The upper bits ask for tracking, authentication or encryption, which the system interface lacks.
    if (request.data[0] != channel || !isChannelThere)
        return Refuse(CC_INVALID_FIELD);
    const auto found = m_controllers.find({channel, bridged->responder});
    if (found == m_controllers.end())
        return Refuse(CC_NAK_ON_WRITE);
    // A controller drops a damaged frame and an unexpected response.
    if (bridged->checksumsGood && bridged->request.netFn % 2 == 0)
        Bridge(found->second, *bridged);
    return {};
}

void CSimulatedBmc::Bridge(CManagementController& controller, const BridgedRequest& bridged) {
    const FaultRule* fault = m_faults.Apply(bridged.responder, bridged.request);
    const IpmiAnswer answer = Ask(controller, bridged.request, fault);
    if (m_recording)
        m_exchanges.push_back({FRONT::BRIDGE, bridged.channel, bridged.responder, bridged.request, answer});
    if (answer.delivery != DELIVERY::ANSWERED || bridged.requester != BMC_ADDRESS || bridged.requesterLun != SMS_LUN)
        return;
    const unsigned int stale =
        fault && fault->action == FAULT_ACTION::STALE_MESSAGES ? std::max<unsigned int>(fault->value, 1) : 0;
    for (unsigned int age = stale; age > 0; --age)
        m_messages.Push(
            FrameAnswer(bridged, answer, static_cast<UINT8>((bridged.sequence + 63 - (age - 1) % 63) % 64)));
    const unsigned int step = fault && fault->action == FAULT_ACTION::WRONG_SEQUENCE ? 1 : 0;
    m_messages.Push(FrameAnswer(bridged, answer, static_cast<UINT8>((bridged.sequence + step) % 64)));
}

} // namespace Frudata_Sim
