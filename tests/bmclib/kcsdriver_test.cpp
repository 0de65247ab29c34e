// The KCS driver against a register model.
#include "kcsmodel.h"

#include <csignal>
#include <gtest/gtest.h>
#include <numeric>
#include <tuple>
#include <unistd.h>

HOST g_host;

extern "C" {
UINT8 inb(UINT16 port) {
    if (g_host.m_AlarmSeconds > 0 && ++g_host.m_ReadsUnderAlarm > 50) {
        g_host.m_AlarmSeconds = 0;
        std::raise(SIGALRM);
    }
    return g_host.Read(port);
}
void outb(UINT8 value, UINT16 port) {
    g_host.Write(value, port);
}
unsigned int alarm(unsigned int seconds) noexcept {
    g_host.m_ReadsUnderAlarm = seconds > 0 ? 0 : g_host.m_ReadsUnderAlarm;
    return std::exchange(g_host.m_AlarmSeconds, seconds);
}
unsigned int sleep(unsigned int seconds) {
    return g_host.m_SleptMilliseconds += 1000 * seconds, 0;
}
int usleep(useconds_t microseconds) {
    return g_host.m_SleptMilliseconds += microseconds / 1000, 0;
}
int iopl(int) noexcept {
    return ++g_host.m_PortRequests, 0;
}
} // extern "C"

