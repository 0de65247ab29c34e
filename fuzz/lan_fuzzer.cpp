// A session over LAN without libfreeipmi: input is the host with or without a port, what its name leads to, the
// options, and a sequence of requests with their answers. What waits on a thread does so here: a job is done at once,
// or too late.
#include "drivers/lan/address.h"
#include "drivers/lan/host.h"
#include "drivers/lan/session.h"
#include "fuzz/input.h"

#include <cstring>
#include <netdb.h>
#include <utility>

extern "C" const LAN_INTERFACE* FrudataLan(void);

namespace {

using namespace Frudata_Fuzz;
using namespace Frudata_Driver;

CInput* gp_input = nullptr;
/// What the session last answered.
EXCHANGE g_answer;

} // namespace

namespace Frudata_Driver {

CIpmiContext::~CIpmiContext() = default;
int CIpmiContext::Open(const SESSION_PARAMETERS& parameters, std::string& message) {
    m_name = parameters.name;
    message = "refused";
    return gp_input->Byte() % 4 == 3 ? LAN_ERR_USER : LAN_OK;
}
void CIpmiContext::Ask(UINT8, UINT8, UINT8, const std::vector<UINT8>&, EXCHANGE& exchange) {
    const UINT8 control = gp_input->Byte();
    exchange = {.result = control % 4 == 3 ? LAN_ERR_ANSWER : LAN_OK, .message = control % 4 == 3 ? "none" : ""};
    exchange.sendMessageCode = control & 0x80 ? gp_input->Byte() : UINT8{0};
    exchange.completionCode = control & 0x40 ? gp_input->Byte() : UINT8{0};
    exchange.data = gp_input->Take(gp_input->Byte());
    exchange.data.resize(exchange.data.size() + (control & 0x20 ? 4000 : 0), control);
    g_answer = exchange;
}
void CIpmiContext::AskOnIpmb(const BRIDGED_REQUEST&, EXCHANGE& exchange) {
    Ask(0, 0, 0, {}, exchange);
}
void CIpmiContext::KeepAlive() {}

struct CWorker::STATE {
    bool givenUp = false;
};
CWorker::CWorker(std::chrono::milliseconds, std::function<void()>) : m_state(std::make_shared<STATE>()) {}
CWorker::~CWorker() = default;
bool CWorker::Run(std::function<void()> job, std::chrono::milliseconds) {
    if (m_state->givenUp)
        return false;
    m_state->givenUp = gp_input->Byte() >= 0xF0;
    job();
    return !m_state->givenUp;
}

} // namespace Frudata_Driver

extern "C" {

/// Up to three addresses, as getaddrinfo lists them; some of no family that anybody knows.
int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo** list) {
    *list = nullptr;
    const UINT8 control = gp_input->Byte();
    for (unsigned count = control % 4; count > 0; --count) {
        auto* const one = static_cast<addrinfo*>(std::calloc(1, sizeof(addrinfo) + sizeof(sockaddr_storage)));
        const BYTES address = gp_input->Take(gp_input->Byte() % 2 != 0 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in));
        one->ai_addrlen = static_cast<socklen_t>(address.size());
        one->ai_addr = reinterpret_cast<sockaddr*>(one + 1);
        std::copy(address.begin(), address.end(), reinterpret_cast<UINT8*>(one->ai_addr));
        one->ai_family = address.size() == sizeof(sockaddr_in) ? AF_INET : AF_INET6;
        one->ai_addr->sa_family = static_cast<sa_family_t>(control & 0x80 ? control : one->ai_family);
        one->ai_next = std::exchange(*list, one);
    }
    return control & 0x40 ? EAI_NONAME : 0;
}

void freeaddrinfo(addrinfo* list) {
    while (list)
        std::free(std::exchange(list, list->ai_next));
}
}

