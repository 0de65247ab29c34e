/* A session library that opens a session only with the agreed arguments and answers with its arguments. */
#include <string.h>

typedef unsigned char BYTE;

int LIBIPMI_Create_IPMI20_Session(void* session, const char* host, unsigned short port, const char* user,
                                  const char* password, int a, int b, int c, const BYTE* privilege, BYTE d, BYTE e,
                                  BYTE f, const void* g, const void* h, int timeout) {
    memcpy(session, "open", 4);
    const int agreed = strcmp(host, "127.0.0.1") == 0 && port == 623 && !user && !password && !a && !b && !c &&
                       *privilege == 4 && d == 6 && e == 0x54 && f == 0x20 && !g && !h && timeout == 2000;
    return agreed ? 0x10000 : 1; /* the low 16 bits tell */
}

int LIBIPMI_Send_RAW_IPMI2_0_Command(void* session, int a, BYTE netFnAndLun, BYTE command, const BYTE* data, int length,
                                     BYTE* answer, int* answerLength, int timeout) {
    static const int lengths[] = {5, 0, -1, 70000}; /* of the commands 0xF0 to 0xF3 */
    const BYTE echo[] = {(BYTE)(0xC4 + data[0]), netFnAndLun, command, (BYTE)length, (BYTE)timeout};
    memcpy(answer, echo, sizeof echo);
    *answerLength = command >= 0xF0 ? lengths[command - 0xF0] : 5;
    return command == 0xF0 || a != 0 || memcmp(session, "open", 4) != 0;
}

int LIBIPMI_CloseSession(void* session) {
    memcpy(session, "shut", 4);
    return 0;
}
