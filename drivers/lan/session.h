// A session of the module: it limits waits and executes bridged requests.
#pragma once

#include "drivers/lan/ipmicontext.h"
#include "drivers/lan/worker.h"

#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace Frudata_Driver {

/// LAN_INTERFACE describes the functions. They may throw when memory runs out.
class CLanSession {
  public:
    /// @throw std::system_error where there is no thread to be had
    explicit CLanSession(std::chrono::milliseconds timeout);
    /// False in a child of the process that opened it: a child has no thread of the session and must leave it alone.
    bool IsOurs() const;

    /// @return a LAN_RESULT, with a `message` unless it is LAN_OK
    int Open(std::shared_ptr<const SESSION_PARAMETERS> parameters, std::string& message);
    int Send(const _IMBPREQUESTDATA& request, int timeout, UINT8* responseData, int& responseLength,
             UINT8& completionCode);
    /// Notes that the host sent something that is no request. @return LAN_ERR_OPTION
    int RefuseRequest();
    const std::string& Message() const { return m_message; }
    const std::string& Description() const { return m_description; }

  private:
    EXCHANGE Exchange(const _IMBPREQUESTDATA& request, int timeout);
    EXCHANGE SendMessage(const std::vector<UINT8>& data, std::chrono::milliseconds limit);
    EXCHANGE GetMessage();
    EXCHANGE Wait(std::function<void(CIpmiContext&, EXCHANGE&)> ask, std::chrono::milliseconds limit);

    const pid_t m_process;
    const std::chrono::milliseconds m_timeout;
    const std::shared_ptr<CIpmiContext> m_context;
    CWorker m_worker;
    /// The answer for the next Get Message. A newer one replaces it.
    std::vector<UINT8> m_queued;
    std::string m_name;
    std::string m_message;
    std::string m_description;
};

} // namespace Frudata_Driver
