#include "tools/fructl/lankeeper.h"

#include "tools/fructl/password.h"
#include "tools/fructl/settings.h"

#include "common/ipmi.h"
#include "drivers/lan/lanloader.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Fructl {

namespace {

using namespace Frudata_Driver;

const LAN_INTERFACE* gp_lan = nullptr;
LAN_SESSION* gp_session = nullptr;
bool g_isLost = false;

void Close() {
    UseLanSession(nullptr, nullptr);
    if (gp_session)
        gp_lan->Close(gp_session);
    gp_session = nullptr;
}

/// @return a LAN_RESULT, with a `message` unless it is LAN_OK
int Open(std::string& message) {
    const LAN_SETTINGS& lan = Settings().lan;
    gp_lan = LoadLan(LanModulePath(), message);
    if (!gp_lan)
        return LAN_ERR_RESOURCES;
    // The module overwrites the password that it is given.
    CPassword password = Password();
    LAN_SESSION_OPTIONS options = {};
    options.host = lan.host.c_str();
    options.port = lan.port;
    options.user = lan.user.empty() ? nullptr : lan.user.c_str();
    options.password = password.Text();
    options.cipherSuite = lan.cipherSuite;
    options.ipmi15 = lan.isIpmi15 ? 1 : 0;
    options.privilege = lan.privilege;
    options.timeout = lan.timeout;
    char text[512] = "";
    const int result = gp_lan->Open(&options, &gp_session, text, sizeof text);
    message = text;
    g_isLost = false;
    UseLanSession(gp_lan, gp_session);
    return result;
}

void AnswerOpen(LAN_ANSWER& answer) {
    // A controller that never answers costs the session; the next device still has one.
    if (g_isLost)
        Close();
    std::string message;
    // Until there is a session to close, nothing keeps this process from ending with the one that asks.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    answer.result = gp_session ? LAN_OK : Open(message);
    prctl(PR_SET_PDEATHSIG, 0);
    std::snprintf(answer.text, sizeof answer.text, "%s",
                  answer.result == LAN_OK ? gp_lan->Description(gp_session) : message.c_str());
}

void AnswerSend(const LAN_QUESTION& question, LAN_ANSWER& answer) {
    const _IMBPREQUESTDATA request = {question.cmd,  Frudata_Private::BMC_ADDRESS,     0, question.netFn, question.lun,
                                      question.data, static_cast<int>(question.length)};
    int length = sizeof answer.data;
    answer.result = LanSendTimedImbpRequest(&request, question.timeout, answer.data, &length, &answer.completionCode);
    answer.length = answer.result == LAN_OK ? static_cast<UINT32>(length) : 0;
    if (answer.result != LAN_OK && gp_session)
        std::snprintf(answer.text, sizeof answer.text, "%s", gp_lan->Message(gp_session));
    g_isLost = g_isLost || answer.result == LAN_ERR_SESSION;
}

/// Signals, the terminal, and locked or piped files are for those who ask. The socket becomes the standard input.
void Detach(int socket) {
    sigset_t signals;
    sigfillset(&signals);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    dup2(socket, STDIN_FILENO);
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, stream);
    close_range(STDERR_FILENO + 1, ~0U, 0);
}

} // namespace

void KeepLanSession(int socket) {
    Detach(socket);
    LAN_QUESTION question = {};
    while (recv(STDIN_FILENO, &question, sizeof question, 0) == sizeof question) {
        LAN_ANSWER answer = {};
        answer.asker = question.asker;
        answer.number = question.number;
        if (question.task == LAN_TASK::OPEN)
            AnswerOpen(answer);
        else
            AnswerSend(question, answer);
        send(STDIN_FILENO, &answer, sizeof answer, MSG_NOSIGNAL);
    }
    Close();
    _exit(0);
}

} // namespace Fructl
