#include "drivers/lan/ipmicontext.h"

// Not all of FreeIPMI: its other headers share names with bmclib.h.
#include <freeipmi/api/ipmi-api.h>
#include <freeipmi/spec/ipmi-authentication-type-spec.h>

#include <algorithm>
#include <iterator>
#include <span>

namespace Frudata_Driver {

namespace {

constexpr UINT8 COMMAND_GET_DEVICE_ID = 0x01;
// With HMAC-SHA256 and HMAC-SHA1, both with AES-CBC-128 (IPMI 2.0, section 22.15.2).
constexpr UINT8 BEST_SUITE = 17;
constexpr UINT8 OTHER_SUITE = 3;
constexpr int OPENINGS = 2;
// More than any message of a session holds.
constexpr std::size_t ANSWER_CAPACITY = 4096;
constexpr int ANSWER_COMPLETION_CODE = 1;
constexpr int ANSWER_DATA = 2;

constexpr const char* SILENT = "no answer";
constexpr const char* NO_USER = "unknown user";
constexpr const char* NO_PASSWORD = "wrong password";
constexpr const char* NO_PRIVILEGE = "the user may not have the privilege level";
constexpr const char* NO_SUITE = "the cipher suite is refused";

constexpr REFUSAL REFUSALS[] = {
    {IPMI_ERR_USERNAME_INVALID, LAN_ERR_USER, NO_USER},
    {IPMI_ERR_PASSWORD_INVALID, LAN_ERR_PASSWORD, NO_PASSWORD},
    // A BMC of IPMI 1.5 ignores a packet with a wrong code.
    {IPMI_ERR_PASSWORD_VERIFICATION_TIMEOUT, LAN_ERR_PASSWORD, NO_PASSWORD},
    {IPMI_ERR_K_G_INVALID, LAN_ERR_PASSWORD, "the BMC wants a key of its own, K_G"},
    {IPMI_ERR_PRIVILEGE_LEVEL_INSUFFICIENT, LAN_ERR_PRIVILEGE, NO_PRIVILEGE},
    {IPMI_ERR_PRIVILEGE_LEVEL_CANNOT_BE_OBTAINED, LAN_ERR_PRIVILEGE, NO_PRIVILEGE},
    {IPMI_ERR_AUTHENTICATION_TYPE_UNAVAILABLE, LAN_ERR_CIPHER, "no MD5 authentication at this privilege level"},
    {IPMI_ERR_CIPHER_SUITE_ID_UNAVAILABLE, LAN_ERR_CIPHER, NO_SUITE},
    // Refusals of one algorithm of the suite, which libfreeipmi does not tell apart.
    {IPMI_ERR_BAD_RMCPPLUS_STATUS_CODE, LAN_ERR_CIPHER, NO_SUITE},
    {IPMI_ERR_IPMI_ERROR, LAN_ERR_CIPHER, NO_SUITE},
    {IPMI_ERR_IPMI_2_0_UNAVAILABLE, LAN_ERR_VERSION, "the BMC speaks no IPMI 2.0"},
    {IPMI_ERR_CONNECTION_TIMEOUT, LAN_ERR_NO_ANSWER, SILENT},
    {IPMI_ERR_SESSION_TIMEOUT, LAN_ERR_NO_ANSWER, "no answer while the session was opened"},
    {IPMI_ERR_BMC_BUSY, LAN_ERR_NO_ANSWER, "the BMC is busy, or all its sessions are taken"},
    {IPMI_ERR_HOSTNAME_INVALID, LAN_ERR_NAME, "no such host"},
    {IPMI_ERR_OUT_OF_MEMORY, LAN_ERR_RESOURCES, NO_MEMORY},
};

REFUSAL Refusal(ipmi_ctx* context) {
    const int number = ipmi_ctx_errnum(context);
    const auto* found = std::find_if(std::begin(REFUSALS), std::end(REFUSALS),
                                     [number](const REFUSAL& refusal) { return refusal.number == number; });
    return found != std::end(REFUSALS) ? *found : REFUSAL{number, LAN_ERR_RESOURCES, ipmi_ctx_errormsg(context)};
}

/// Why Send Message failed: libfreeipmi hides the BMC's own completion code behind these.
UINT8 SendMessageCode(int number) {
    switch (number) {
    case IPMI_ERR_BAD_COMPLETION_CODE:
        return COMPLETION_NOT_ACKNOWLEDGED;
    case IPMI_ERR_BMC_BUSY:
        return COMPLETION_NODE_BUSY;
    case IPMI_ERR_COMMAND_INVALID_OR_UNSUPPORTED:
        return COMPLETION_INVALID_FIELD;
    default:
        return COMPLETION_SUCCESS;
    }
}

std::vector<UINT8> WithCommand(UINT8 cmd, std::span<const UINT8> data) {
    std::vector<UINT8> request(data.size() + 1, cmd);
    std::copy(data.begin(), data.end(), request.begin() + 1);
    return request;
}

int OpenContext(ipmi_ctx* context, const SESSION_PARAMETERS& parameters, UINT8 suite) {
    const char* user = parameters.user.empty() ? nullptr : parameters.user.c_str();
    const char* password = *parameters.password.Text() ? parameters.password.Text() : nullptr;
    if (parameters.isIpmi15)
        return ipmi_ctx_open_outofband(context, parameters.address.c_str(), user, password,
                                       IPMI_AUTHENTICATION_TYPE_MD5, parameters.privilege, parameters.timeout,
                                       parameters.retransmission, IPMI_WORKAROUND_FLAGS_DEFAULT, IPMI_FLAGS_DEFAULT);
    // Every BMC accepts a request for the level itself, and some refuse one for "the highest".
    return ipmi_ctx_open_outofband_2_0(context, parameters.address.c_str(), user, password, nullptr, 0,
                                       parameters.privilege, suite, parameters.timeout, parameters.retransmission,
                                       IPMI_WORKAROUND_FLAGS_OUTOFBAND_2_0_OPEN_SESSION_PRIVILEGE, IPMI_FLAGS_DEFAULT);
}

} // namespace

CIpmiContext::~CIpmiContext() {
    if (!m_context)
        return;
    ipmi_ctx_close(m_context);
    ipmi_ctx_destroy(m_context);
}

REFUSAL CIpmiContext::OpenWithSuite(const SESSION_PARAMETERS& parameters, UINT8 suite) {
    REFUSAL refusal{};
    for (int attempt = 0; attempt < OPENINGS; ++attempt) {
        // A context is of no use after a failure.
        if (m_context)
            ipmi_ctx_destroy(m_context);
        m_context = ipmi_ctx_create();
        if (!m_context)
            return {IPMI_ERR_OUT_OF_MEMORY, LAN_ERR_RESOURCES, NO_MEMORY};
        m_cipherSuite = suite;
        if (OpenContext(m_context, parameters, suite) == 0)
            return {IPMI_ERR_SUCCESS, LAN_OK, ""};
        refusal = Refusal(m_context);
        // Not every BMC accepts a step again after a lost answer: open anew.
        if (refusal.number != IPMI_ERR_SESSION_TIMEOUT)
            break;
    }
    return refusal;
}

int CIpmiContext::Open(const SESSION_PARAMETERS& parameters, std::string& message) {
    m_name = parameters.name;
    REFUSAL refusal = OpenWithSuite(parameters, parameters.cipherSuite ? parameters.cipherSuite : BEST_SUITE);
    if (refusal.result == LAN_ERR_CIPHER && parameters.cipherSuite == 0 && !parameters.isIpmi15)
        refusal = OpenWithSuite(parameters, OTHER_SUITE);
    message = refusal.result == LAN_OK ? "" : m_name + ": " + refusal.text;
    return refusal.result;
}

void CIpmiContext::Take(int length, const UINT8* answer, EXCHANGE& exchange) {
    if (length >= ANSWER_DATA) {
        exchange.completionCode = answer[ANSWER_COMPLETION_CODE];
        exchange.data.assign(answer + ANSWER_DATA, answer + length);
        exchange.result = LAN_OK;
        exchange.message.clear();
        return;
    }
    if (length >= 0) {
        exchange.result = LAN_ERR_ANSWER;
        exchange.message = m_name + ": an answer without a completion code";
        return;
    }
    const int number = ipmi_ctx_errnum(m_context);
    if (number == IPMI_ERR_PARAMETERS) {
        exchange.result = LAN_ERR_OPTION;
        exchange.message = m_name + ": no IPMI request";
        return;
    }
    m_lost = true;
    const bool silent = number == IPMI_ERR_SESSION_TIMEOUT;
    exchange.result = LAN_ERR_SESSION;
    exchange.message = m_name + ": the session is lost: " + (silent ? SILENT : ipmi_ctx_strerror(number));
}

bool CIpmiContext::IsLost(EXCHANGE& exchange) const {
    if (m_lost)
        exchange = {.result = LAN_ERR_SESSION, .message = m_name + ": the session is lost"};
    return m_lost;
}

void CIpmiContext::Ask(UINT8 netFn, UINT8 lun, UINT8 cmd, const std::vector<UINT8>& data, EXCHANGE& exchange) {
    if (IsLost(exchange))
        return;
    UINT8 answer[ANSWER_CAPACITY];
    const std::vector<UINT8> request = WithCommand(cmd, data);
    Take(ipmi_cmd_raw(m_context, lun, netFn, request.data(), static_cast<unsigned int>(request.size()), answer,
                      sizeof answer),
         answer, exchange);
}

void CIpmiContext::AskOnIpmb(const BRIDGED_REQUEST& request, EXCHANGE& exchange) {
    if (IsLost(exchange))
        return;
    UINT8 answer[ANSWER_CAPACITY];
    const std::vector<UINT8> data = WithCommand(request.cmd, request.data);
    const int length = ipmi_cmd_raw_ipmb(m_context, request.channel, request.responder, request.lun, request.netFn,
                                         data.data(), static_cast<unsigned int>(data.size()), answer, sizeof answer);
    const int number = length < 0 ? ipmi_ctx_errnum(m_context) : IPMI_ERR_SUCCESS;
    const UINT8 refused = SendMessageCode(number);
    if (refused != COMPLETION_SUCCESS)
        exchange = {.result = LAN_OK, .message = {}, .sendMessageCode = refused};
    else if (number == IPMI_ERR_MESSAGE_TIMEOUT)
        // The controller accepted the request and stays silent; the session is sound.
        exchange = {.result = LAN_OK, .message = {}, .completionCode = COMPLETION_TIMEOUT};
    else
        Take(length, answer, exchange);
}

void CIpmiContext::KeepAlive() {
    EXCHANGE exchange;
    if (m_context && !m_lost)
        Ask(NETFN_APPLICATION, 0, COMMAND_GET_DEVICE_ID, {}, exchange);
}

} // namespace Frudata_Driver