namespace {

/// A host that is accepted is within its limits and the same when it is written and read again.
void CheckHost(const std::string& text) {
    std::string message;
    const auto host = ParseHost(text, message);
    Require(host.has_value() == message.empty());
    if (!host)
        return;
    Require(!host->name.empty() && host->name.size() <= LARGEST_HOST_SIZE);
    Require(std::none_of(host->name.begin(), host->name.end(), [](unsigned char c) { return c <= ' ' || c == 0x7F; }));
    const UINT16 port = host->port ? host->port : LAN_DEFAULT_PORT;
    const auto again = ParseHost(WithPort(host->name, port), message);
    Require(again && again->name == host->name && again->port == port);
}

LAN_SESSION* Open(CInput& input) {
    const std::string host = input.Text(input.Byte()), user = input.Text(input.Byte() % 24);
    CheckHost(host);
    std::string password = input.Text(input.Byte() % 24);
    const std::size_t length = std::strlen(password.c_str());
    LAN_SESSION_OPTIONS options{.host = host.c_str(), .port = static_cast<UINT16>(input.Word()), .user = user.c_str()};
    options.password = password.data();
    options.cipherSuite = input.Byte() % 4 == 0 ? UINT8{17} : UINT8{0};
    options.ipmi15 = input.Byte() % 4 == 3;
    options.privilege = input.Byte() % 8;
    options.timeout = static_cast<UINT32>(input.Word());
    std::string message(input.Byte(), '?');
    LAN_SESSION* session = nullptr;
    const int result = FrudataLan()->Open(&options, &session, message.data(), static_cast<UINT32>(message.size()));
    Require((result == LAN_OK) == (session != nullptr) && password.substr(0, length) == std::string(length, '\0'));
    Require(message.empty() || message.find('\0') != std::string::npos);
    Require(result == LAN_OK || message.size() < 2 || message[0] != '\0');
    return session;
}

/// One request. @param sent, queued a Send Message that was carried out, and its answer
void Ask(CInput& input, LAN_SESSION* session, BYTES& sent, EXCHANGE& queued) {
    const UINT8 control = input.Byte();
    const bool isSend = control % 4 == 1, isGet = control % 4 == 2;
    const BYTES data = isSend ? SendMessageData(input) : input.Take(input.Byte());
    const UINT8 command = isSend ? COMMAND_SEND_MESSAGE : isGet ? COMMAND_GET_MESSAGE : UINT8(control >> 4);
    CRoom room(input.Byte() * 4U);
    const _IMBPREQUESTDATA request{command, 0x20, 0, NETFN_APPLICATION, 0, data.data(), static_cast<int>(data.size())};
    const int result =
        FrudataLan()->Send(session, &request, input.Byte(), room.Data(), &room.length, &room.completionCode);
    if (result != LAN_OK) {
        Require(*FrudataLan()->Message(session) != 0 && room.IsUntouched());
        // The frame is lost where it finds no room.
        if (isGet && result != LAN_ERR_OPTION)
            sent.clear();
        return;
    }
    const std::span<const UINT8> answer = room.Answer();
    const auto isSame = [](std::span<const UINT8> got, const BYTES& given) {
        return std::equal(got.begin(), got.end(), given.begin(), given.end());
    };
    if (isGet && !sent.empty()) {
        RequireBridgedAnswer(std::exchange(sent, {}), answer);
        Require(answer[6] == queued.completionCode && isSame(answer.subspan(7, answer.size() - 8), queued.data));
    } else if (isGet || isSend) {
        Require(answer.empty() && (isSend || room.completionCode == COMPLETION_NO_MESSAGE));
    } else {
        Require(room.completionCode == g_answer.completionCode && isSame(answer, g_answer.data));
    }
    if (isSend && room.completionCode == COMPLETION_SUCCESS) {
        sent = data;
        queued = g_answer;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    CInput input(data, size);
    gp_input = &input;
    LAN_SESSION* const session = Open(input);
    BYTES sent;
    EXCHANGE queued;
    while (session && !input.IsEmpty())
        Ask(input, session, sent, queued);
    FrudataLan()->Close(session);
    return 0;
}
