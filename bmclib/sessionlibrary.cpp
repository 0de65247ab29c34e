// The way through an IPMI 2.0 session library, loaded when a host selects it.
#include "frudata/bmclib.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>

namespace {

// An argument of a type that only the session library knows: wide enough for a pointer or a number.
using ARGUMENT = std::uintptr_t;

using CREATE_SESSION = int(void* session, const char* host, int port, const char* user, const char* password, ARGUMENT,
                           ARGUMENT, ARGUMENT, UINT8* privilegeLevel, ARGUMENT, ARGUMENT, ARGUMENT, ARGUMENT, ARGUMENT,
                           int timeout);
using CLOSE_SESSION = int(void* session);
using SEND_COMMAND = int(void* session, ARGUMENT, UINT8 netFnAndLun, UINT8 command, const UINT8* data, int dataLength,
                         UINT8* answer, int* answerLength, int timeout);

constexpr int SESSION_PORT = 623;
constexpr int SESSION_TIMEOUT = 2000;
constexpr UINT8 PRIVILEGE_ADMINISTRATOR = 4;
constexpr int RESPONSE_SIZE = 65536;

constexpr int REQUEST_FAILED = 1;
constexpr int REQUEST_EMPTY_ANSWER = 3;

void* hUsbSession = nullptr;
CREATE_SESSION* LIBIPMI_Create_IPMI20_Session_dll = nullptr;
CLOSE_SESSION* LIBIPMI_CloseSession_dll = nullptr;
SEND_COMMAND* LIBIPMI_Send_RAW_IPMI2_0_Command_dll = nullptr;

// Only the session library knows the record's layout; this is ample room.
alignas(std::max_align_t) UINT8 sessionHandle[65536];
UINT8 usbRespBuf[RESPONSE_SIZE];

template <typename FUNCTION> bool LookUp(FUNCTION*& entryPoint, const char* name) {
    entryPoint = reinterpret_cast<FUNCTION*>(dlsym(hUsbSession, name));
    return entryPoint != nullptr;
}

bool LookUpAll() {
    return LookUp(LIBIPMI_Create_IPMI20_Session_dll, "LIBIPMI_Create_IPMI20_Session") &&
           LookUp(LIBIPMI_Send_RAW_IPMI2_0_Command_dll, "LIBIPMI_Send_RAW_IPMI2_0_Command") &&
           LookUp(LIBIPMI_CloseSession_dll, "LIBIPMI_CloseSession");
}

void Unload() {
    dlclose(hUsbSession);
    hUsbSession = nullptr;
    LIBIPMI_Create_IPMI20_Session_dll = nullptr;
    LIBIPMI_CloseSession_dll = nullptr;
    LIBIPMI_Send_RAW_IPMI2_0_Command_dll = nullptr;
}

} // namespace

int UsbLibInitialize(void) {
    hUsbSession = dlopen("libipmi.so", RTLD_NOW);
    if (!hUsbSession)
        return 0;
    if (LookUpAll() && UsbOpenSession() == 0)
        return 1;
    Unload();
    return 0;
}

void UsbLibDeinitialize(void) {
    if (!hUsbSession)
        return;
    UsbCloseSession();
    Unload();
}

int UsbOpenSession(void) {
    static UINT8 privilegeLevel; // the session library may keep its address
    if (!LIBIPMI_Create_IPMI20_Session_dll)
        return REQUEST_FAILED;
    privilegeLevel = PRIVILEGE_ADMINISTRATOR;
    // cppcheck-suppress AssignmentAddressToInteger // takes the pointer to a function for its result
    const int result = LIBIPMI_Create_IPMI20_Session_dll(sessionHandle, "127.0.0.1", SESSION_PORT, nullptr, nullptr, 0,
                                                         0, 0, &privilegeLevel, 6, 0x54, 0x20, 0, 0, SESSION_TIMEOUT);
    return result & 0xFFFF;
}

int UsbCloseSession(void) {
    // cppcheck-suppress CastAddressToIntegerAtReturn // as above
    return LIBIPMI_CloseSession_dll ? LIBIPMI_CloseSession_dll(sessionHandle) : REQUEST_FAILED;
}

int SendTimedUsbRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                        UINT8* completionCode) {
    if (!LIBIPMI_Send_RAW_IPMI2_0_Command_dll)
        return REQUEST_FAILED;
    int answerLength = RESPONSE_SIZE;
    // cppcheck-suppress AssignmentAddressToInteger // as above
    const int result = LIBIPMI_Send_RAW_IPMI2_0_Command_dll(
        sessionHandle, 0, static_cast<UINT8>(request->netFn << 2 | request->rsLun), request->cmdType, request->data,
        request->dataLength, usbRespBuf, &answerLength, timeout);
    if (result != 0 || answerLength < 0 || answerLength > RESPONSE_SIZE)
        return REQUEST_FAILED;
    if (answerLength == 0)
        return REQUEST_EMPTY_ANSWER;
    *completionCode = usbRespBuf[0];
    *responseLength = answerLength - 1;
    std::memcpy(responseData, usbRespBuf + 1, static_cast<size_t>(answerLength - 1));
    return 0;
}
