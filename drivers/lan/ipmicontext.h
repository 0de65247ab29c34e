// One LAN session of libfreeipmi.
#pragma once

#include "drivers/bridgedmessage.h"
#include "drivers/lan/lan.h"
#include "drivers/lan/secret.h"

#include <chrono>
#include <string>
#include <vector>

struct ipmi_ctx;

namespace Frudata_Driver {

inline constexpr const char* NO_MEMORY = "out of memory";

/// LAN_SESSION_OPTIONS with its defaults filled in.
struct SESSION_PARAMETERS {
    /// Copies the password. @param text not null
    explicit SESSION_PARAMETERS(const char* text) : password(text) {}

    std::string name{};    ///< HOST:PORT as the user named it
    std::string address{}; ///< the same, numeric
    std::string user{};
    CSecret<LAN_PASSWORD_SIZE> password;
    UINT8 cipherSuite = 0; ///< 0: the best that the BMC accepts
    bool isIpmi15 = false;
    UINT8 privilege = 0;
    UINT32 timeout = 0;        ///< milliseconds
    UINT32 retransmission = 0; ///< milliseconds
};

/// The result of a request. A completion code is no failure.
struct EXCHANGE {
    int result = LAN_ERR_RESOURCES;
    std::string message{NO_MEMORY};
    UINT8 completionCode = 0;
    std::vector<UINT8> data{};
    UINT8 sendMessageCode = 0; ///< of a bridged request: the completion code of Send Message, 0 for success
};

/// Why a session was not opened: libfreeipmi's number, this module's, and the text behind the host's name.
struct REFUSAL {
    int number;
    LAN_RESULT result;
    const char* text;
};

/// One session. Every function but `Open` needs an open one; all of them wait for the BMC.
class CIpmiContext {
  public:
    CIpmiContext() = default;
    CIpmiContext(const CIpmiContext&) = delete;
    CIpmiContext& operator=(const CIpmiContext&) = delete;
    ~CIpmiContext();

    /// @return a LAN_RESULT, with a `message` unless it is LAN_OK
    int Open(const SESSION_PARAMETERS& parameters, std::string& message);
    /// One request to the BMC; `exchange` takes its result.
    void Ask(UINT8 netFn, UINT8 lun, UINT8 cmd, const std::vector<UINT8>& data, EXCHANGE& exchange);
    /// One request to a controller on the IPMB.
    void AskOnIpmb(const BRIDGED_REQUEST& request, EXCHANGE& exchange);
    /// Keeps the session alive: a BMC closes a silent one after a minute, libfreeipmi after its time-out.
    void KeepAlive();
    /// The cipher suite in use; 0 in a session of IPMI 1.5.
    UINT8 CipherSuite() const { return m_cipherSuite; }

  private:
    REFUSAL OpenWithSuite(const SESSION_PARAMETERS& parameters, UINT8 suite);
    bool IsLost(EXCHANGE& exchange) const;
    void Take(int length, const UINT8* answer, EXCHANGE& exchange);

    const CNoCoreDump m_noCoreDump{};
    ipmi_ctx* m_context = nullptr;
    std::string m_name;
    UINT8 m_cipherSuite = 0;
    bool m_lost = false;
};

} // namespace Frudata_Driver
