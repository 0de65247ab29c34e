// A session over LAN without libfreeipmi: input is the host, what its name leads to, the options, and a sequence of
// requests with their answers. What waits on a thread does so here: a job is done at once, or too late.
#include "drivers/lan/address.h"
#include "drivers/lan/session.h"
#include "fuzz/input.h"

#include <cstring>
#include <netdb.h>
#include <utility>

extern "C" const LAN_INTERFACE* FrudataLan(void);

namespace {

using namespace Frudata_Fuzz;
using namespace Frudata_Driver;

constexpr UINT8 UNTOUCHED = 0xA5;

CInput* gp_input = nullptr;
/// What the session last answered.
EXCHANGE g_answer;

void Answer(EXCHANGE& exchange) {
    const UINT8 control = gp_input->Byte();
    exchange = {.result = control % 4 == 3 ? LAN_ERR_ANSWER : LAN_OK, .message = {}};
    if (exchange.result != LAN_OK)
        exchange.message = "no answer";
    exchange.sendMessageCode = control & 0x80 ? gp_input->Byte() : UINT8{0};
    exchange.completionCode = control & 0x40 ? gp_input->Byte() : UINT8{0};
    exchange.data = gp_input->Take(gp_input->Byte());
    exchange.data.resize(exchange.data.size() + (control & 0x20 ? 4000 : 0), control);
    g_answer = exchange;
}

} // namespace

namespace Frudata_Driver {

CIpmiContext::~CIpmiContext() = default;
int CIpmiContext::Open(const SESSION_PARAMETERS& parameters, std::string& message) {
    m_name = parameters.name;
    m_cipherSuite = parameters.cipherSuite;
    message = "refused";
    return gp_input->Byte() % 4 == 3 ? LAN_ERR_USER : LAN_OK;
}
void CIpmiContext::Ask(UINT8, UINT8, UINT8, const std::vector<UINT8>&, EXCHANGE& exchange) {
    Answer(exchange);
}
void CIpmiContext::AskOnIpmb(const BRIDGED_REQUEST&, EXCHANGE& exchange) {
    Answer(exchange);
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

/// Addresses of the input's choice, as getaddrinfo lists them; some of no family that anybody knows.
int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo** list) {
    *list = nullptr;
    const UINT8 control = gp_input->Byte();
    for (unsigned count = control % 4; count > 0; --count) {
        auto* const one = static_cast<addrinfo*>(std::calloc(1, sizeof(addrinfo) + sizeof(sockaddr_storage)));
        const bool isIpv6 = gp_input->Byte() % 2 != 0;
        const BYTES address = gp_input->Take(isIpv6 ? 28 : 16);
        one->ai_family = isIpv6 ? AF_INET6 : AF_INET;
        one->ai_addrlen = isIpv6 ? 28 : 16;
        one->ai_addr = reinterpret_cast<sockaddr*>(one + 1);
        std::copy(address.begin(), address.end(), reinterpret_cast<UINT8*>(one->ai_addr));
        one->ai_addr->sa_family = static_cast<sa_family_t>(control & 0x80 ? control : one->ai_family);
        one->ai_next = *list;
        *list = one;
    }
    return control & 0x40 ? EAI_NONAME : 0;
}

void freeaddrinfo(addrinfo* list) {
    while (list)
        std::free(std::exchange(list, list->ai_next));
}
}

namespace {

class CHost {
  public:
    explicit CHost(CInput& input) : m_input(input) {}

    LAN_SESSION* Open() {
        const std::string host = m_input.Text(m_input.Byte() % 64), user = m_input.Text(m_input.Byte() % 24);
        std::string password = m_input.Text(m_input.Byte() % 24);
        LAN_SESSION_OPTIONS options{
            .host = host.c_str(), .port = static_cast<UINT16>(m_input.Word()), .user = user.c_str()};
        options.password = password.data();
        options.cipherSuite = m_input.Byte() % 4 == 0 ? UINT8{17} : UINT8{0};
        options.ipmi15 = m_input.Byte() % 4 == 3;
        options.privilege = m_input.Byte() % 8;
        options.timeout = static_cast<UINT32>(m_input.Word());
        BYTES message(m_input.Byte(), UNTOUCHED);
        LAN_SESSION* session = nullptr;
        const int result = m_lan->Open(&options, &session, reinterpret_cast<char*>(message.data()),
                                       static_cast<UINT32>(message.size()));
        Require((result == LAN_OK) == (session != nullptr));
        Require(message.empty() || std::memchr(message.data(), 0, message.size()));
        Require(result == LAN_OK || message.size() < 2 || message[0] != 0);
        Require(std::all_of(password.begin(), password.begin() + static_cast<int>(std::strlen(password.c_str())),
                            [](char character) { return character == 0; }));
        return session;
    }

    void Next(LAN_SESSION* session) {
        const UINT8 control = m_input.Byte();
        const bool isSend = control % 4 == 1, isGet = control % 4 == 2;
        const BYTES data = isSend ? SendMessageData(m_input) : m_input.Take(m_input.Byte());
        const _IMBPREQUESTDATA request{static_cast<UINT8>(isSend  ? COMMAND_SEND_MESSAGE
                                                          : isGet ? COMMAND_GET_MESSAGE
                                                                  : control >> 4),
                                       0x20,
                                       0,
                                       NETFN_APPLICATION,
                                       0,
                                       data.data(),
                                       static_cast<int>(data.size())};
        BYTES room(m_input.Byte() * 4U, UNTOUCHED);
        int length = static_cast<int>(room.size());
        UINT8 code = UNTOUCHED;
        const int result = m_lan->Send(session, &request, m_input.Byte(), room.data(), &length, &code);
        // The frame is lost where it finds no room.
        const BYTES sent = isGet && result != LAN_ERR_OPTION ? std::exchange(m_sent, {}) : BYTES();
        if (isSend && result == LAN_OK && code == COMPLETION_SUCCESS) {
            m_sent = data;
            m_queued = g_answer;
        }
        if (result != LAN_OK) {
            Require(*m_lan->Message(session) != 0 && code == UNTOUCHED && length == static_cast<int>(room.size()));
            Require(std::all_of(room.begin(), room.end(), [](UINT8 byte) { return byte == UNTOUCHED; }));
            return;
        }
        Require(length >= 0 && length <= static_cast<int>(room.size()));
        const auto answer = std::span<const UINT8>(room).first(static_cast<std::size_t>(length));
        if (!isSend && !isGet)
            Require(code == g_answer.completionCode && IsSame(answer, g_answer.data));
        else if (isSend || sent.empty())
            Require(answer.empty() && (isSend || code == COMPLETION_NO_MESSAGE));
        else
            CheckFrame(sent, answer);
    }

  private:
    static bool IsSame(std::span<const UINT8> left, const BYTES& right) {
        return std::equal(left.begin(), left.end(), right.begin(), right.end());
    }
    void CheckFrame(const BYTES& sent, std::span<const UINT8> frame) const {
        RequireBridgedAnswer(sent, frame);
        Require(frame[6] == m_queued.completionCode && IsSame(frame.subspan(7, frame.size() - 8), m_queued.data));
    }

    const LAN_INTERFACE* const m_lan = FrudataLan();
    CInput& m_input;
    BYTES m_sent; ///< what the queued answer is for
    EXCHANGE m_queued;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    CInput input(data, size);
    gp_input = &input;
    CHost host(input);
    LAN_SESSION* const session = host.Open();
    while (session && !input.IsEmpty())
        host.Next(session);
    FrudataLan()->Close(session);
    return 0;
}
