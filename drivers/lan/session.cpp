#include "drivers/lan/session.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace Frudata_Driver {

namespace {

const char* PrivilegeName(UINT8 privilege) {
    switch (privilege) {
    case LAN_PRIVILEGE_USER:
        return "user";
    case LAN_PRIVILEGE_OPERATOR:
        return "operator";
    default:
        return "administrator";
    }
}

std::string Describe(const SESSION_PARAMETERS& parameters, UINT8 cipherSuite) {
    const std::string version =
        parameters.isIpmi15 ? "IPMI 1.5" : "IPMI 2.0, cipher suite " + std::to_string(cipherSuite);
    return parameters.name + ", " + version + ", " + PrivilegeName(parameters.privilege);
}

std::string Milliseconds(std::chrono::milliseconds time) {
    return std::to_string(time.count()) + " ms";
}

/// Shared by the thread that opens a session and the caller that waits for it.
struct OPENING {
    int result = LAN_ERR_RESOURCES;
    std::string message{NO_MEMORY};
    std::string description{};
};

} // namespace

// libfreeipmi ends a session that is silent for its time-out; a packet each third of it leaves the rest for the answer.
CLanSession::CLanSession(std::chrono::milliseconds timeout)
    : m_process(getpid()), m_timeout(timeout), m_context(std::make_shared<CIpmiContext>()),
      m_worker(timeout / 3, [context = m_context] { WithoutThrowing([&context] { context->KeepAlive(); }); }) {}

bool CLanSession::IsOurs() const {
    return m_process == getpid();
}

int CLanSession::Open(std::shared_ptr<const SESSION_PARAMETERS> parameters, std::string& message) {
    m_name = parameters->name;
    const auto opening = std::make_shared<OPENING>();
    const auto open = [context = m_context, opening, parameters] {
        WithoutThrowing([&] {
            opening->result = context->Open(*parameters, opening->message);
            opening->description = Describe(*parameters, context->CipherSuite());
        });
    };
    // libfreeipmi applies the time-out to each step of up to two openings, and only its own result tells a wrong
    // password from silence.
    const auto limit = 3 * m_timeout;
    if (!m_worker.Run(open, limit)) {
        message = m_name + ": no session within " + Milliseconds(limit);
        return LAN_ERR_NO_ANSWER;
    }
    message = opening->message;
    m_description = opening->description;
    return opening->result;
}

int CLanSession::Send(const _IMBPREQUESTDATA& request, int timeout, UINT8* responseData, int& responseLength,
                      UINT8& completionCode) {
    const EXCHANGE exchange = Exchange(request, timeout);
    m_message = exchange.message;
    if (exchange.result != LAN_OK)
        return exchange.result;
    if (exchange.data.size() > static_cast<unsigned int>(std::max(responseLength, 0))) {
        m_message = m_name + ": an answer of " + std::to_string(exchange.data.size()) + " bytes, room is for " +
                    std::to_string(responseLength);
        return LAN_ERR_SIZE;
    }
    std::copy(exchange.data.begin(), exchange.data.end(), responseData);
    responseLength = static_cast<int>(exchange.data.size());
    completionCode = exchange.completionCode;
    return LAN_OK;
}

int CLanSession::RefuseRequest() {
    m_message = m_name + ": not a request to a BMC";
    return LAN_ERR_OPTION;
}

EXCHANGE CLanSession::Exchange(const _IMBPREQUESTDATA& request, int timeout) {
    if (!IsOurs())
        return {.result = LAN_ERR_SESSION, .message = m_name + ": the session belongs to another process"};
    if (request.dataLength > LAN_LARGEST_REQUEST_SIZE)
        return {.result = LAN_ERR_SIZE,
                .message = m_name + ": a request of " + std::to_string(request.dataLength) +
                           " bytes, a session carries " + std::to_string(LAN_LARGEST_REQUEST_SIZE)};
    const auto limit = timeout > 0 ? std::min(m_timeout, std::chrono::milliseconds(timeout)) : m_timeout;
    std::vector<UINT8> data(request.data, request.data + request.dataLength);
    if (request.netFn == NETFN_APPLICATION && request.cmdType == COMMAND_SEND_MESSAGE)
        return SendMessage(data, limit);
    if (request.netFn == NETFN_APPLICATION && request.cmdType == COMMAND_GET_MESSAGE)
        return GetMessage();
    return Wait([netFn = request.netFn, lun = request.rsLun, cmd = request.cmdType, data = std::move(data)](
                    CIpmiContext& context, EXCHANGE& exchange) { context.Ask(netFn, lun, cmd, data, exchange); },
                limit);
}

EXCHANGE CLanSession::SendMessage(const std::vector<UINT8>& data, std::chrono::milliseconds limit) {
    // The request points into the message: the worker may need it after the caller stops waiting.
    const auto message = std::make_shared<const std::vector<UINT8>>(data);
    BRIDGED_REQUEST request;
    const UINT8 completionCode = ParseSendMessage(*message, request);
    if (completionCode != COMPLETION_SUCCESS)
        return {.result = LAN_OK, .message = {}, .completionCode = completionCode};
    const EXCHANGE inner = Wait(
        [request, message](CIpmiContext& context, EXCHANGE& exchange) { context.AskOnIpmb(request, exchange); }, limit);
    if (inner.result != LAN_OK || inner.sendMessageCode != COMPLETION_SUCCESS)
        return {.result = inner.result, .message = inner.message, .completionCode = inner.sendMessageCode};
    m_queued.resize(BRIDGED_FRAME_SIZE + inner.data.size());
    FrameBridgedAnswer(request, inner.completionCode, inner.data, m_queued);
    return {.result = LAN_OK, .message = {}};
}

EXCHANGE CLanSession::GetMessage() {
    const UINT8 completionCode = m_queued.empty() ? COMPLETION_NO_MESSAGE : COMPLETION_SUCCESS;
    return {.result = LAN_OK, .message = {}, .completionCode = completionCode, .data = std::exchange(m_queued, {})};
}

EXCHANGE CLanSession::Wait(std::function<void(CIpmiContext&, EXCHANGE&)> ask, std::chrono::milliseconds limit) {
    const auto exchange = std::make_shared<EXCHANGE>();
    const auto job = [context = m_context, exchange, ask = std::move(ask)] {
        WithoutThrowing([&] { ask(*context, *exchange); });
    };
    if (!m_worker.Run(job, limit))
        return {.result = LAN_ERR_SESSION,
                .message = m_name + ": the session is lost: no answer within " + Milliseconds(limit)};
    return *exchange;
}

} // namespace Frudata_Driver
