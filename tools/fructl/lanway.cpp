#include "tools/fructl/lanway.h"

#include "tools/fructl/interrupt.h"
#include "tools/fructl/lankeeper.h"
#include "tools/fructl/password.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Fructl {

namespace {

/// This end of the keeper, which leaves once every process of the run has closed its copy.
class CKeeper {
  public:
    CKeeper(pid_t process, int socket) : m_owner(getpid()), m_process(process), m_socket(socket) {}
    CKeeper(const CKeeper&) = delete;
    CKeeper& operator=(const CKeeper&) = delete;
    ~CKeeper() {
        SetLastAct(nullptr);
        close(m_socket);
        if (m_process > 0 && getpid() == m_owner)
            waitpid(m_process, nullptr, 0);
    }

    /// @return false where the keeper is gone
    bool Ask(LAN_QUESTION& question, LAN_ANSWER& answer) {
        question.asker = getpid();
        question.number = ++m_number;
        if (send(m_socket, &question, sizeof question, MSG_NOSIGNAL) != sizeof question)
            return false;
        // A process that was ended while it waited has left its answer.
        do {
            if (recv(m_socket, &answer, sizeof answer, 0) != sizeof answer)
                return false;
        } while (answer.asker != question.asker || answer.number != question.number);
        return true;
    }

    /// Before a signal ends the run: nobody else would wait for the keeper, since pid 1 of a container need not. One
    /// that cannot close its session in time is still opening it, or its BMC is silent: nothing is lost with it.
    void End() const {
        if (m_process <= 0 || getpid() != m_owner)
            return;
        shutdown(m_socket, SHUT_WR);
        pollfd ended{m_socket, 0, 0};
        if (poll(&ended, 1, PATIENCE) != 1)
            kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }

  private:
    static constexpr int PATIENCE = 1000; ///< milliseconds

    pid_t m_owner;
    pid_t m_process;
    int m_socket;
    UINT32 m_number = 0;
};

constexpr const char* GONE = "the process that keeps the session over LAN is gone";

std::unique_ptr<CKeeper> gp_keeper;
std::string g_description;
std::string g_failure;

int IsOpen() {
    return gp_keeper ? 1 : 0;
}

int Send(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
         UINT8* completionCode) {
    LAN_QUESTION question = {};
    LAN_ANSWER answer = {};
    question.task = LAN_TASK::SEND;
    question.netFn = request->netFn;
    question.lun = request->rsLun;
    question.cmd = request->cmdType;
    question.timeout = timeout;
    question.length = static_cast<UINT32>(request->dataLength);
    if (question.length > sizeof question.data) {
        g_failure = fmt::format("a request of {} bytes is too long for a session", question.length);
        return LAN_ERR_SIZE;
    }
    std::copy_n(request->data, question.length, question.data);
    const bool isAnswered = gp_keeper && gp_keeper->Ask(question, answer);
    g_failure = isAnswered ? answer.text : GONE;
    if (!isAnswered)
        return LAN_ERR_SESSION;
    if (answer.result != LAN_OK)
        return answer.result;
    if (static_cast<int>(answer.length) > *responseLength)
        return LAN_ERR_SIZE;
    *responseLength = static_cast<int>(answer.length);
    *completionCode = answer.completionCode;
    std::copy_n(answer.data, answer.length, responseData);
    return LAN_OK;
}

} // namespace

const IMB_DRIVER LAN_DRIVER = {IsOpen, IsOpen, Send};

void ShareLan() {
    if (gp_keeper)
        return;
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        throw CToolError(EXIT_DEVICE, "LAN", std::strerror(errno));
    const pid_t process = fork();
    if (process == 0) {
        close(ends[0]);
        KeepLanSession(ends[1]);
    }
    const int error = errno;
    close(ends[1]);
    gp_keeper = std::make_unique<CKeeper>(process, ends[0]);
    SetLastAct([] { gp_keeper->End(); });
    if (process < 0)
        throw CToolError(EXIT_DEVICE, "LAN", std::strerror(error));
    // The keeper has it.
    Password() = CPassword();
}

std::string OpenLan() {
    ShareLan();
    LAN_QUESTION question = {};
    LAN_ANSWER answer = {};
    question.task = LAN_TASK::OPEN;
    if (!gp_keeper->Ask(question, answer))
        return GONE;
    if (answer.result != LAN_OK)
        return answer.text;
    g_description = answer.text;
    return {};
}

std::string DescribeLan() {
    return fmt::format("LAN, {}", g_description.empty() ? "closed" : g_description);
}

std::string LanFailure() {
    return g_failure;
}

} // namespace Fructl
