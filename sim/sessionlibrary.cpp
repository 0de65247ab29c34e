// libipmi.so: a session library whose sessions end in the simulated BMC of the process that loaded it. It
// opens a session only with the parameters of a local one: a caller's mistake shows.
#include "sim/sessionlink.h"

#include <cstring>

extern "C" {
// Undefined where the process has no simulated BMC.
#pragma weak FruSimSessionAvailable
#pragma weak FruSimSessionRequest

[[gnu::visibility("default")]] int LIBIPMI_Create_IPMI20_Session(void* session, const char* host, int port,
                                                                 const char* user, const char* password, int first,
                                                                 int second, int third, const UINT8* privilege,
                                                                 int fourth, int fifth, int sixth, int seventh,
                                                                 int eighth, int timeout);
[[gnu::visibility("default")]] int LIBIPMI_Send_RAW_IPMI2_0_Command(void* session, int zero, UINT8 netFnLun, UINT8 cmd,
                                                                    const UINT8* data, int length, UINT8* answer,
                                                                    int* answerLength, int timeout);
[[gnu::visibility("default")]] int LIBIPMI_CloseSession(void* session);
}

namespace {

constexpr int SUCCESS = 0;
constexpr int NO_SESSION = 1;
constexpr int BAD_PARAMETER = 2;
constexpr int NO_ANSWER = 3;

/// Written into the first four bytes of a caller's session record.
constexpr UINT8 MARK[] = {0x53, 0x45, 0x53, 0x53};
constexpr int ADMINISTRATOR = 4;
constexpr int RMCP_PORT = 623;
/// Room of a caller's answer buffer.
constexpr int ANSWER_CAPACITY = 65536;

const void* gp_openSession = nullptr;

bool IsOpen(const void* session) {
    return session && session == gp_openSession && std::memcmp(session, MARK, sizeof MARK) == 0;
}

} // namespace

int LIBIPMI_Create_IPMI20_Session(void* session, const char* host, int port, const char* user, const char* password,
                                  int first, int second, int third, const UINT8* privilege, int fourth, int fifth,
                                  int sixth, int seventh, int eighth, int timeout) {
    const bool isLocal = host && std::strcmp(host, "127.0.0.1") == 0 && port == RMCP_PORT && !user && !password;
    const bool isPlain = first == 0 && second == 0 && third == 0 && privilege && *privilege == ADMINISTRATOR;
    const bool isKnown = fourth == 6 && fifth == 0x54 && sixth == 0x20 && seventh == 0 && eighth == 0;
    if (!session || !isLocal || !isPlain || !isKnown || timeout != 2000)
        return BAD_PARAMETER;
    if (gp_openSession || !FruSimSessionAvailable || !FruSimSessionAvailable())
        return NO_SESSION;
    gp_openSession = session;
    std::memcpy(session, MARK, sizeof MARK);
    return SUCCESS;
}

int LIBIPMI_Send_RAW_IPMI2_0_Command(void* session, int zero, UINT8 netFnLun, UINT8 cmd, const UINT8* data, int length,
                                     UINT8* answer, int* answerLength, int /*timeout*/) {
    if (!IsOpen(session))
        return NO_SESSION;
    if (zero != 0 || length < 0 || (length > 0 && !data) || !answer || !answerLength)
        return BAD_PARAMETER;
    const int count = FruSimSessionRequest(netFnLun, cmd, data, length, answer, ANSWER_CAPACITY);
    if (count < 0)
        return NO_ANSWER;
    *answerLength = count;
    return SUCCESS;
}

int LIBIPMI_CloseSession(void* session) {
    if (!IsOpen(session))
        return NO_SESSION;
    gp_openSession = nullptr;
    std::memset(session, 0, sizeof MARK);
    return SUCCESS;
}
