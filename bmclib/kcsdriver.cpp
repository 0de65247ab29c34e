// The KCS driver: write phase, read phase and error recovery. No sleeping and no allocation, and no port
// access beyond those below. "wait" is a wait while IBF and "until OBF" a wait for that flag, each at least one
// status read. State and OBF after a wait come from its last status byte; the read phase reads the
// status again, since a controller may set its state a moment after IBF falls. A time-out of any wait ends the
// operation with 2.
//
//   write phase          written                then                              state must be  else
//   start                                       wait (time-out: 1), discard byte
//   begin                WRITE_START (command)  wait, discard byte                WRITE          3
//   all bytes but one    the byte (data)        wait, discard byte                WRITE          3
//   end                  WRITE_END (command)    wait, discard byte                WRITE          3
//   last byte            the byte (data)        0: the read phase waits
//
//   read phase: wait,    byte                   written                           next
//   then read the status
//   READ                 until OBF, kept        READ (data)                       again; 4 when the buffer is full
//   IDLE                 until OBF, dropped                                       0
//   WRITE, ERROR                                                                  recovery, then 3
//
//   recovery: wait       written                then                              state must be  else
//   abort                ABORT (command)        wait, discard byte                any
//   ask for the error    0x00 (data)            wait; wait, read data             READ           next attempt
//   end                  READ (data)            wait; until OBF, read data        IDLE           next attempt
//   after five attempts                                                                          3
//
// "discard byte" reads the data port where OBF is set.
#include "bmclib/kcsregisters.h"

namespace {

using namespace Frudata_Private;

enum KCS_RESULT : int {
    KCS_DONE = 0,
    KCS_BUSY = 1,
    KCS_TIMEOUT = 2,
    KCS_WRONG_STATE = 3,
    KCS_BUFFER_FULL = 4
};

constexpr int RECOVERY_ATTEMPTS = 5;
constexpr UINT8 ANY_STATE = 0xFF;

enum KCS_REGISTER {
    REGISTER_DATA,
    REGISTER_COMMAND
};

// How the byte in the data register is taken.
enum PICK_UP {
    PICK_UP_IF_THERE,
    PICK_UP_AFTER_IBF,
    PICK_UP_AFTER_OBF
};

struct KCS_STEP {
    KCS_REGISTER target;
    UINT8 value;
    UINT8 state;
    PICK_UP pickUp;
};

constexpr KCS_STEP WRITE_BEGIN = {REGISTER_COMMAND, CONTROL_WRITE_START, KCS_STATE_WRITE, PICK_UP_IF_THERE};
constexpr KCS_STEP WRITE_END = {REGISTER_COMMAND, CONTROL_WRITE_END, KCS_STATE_WRITE, PICK_UP_IF_THERE};

constexpr KCS_STEP RECOVERY[] = {
    {REGISTER_COMMAND, CONTROL_ABORT, ANY_STATE, PICK_UP_IF_THERE},
    {REGISTER_DATA, 0x00, KCS_STATE_READ, PICK_UP_AFTER_IBF},
    {REGISTER_DATA, CONTROL_READ, KCS_STATE_IDLE, PICK_UP_AFTER_OBF},
};

int PickUp(PICK_UP how) {
    if (how == PICK_UP_IF_THERE && (Status & STATUS_OBF) == 0)
        return KCS_DONE;
    if (how == PICK_UP_AFTER_IBF && WaitWhileIbf(KCS_WAIT_LIMIT) != 0)
        return KCS_TIMEOUT;
    if (how == PICK_UP_AFTER_OBF && WaitTilObf(KCS_WAIT_LIMIT) != 0)
        return KCS_TIMEOUT;
    inb(KcsDataPort());
    return KCS_DONE;
}

int Run(const KCS_STEP& step) {
    outb(step.value, step.target == REGISTER_COMMAND ? KcsStatusPort() : KcsDataPort());
    if (WaitWhileIbf(KCS_WAIT_LIMIT) != 0)
        return KCS_TIMEOUT;
    if (step.state != ANY_STATE && (Status & STATUS_STATE) != step.state)
        return KCS_WRONG_STATE;
    return PickUp(step.pickUp);
}

int AttemptRecovery() {
    if (WaitWhileIbf(KCS_WAIT_LIMIT) != 0)
        return KCS_TIMEOUT;
    int result = KCS_DONE;
    for (const KCS_STEP& step : RECOVERY) {
        if (result == KCS_DONE)
            result = Run(step);
    }
    return result;
}

} // namespace

int KCSSendMessage(const UINT8* frame, unsigned int length) {
    if (length < 2 || WaitWhileIbf(KCS_WAIT_LIMIT) != 0)
        return KCS_BUSY;
    PickUp(PICK_UP_IF_THERE);
    int result = Run(WRITE_BEGIN);
    for (unsigned int index = 0; result == KCS_DONE && index < length - 1; ++index)
        result = Run({REGISTER_DATA, frame[index], KCS_STATE_WRITE, PICK_UP_IF_THERE});
    if (result == KCS_DONE)
        result = Run(WRITE_END);
    if (result == KCS_DONE)
        outb(frame[length - 1], KcsDataPort());
    return result;
}

int KCSReadBMCData(UINT8* buffer, unsigned int capacity, unsigned int* count) {
    for (*count = 0; *count < capacity; ++*count) {
        if (WaitWhileIbf(KCS_WAIT_LIMIT) != 0)
            return KCS_TIMEOUT;
        Status = inb(KcsStatusPort());
        switch (Status & STATUS_STATE) {
        case KCS_STATE_READ:
            if (WaitTilObf(KCS_WAIT_LIMIT) != 0)
                return KCS_TIMEOUT;
            buffer[*count] = inb(KcsDataPort());
            outb(CONTROL_READ, KcsDataPort());
            break;
        case KCS_STATE_IDLE:
            return PickUp(PICK_UP_AFTER_OBF);
        default:
            KCSBMCErrorHandler();
            return KCS_WRONG_STATE;
        }
    }
    return KCS_BUFFER_FULL;
}

int KCSBMCErrorHandler(void) {
    int result = KCS_WRONG_STATE;
    for (int attempt = 0; result == KCS_WRONG_STATE && attempt < RECOVERY_ATTEMPTS; ++attempt)
        result = AttemptRecovery();
    return result;
}
