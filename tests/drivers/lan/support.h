// Sessions for the tests of the LAN module.
#pragma once

#include "drivers/lan/lanloader.h"
#include "tests/drivers/lan/lanserver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>

namespace Lan_Test {

using namespace Frudata_Driver;
using std::chrono::milliseconds;

/// Milliseconds: long for a loopback, short for a test.
constexpr UINT32 TIMEOUT = 600;

inline const LAN_INTERFACE& Lan() {
    static const LAN_INTERFACE* const lan = [] {
        std::string message;
        const LAN_INTERFACE* const loaded = LoadLan(LanModulePath(), message);
        if (!loaded)
            throw std::runtime_error(message);
        return loaded;
    }();
    return *lan;
}

/// Options that open a session, to be changed by a test.
struct OPTIONS {
    std::string host = "127.0.0.1";
    UINT16 port = 0;
    std::string user = USER;
    std::string password = PASSWORD;
    UINT8 cipherSuite = 3;
    UINT8 ipmi15 = 0;
    UINT8 privilege = LAN_PRIVILEGE_ADMINISTRATOR;
    UINT32 timeout = TIMEOUT;
    UINT32 retransmission = 0;
};

/// What came of a request; `data` only where the result is LAN_OK.
struct ANSWER {
    int result = 0;
    UINT8 completionCode = 0;
    BYTES data{};
};

/// An attempt to open a session, and the session where it succeeds.
class CSession {
  public:
    explicit CSession(OPTIONS options) {
        const LAN_SESSION_OPTIONS given{.host = options.host.c_str(),
                                        .port = options.port,
                                        .user = options.user.c_str(),
                                        .password = options.password.data(),
                                        .cipherSuite = options.cipherSuite,
                                        .ipmi15 = options.ipmi15,
                                        .privilege = options.privilege,
                                        .timeout = options.timeout,
                                        .retransmission = options.retransmission};
        char text[200];
        m_result = Lan().Open(&given, &m_session, text, sizeof text);
        m_message = text;
        EXPECT_EQ(options.password.find_first_not_of('\0'), std::string::npos) << "the password is not overwritten";
        EXPECT_EQ(m_session != nullptr, m_result == LAN_OK);
    }
    CSession(const CSession&) = delete;
    CSession& operator=(const CSession&) = delete;
    ~CSession() { Lan().Close(m_session); }

    ANSWER Ask(UINT8 netFn, UINT8 cmd, const BYTES& data = {}, int timeout = 0, int room = 256) const {
        const _IMBPREQUESTDATA request{.cmdType = cmd,
                                       .rsSa = 0x20,
                                       .busType = 0,
                                       .netFn = netFn,
                                       .rsLun = 0,
                                       .data = data.data(),
                                       .dataLength = static_cast<int>(data.size())};
        ANSWER answer{.data = BYTES(static_cast<std::size_t>(room))};
        answer.result = Lan().Send(m_session, &request, timeout, answer.data.data(), &room, &answer.completionCode);
        answer.data.resize(answer.result == LAN_OK ? static_cast<std::size_t>(room) : 0);
        return answer;
    }
    LAN_SESSION* Handle() const { return m_session; }
    int Result() const { return m_result; }
    const std::string& OpenMessage() const { return m_message; }
    std::string Message() const { return Lan().Message(m_session); }
    std::string Description() const { return Lan().Description(m_session); }

  private:
    LAN_SESSION* m_session = nullptr;
    int m_result = 0;
    std::string m_message;
};

/// How long something takes.
template <typename FUNCTION> milliseconds Time(const FUNCTION& function) {
    const auto start = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

} // namespace Lan_Test