namespace {

constexpr UINT8 OBF = 0x01;
constexpr UINT8 IBF = 0x02;
constexpr UINT8 STATE = 0xC0;

void Start(const STATUS_FAULT& fault, const BYTES& answer) {
    g_host = HOST{};
    KCSAddress = 0x0CA8; // hosts may move it
    g_host.m_Fault = fault;
    g_host.m_Answer = [answer](const BYTES&) { return answer; };
}

enum OPERATION {
    SEND,
    SEND_AND_READ,
    RECOVER
};

// A two-byte request is write 1 (begin), 2 (byte), 3 (end), 4 (byte); the answer's four bytes and the end of
// the transfer are asked for by the writes 5 to 8. An abort's three writes follow.
constexpr struct {
    const char* name;
    STATUS_FAULT fault;
    OPERATION operation;
    int result;
    size_t writes;
} OUTCOMES[] = {
    {"ready", {}, SEND_AND_READ, 0, 8},
    {"read state a moment after IBF", {4, 4, STATE, 0x80, 1}, SEND_AND_READ, 0, 8},
    {"idle state a moment after IBF", {8, 8, STATE, 0x40, 1}, SEND_AND_READ, 0, 8},
    {"OBF later still", {4, 8, OBF, 0, 3}, SEND_AND_READ, 0, 8},
    {"never takes a byte", {0, ALWAYS, 0, IBF}, SEND, 1, 0},
    {"begin not taken", {1, ALWAYS, 0, IBF}, SEND, 2, 1},
    {"read state after begin", {1, 1, STATE, 0x40}, SEND, 3, 1},
    {"byte not taken", {2, ALWAYS, 0, IBF}, SEND, 2, 2},
    {"idle state after a byte", {2, 2, STATE, 0x00}, SEND, 3, 2},
    {"end not taken", {3, ALWAYS, 0, IBF}, SEND, 2, 3},
    {"error state after end", {3, 3, 0, STATE}, SEND, 3, 3},
    {"last byte not taken", {4, ALWAYS, 0, IBF}, SEND_AND_READ, 2, 4},
    {"no first byte", {4, ALWAYS, OBF, 0}, SEND_AND_READ, 2, 4},
    {"no byte that ends the transfer", {8, ALWAYS, OBF, 0}, SEND_AND_READ, 2, 8},
    {"error state, recovered", {5, 5, 0, STATE}, SEND_AND_READ, 3, 8},
    {"write state, never recovered", {5, ALWAYS, STATE, 0x80}, SEND_AND_READ, 3, 15},
    {"abort: busy", {0, ALWAYS, 0, IBF}, RECOVER, 2, 0},
    {"abort: not taken", {1, ALWAYS, 0, IBF}, RECOVER, 2, 1},
    {"abort: zero not taken", {2, ALWAYS, 0, IBF}, RECOVER, 2, 2},
    {"abort: end not taken", {3, ALWAYS, 0, IBF}, RECOVER, 2, 3},
    {"abort: no last byte", {3, 3, OBF, 0}, RECOVER, 2, 3},
    {"abort: at the second attempt", {3, 3, STATE, 0x80}, RECOVER, 0, 6},
    {"abort: stays in the error state", {2, ALWAYS, 0, STATE}, RECOVER, 3, 10},
};

TEST(KcsDriver, Outcomes) {
    const BYTES frame = {0x18, 0x01};
    const BYTES answer = {0x1C, 0x01, 0x00, 0xAA};
    for (const auto& [name, fault, operation, expected, writes] : OUTCOMES) {
        SCOPED_TRACE(name);
        Start(fault, answer);
        UINT8 buffer[16] = {};
        unsigned int count = 0;
        int result = operation == RECOVER ? KCSBMCErrorHandler() : KCSSendMessage(frame.data(), 2);
        if (operation == SEND_AND_READ) {
            EXPECT_EQ(result, 0);
            result = KCSReadBMCData(buffer, sizeof buffer, &count);
            EXPECT_TRUE(result != 0 || (BYTES(buffer, buffer + count) == answer && g_host.m_Request == frame));
        }
        EXPECT_EQ(result, expected);
        EXPECT_EQ(g_host.m_Written.size(), writes);
        const bool timedOut = expected == 1 || expected == 2;
        EXPECT_EQ(g_host.m_ReadsUnderAlarm > 50, timedOut) << "no wait ends before its alarm";
        struct sigaction action = {};
        sigaction(SIGALRM, nullptr, &action);
        EXPECT_EQ(action.sa_handler, SIG_DFL);
        EXPECT_EQ(g_host.m_AlarmSeconds, 0U);
    }
}

TEST(KcsUtilities, LooksAtTheRegisters) {
    constexpr UINT8 attention = 0x04;
    for (const auto& [status, data, isThere] : {std::tuple(0xFF, 0x00, 1), {0x00, 0xFF, 1}, {0xFF, 0xFF, 0}}) {
        Start({0, ALWAYS, 0xFF, static_cast<UINT8>(status)}, {});
        g_host.m_Out = {static_cast<UINT8>(data)};
        EXPECT_EQ(IsKCS(), isThere) << status;
        EXPECT_EQ(KCSMessageReady(), status == 0xFF ? 1 : 0);
    }
    // The awaited bit shows at the sixth look, the other one from the first on.
    for (const auto& [responder, awaited] : {std::pair(UINT8{0x20}, OBF), {UINT8{0x72}, attention}}) {
        Start({0, ALWAYS, awaited, 0, 5}, {});
        g_host.m_OutFull = OBF;
        EXPECT_EQ(CheckMessageReady(responder, 1), 0);
        EXPECT_EQ(g_host.m_StatusReads, 6U);
    }
    EXPECT_EQ(CheckMsTimeout(), 0);
}

// Read FRU Data of 8 bytes: a 6-byte request and 12 bytes of answer.
TEST(KcsDriver, PortAccessesOfOneRead) {
    using COUNTS = std::vector<size_t>;
    const auto counts = [] { return COUNTS{g_host.m_StatusReads, g_host.m_DataReads, g_host.m_Written.size()}; };
    BYTES answer(12);
    std::iota(answer.begin(), answer.end(), UINT8{0});
    Start({}, answer);
    const BYTES frame = {0x28, 0x11, 0x00, 0x00, 0x00, 0x08};
    ASSERT_EQ(KCSSendMessage(frame.data(), 6), 0);
    EXPECT_EQ(g_host.m_Written, (BYTES{0x61, 0x28, 0x11, 0x00, 0x00, 0x00, 0x62, 0x08}));
    EXPECT_EQ(counts(), (COUNTS{8, 0, 8})) << "status before the first write and after each but the last";
    UINT8 buffer[13] = {};
    unsigned int count = 0;
    ASSERT_EQ(KCSReadBMCData(buffer, sizeof buffer, &count), 0);
    EXPECT_EQ(counts(), (COUNTS{8 + 3 * 13, 13, 8 + 12})) << "three times status and once data, the end included";
    ASSERT_EQ(KCSSendMessage(frame.data(), 6), 0);
    EXPECT_EQ(KCSReadBMCData(buffer, 12, &count), 4) << "the buffer is full";
    EXPECT_EQ(BYTES(buffer, buffer + count), answer);
    EXPECT_EQ(buffer[12], 0);
    g_host.m_DataReads = 0;
    ASSERT_EQ(KCSSendMessage(frame.data(), 6), 0);
    EXPECT_EQ(g_host.m_DataReads, 1U) << "the byte left over is dropped";
}

} // namespace
