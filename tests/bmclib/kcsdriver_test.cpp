// The KCS driver against a register model.
#include "kcsmodel.h"

#include <csignal>
#include <gtest/gtest.h>
#include <numeric>
#include <unistd.h>

HOST g_host;

extern "C" {
UINT8 inb(UINT16 port) {
    if (g_host.m_AlarmSeconds > 0 && ++g_host.m_ReadsUnderAlarm > 50) {
        g_host.m_AlarmSeconds = 0;
        std::raise(SIGALRM);
    }
    return g_host.m_Kcs.Read(port);
}
void outb(UINT8 value, UINT16 port) {
    g_host.m_Kcs.Write(value, port);
}
unsigned int alarm(unsigned int seconds) noexcept {
    g_host.m_ReadsUnderAlarm = seconds > 0 ? 0 : g_host.m_ReadsUnderAlarm;
    return std::exchange(g_host.m_AlarmSeconds, seconds);
}
unsigned int sleep(unsigned int seconds) {
    g_host.m_Sleeps += static_cast<int>(seconds);
    return 0;
}
int usleep(useconds_t) {
    ++g_host.m_ShortSleeps;
    return 0;
}
int iopl(int) noexcept {
    return ++g_host.m_PortRequests, 0;
}
} // extern "C"

namespace {

constexpr int ALWAYS = 1 << 30;
constexpr UINT8 OBF = 0x01;
constexpr UINT8 IBF = 0x02;
constexpr UINT8 STATE = 0xC0;

BYTES Iota(size_t size) {
    BYTES bytes(size);
    std::iota(bytes.begin(), bytes.end(), UINT8{0});
    return bytes;
}

void Start(const STATUS_FAULT& fault, const BYTES& answer) {
    g_host = HOST{};
    g_host.m_Kcs.m_Fault = fault;
    g_host.m_Kcs.m_Answer = [answer](const BYTES&) { return answer; };
}

void ExpectNoTraceOfWaits() {
    struct sigaction action = {};
    sigaction(SIGALRM, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
    EXPECT_EQ(g_host.m_AlarmSeconds, 0U);
}

// A two-byte request is write 1 (begin), 2 (byte), 3 (end), 4 (byte); the answer's four bytes and the end of
// the transfer are asked for by the writes 5 to 8. An abort's writes follow.
constexpr struct {
    const char* name;
    STATUS_FAULT fault;
    int sent;
    int read; // result of the read phase, if the write phase succeeded
    size_t writes;
} OUTCOMES[] = {
    {"ready", {1, 0, 0, 0}, 0, 0, 8},
    {"never takes a byte", {0, ALWAYS, 0, IBF}, 1, -1, 0},
    {"begin not taken", {1, ALWAYS, 0, IBF}, 2, -1, 1},
    {"read state after begin", {1, 1, STATE, 0x40}, 3, -1, 1},
    {"byte not taken", {2, ALWAYS, 0, IBF}, 2, -1, 2},
    {"idle state after a byte", {2, 2, STATE, 0x00}, 3, -1, 2},
    {"end not taken", {3, ALWAYS, 0, IBF}, 2, -1, 3},
    {"error state after end", {3, 3, 0, STATE}, 3, -1, 3},
    {"last byte not taken", {4, ALWAYS, 0, IBF}, 0, 2, 4},
    {"no first byte", {4, ALWAYS, OBF, 0}, 0, 2, 4},
    {"no byte that ends the transfer", {8, ALWAYS, OBF, 0}, 0, 2, 8},
    {"error state, recovered", {5, 5, 0, STATE}, 0, 3, 8},
    {"write state, never recovered", {5, ALWAYS, STATE, 0x80}, 0, 3, 15},
};

TEST(KcsDriver, Outcomes) {
    const BYTES answer = {0x1C, 0x01, 0x00, 0xAA};
    for (const auto& row : OUTCOMES) {
        SCOPED_TRACE(row.name);
        Start(row.fault, answer);
        const BYTES frame = {0x18, 0x01};
        UINT8 buffer[16] = {};
        unsigned int count = 0;
        EXPECT_EQ(KCSSendMessage(frame.data(), 2), row.sent);
        EXPECT_EQ(row.sent == 0 ? KCSReadBMCData(buffer, sizeof buffer, &count) : -1, row.read);
        EXPECT_TRUE(row.read != 0 || (BYTES(buffer, buffer + count) == answer && g_host.m_Kcs.m_Request == frame));
        EXPECT_EQ(g_host.m_Kcs.m_Written.size(), row.writes);
        const bool timedOut = row.sent == 1 || row.sent == 2 || row.read == 2;
        EXPECT_EQ(g_host.m_ReadsUnderAlarm > 50, timedOut) << "no wait ends before its alarm";
        ExpectNoTraceOfWaits();
    }
}

TEST(KcsDriver, Recovery) {
    constexpr struct {
        STATUS_FAULT fault;
        int result;
        size_t writes;
    } rows[] = {{{0, ALWAYS, 0, IBF}, 2, 0},   {{1, ALWAYS, 0, IBF}, 2, 1}, {{2, ALWAYS, 0, IBF}, 2, 2},
                {{3, ALWAYS, 0, IBF}, 2, 3},   {{3, 3, OBF, 0}, 2, 3},      {{3, 3, STATE, 0x80}, 0, 6},
                {{2, ALWAYS, 0, STATE}, 3, 10}};
    for (const auto& row : rows) {
        Start(row.fault, {});
        EXPECT_EQ(KCSBMCErrorHandler(), row.result);
        EXPECT_EQ(g_host.m_Kcs.m_Written.size(), row.writes);
        ExpectNoTraceOfWaits();
    }
}

// Read FRU Data of 8 bytes: a 6-byte request and 12 bytes of answer.
TEST(KcsDriver, PortAccessesOfOneRead) {
    Start({1, 0, 0, 0}, Iota(12));
    KCS_MODEL& kcs = g_host.m_Kcs;
    const BYTES frame = {0x28, 0x11, 0x00, 0x00, 0x00, 0x08};
    ASSERT_EQ(KCSSendMessage(frame.data(), 6), 0);
    EXPECT_EQ(kcs.m_Written, (BYTES{0x61, 0x28, 0x11, 0x00, 0x00, 0x00, 0x62, 0x08}));
    EXPECT_EQ(kcs.m_StatusReads, 8) << "before the first write and after each but the last";
    EXPECT_EQ(kcs.m_DataReads, 0);
    UINT8 buffer[13] = {};
    unsigned int count = 0;
    ASSERT_EQ(KCSReadBMCData(buffer, sizeof buffer, &count), 0);
    EXPECT_EQ(kcs.m_StatusReads, 8 + 13) << "one for each byte and one for the end";
    EXPECT_EQ(kcs.m_DataReads, 13);
    EXPECT_EQ(kcs.m_Written.size(), 8U + 12);
    ASSERT_EQ(KCSSendMessage(frame.data(), 6), 0);
    EXPECT_EQ(KCSReadBMCData(buffer, 12, &count), 4) << "the buffer is full";
    EXPECT_EQ(BYTES(buffer, buffer + count), Iota(12));
    EXPECT_EQ(buffer[12], 0);
    kcs.m_DataReads = 0;
    ASSERT_EQ(KCSSendMessage(frame.data(), 6), 0);
    EXPECT_EQ(kcs.m_DataReads, 1) << "the byte left over is dropped";
}

TEST(KcsDriver, UtilitiesAtAnotherAddress) {
    Start({0, ALWAYS, 0, 0}, {});
    KCSAddress = 0x0CA8;
    EXPECT_EQ(IsKCS() + KCSMessageReady() + CheckMessageReady(0x72, 0), 2);
    g_host.m_Kcs.m_Attention = false;
    EXPECT_EQ(KCSMessageReady(), 0);
    EXPECT_EQ(WaitTilObf(5000000), 1);
    g_host.m_Kcs.m_Fault.set = 0xFF;
    EXPECT_EQ(IsKCS(), 1) << "the data port answers";
    EXPECT_EQ(CheckMessageReady(0x20, 0), 0);
    KCSAddress = 0x0CA2;
}

} // namespace
