// The module's one exported function, and the boundary that no exception crosses.
#include "drivers/lan/address.h"
#include "drivers/lan/host.h"
#include "drivers/lan/lan.h"
#include "drivers/lan/session.h"

#include <algorithm>
#include <cstring>
#include <new>

using Frudata_Driver::CLanSession;
using Frudata_Driver::SESSION_PARAMETERS;

/// The caller's session.
struct LAN_SESSION {
    explicit LAN_SESSION(std::chrono::milliseconds timeout) : session(timeout) {}
    CLanSession session;
};

namespace {

using std::chrono::milliseconds;

constexpr UINT32 SMALLEST_TIMEOUT = 100;
constexpr UINT32 LARGEST_TIMEOUT = 60000;
constexpr UINT32 RETRANSMISSIONS = 10;

/// An option out of its range, and the range.
const char* WrongOption(const LAN_SESSION_OPTIONS& options) {
    const auto isLonger = [](const char* text, std::size_t size) { return text && std::strlen(text) > size; };
    if (!options.host || !*options.host)
        return "no host";
    if (isLonger(options.user, LAN_USER_SIZE))
        return "the user name is longer than 16 bytes";
    if (options.ipmi15 && isLonger(options.password, LAN_PASSWORD_SIZE_15))
        return "the password is longer than the 16 bytes of IPMI 1.5";
    if (isLonger(options.password, LAN_PASSWORD_SIZE))
        return "the password is longer than 20 bytes";
    if (options.cipherSuite != 0 && options.cipherSuite != 3 && options.cipherSuite != 17)
        return "the cipher suite is neither 17 nor 3";
    if (options.ipmi15 && options.cipherSuite != 0)
        return "IPMI 1.5 has no cipher suites";
    if (options.privilege != 0 &&
        (options.privilege < LAN_PRIVILEGE_USER || options.privilege > LAN_PRIVILEGE_ADMINISTRATOR))
        return "the privilege level is none of user (2), operator (3), administrator (4)";
    if (options.timeout != 0 && (options.timeout < SMALLEST_TIMEOUT || options.timeout > LARGEST_TIMEOUT))
        return "the time-out is not from 100 to 60000 ms";
    if (options.retransmission > (options.timeout ? options.timeout : LAN_DEFAULT_TIMEOUT) / 2)
        return "the retransmission comes later than half of the time-out";
    return nullptr;
}

std::shared_ptr<SESSION_PARAMETERS> Parameters(const LAN_SESSION_OPTIONS& options) {
    auto parameters = std::make_shared<SESSION_PARAMETERS>(options.password ? options.password : "");
    parameters->name = Frudata_Driver::WithPort(options.host, options.port);
    parameters->user = options.user ? options.user : "";
    parameters->cipherSuite = options.cipherSuite;
    parameters->isIpmi15 = options.ipmi15 != 0;
    parameters->privilege = options.privilege ? options.privilege : LAN_PRIVILEGE_OPERATOR;
    parameters->timeout = options.timeout ? options.timeout : LAN_DEFAULT_TIMEOUT;
    parameters->retransmission = options.retransmission
                                     ? options.retransmission
                                     : std::min(parameters->timeout / RETRANSMISSIONS, LAN_DEFAULT_RETRANSMISSION);
    return parameters;
}

int OpenSession(const LAN_SESSION_OPTIONS& options, std::unique_ptr<LAN_SESSION>& session, std::string& message) {
    if (const char* wrong = WrongOption(options)) {
        message = wrong;
        return LAN_ERR_OPTION;
    }
    auto parameters = Parameters(options);
    const milliseconds timeout(parameters->timeout);
    const std::string address = Frudata_Driver::Resolve(options.host, timeout, message);
    if (address.empty()) {
        message = std::string(options.host) + ": " + message;
        return LAN_ERR_NAME;
    }
    parameters->address = Frudata_Driver::WithPort(address, options.port);
    session = std::make_unique<LAN_SESSION>(timeout);
    return session->session.Open(std::move(parameters), message);
}

int Open(const LAN_SESSION_OPTIONS* options, LAN_SESSION** session, char* message, UINT32 messageSize) {
    if (!options || !session)
        return LAN_ERR_OPTION;
    *session = nullptr;
    int result = LAN_ERR_RESOURCES;
    const char* text = "out of memory, or of threads";
    std::string said;
    std::unique_ptr<LAN_SESSION> opened;
    try {
        const Frudata_Driver::CNoCoreDump noCoreDump;
        result = OpenSession(*options, opened, said);
        text = said.c_str();
    } catch (...) {
        result = LAN_ERR_RESOURCES;
    }
    if (options->password)
        explicit_bzero(options->password, std::strlen(options->password));
    if (result == LAN_OK)
        *session = opened.release();
    if (message && messageSize > 0)
        *std::copy_n(text, std::min<std::size_t>(std::strlen(text), messageSize - 1), message) = '\0';
    return result;
}

bool IsValid(const _IMBPREQUESTDATA* request, const UINT8* responseData, const int* responseLength,
             const UINT8* completionCode) {
    return request && responseData && responseLength && completionCode && request->netFn < 0x40 && request->rsLun < 4 &&
           request->dataLength >= 0 && (request->data || request->dataLength == 0);
}

int Send(LAN_SESSION* session, const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
         UINT8* completionCode) {
    if (!session)
        return LAN_ERR_OPTION;
    try {
        if (!IsValid(request, responseData, responseLength, completionCode))
            return session->session.RefuseRequest();
        return session->session.Send(*request, timeout, responseData, *responseLength, *completionCode);
    } catch (...) {
        return LAN_ERR_RESOURCES;
    }
}

const char* Message(const LAN_SESSION* session) {
    return session ? session->session.Message().c_str() : "";
}

const char* Description(const LAN_SESSION* session) {
    return session ? session->session.Description().c_str() : "";
}

void Close(LAN_SESSION* session) {
    // A child process has no thread to end.
    const std::unique_ptr<LAN_SESSION> closed(session && session->session.IsOurs() ? session : nullptr);
}

} // namespace

extern "C" [[gnu::visibility("default")]] const LAN_INTERFACE* FrudataLan(void);

const LAN_INTERFACE* FrudataLan(void) {
    static constexpr LAN_INTERFACE functions{.version = LAN_INTERFACE_VERSION,
                                             .Open = Open,
                                             .Send = Send,
                                             .Message = Message,
                                             .Description = Description,
                                             .Close = Close};
    return &functions;
}
