// Requests to the BMC, bridged requests, interface selection and BMC types, over the KCS register model.
#include "frudata/debug.h"
#include "kcsmodel.h"

#include <cstdio>
#include <dlfcn.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace {

constexpr int ENDLESS = 1 << 30;

class Transport : public testing::Test {
  protected:
    void SetUp() override {
        SetLibDebugLevel(0);
        g_host = HOST{};
        g_host.m_Kcs.m_Answer = [this](const BYTES& frame) { return Answer(frame); };
        Request(0x72, 0x0A, 0x42, {1, 2, 3});
    }
    static void Request(int address, UINT8 netFn, UINT8 command, const BYTES& data) {
        m_Request.rsSa = static_cast<UINT8>(address);
        m_Request.netFn = netFn;
        m_Request.lun = 1;
        m_Request.cmd = command;
        std::copy(data.begin(), data.end(), m_Request.data);
        m_Request.dataLength = static_cast<UINT32>(data.size());
    }
    static int Process() { return ProcessMessage(&m_Request, &m_Response, 5000); }
    static BYTES ResponseData() { return BYTES(m_Response.data, m_Response.data + m_Response.dataLength); }

    // A Get Message answer: completion code, then a message with code 0xC9 and two data bytes.
    static BYTES Message(int sequence) {
        return {0, 0x00, 0x2C, 0x11, 0x72, static_cast<UINT8>(sequence << 2 | 3), 0x42, 0xC9, 0xD1, 0xD2, 0x99};
    }
    // The bridging BMC: its first polls yield m_FirstPolls, the others the answer.
    BYTES Answer(const BYTES& frame) {
        BYTES answer = {0x1C, frame[1]};
        BYTES tail = {m_SendCode};
        if (frame[1] == 0x34) {
            ++m_Sends;
            m_Sent.assign(frame.begin() + 2, frame.end());
        } else {
            tail = m_Polls++ < m_FirstCount ? m_FirstPolls : Message(Sequence());
            if (tail.size() == 8) // too short, but with our sequence number
                tail[5] = static_cast<UINT8>(Sequence() << 2);
        }
        answer.insert(answer.end(), tail.begin(), tail.end());
        return answer;
    }
    int Sequence() const { return m_Sent[5] >> 2; }

    BYTES m_Sent; // data of the last Send Message
    UINT8 m_SendCode = 0;
    BYTES m_FirstPolls = {0x80};
    int m_FirstCount = 0;
    int m_Sends = 0;
    int m_Polls = 0;
    static inline BMC_MESSAGE m_Request;
    static inline BMC_MESSAGE m_Response;
};

TEST_F(Transport, DirectRequest) {
    Request(0x20, 0x0A, 0x11, {7, 8});
    m_Response.data[65534] = 0xEE;
    g_host.m_Kcs.m_Answer = [](const BYTES&) { return BYTES{0x2C, 0x11, 0xC9, 5, 6}; };
    EXPECT_EQ(ProcessTimedMessage(&m_Request, &m_Response, 1), 0);
    EXPECT_EQ(g_host.m_Kcs.m_Request, (BYTES{0x28, 0x11, 7, 8})) << "no LUN in the frame";
    EXPECT_EQ(m_Response.rsSa << 16 | m_Response.netFn << 8 | m_Response.cmd, 0x200A11);
    EXPECT_EQ(m_Response.completionCode, 0xC9);
    EXPECT_EQ(ResponseData(), (BYTES{5, 6}));
    EXPECT_EQ(m_Response.data[65534], 0);
    EXPECT_EQ(g_host.m_PortRequests, 1);
}

TEST_F(Transport, LengthsThatDoNotFit) {
    Request(0x20, 0x0A, 0x11, {});
    for (const BYTES& frame : {BYTES{}, BYTES{0x2C}, BYTES{0x2C, 0x11}, BYTES(65535, 1)}) {
        g_host.m_Kcs.m_Answer = [&frame](const BYTES&) { return frame; };
        EXPECT_EQ(Process(), 1) << frame.size();
    }
    g_host.m_Kcs.m_Answer = [](const BYTES&) { return BYTES(65534, 1); };
    m_Request.dataLength = 65533;
    EXPECT_EQ(Process(), 0);
    EXPECT_EQ(g_host.m_Kcs.m_Request.size(), 65535U);
    EXPECT_EQ(m_Response.dataLength, 65531U);
    g_host.m_Kcs.m_Written.clear();
    for (const auto& [address, length] : {std::pair(0x20, 65534U), {0x20, ~0U}, {0x72, 65526U}, {0x72, ~0U}}) {
        m_Request.rsSa = static_cast<UINT8>(address);
        m_Request.dataLength = length;
        EXPECT_EQ(Process(), 1) << length;
    }
    EXPECT_TRUE(g_host.m_Kcs.m_Written.empty());
}

TEST_F(Transport, BridgedRequest) {
    for (const auto& [address, channel] : {std::pair(0x72, 0), {0x2C, 6}, {0x24, 0}}) {
        Request(address, 0x0A, 0x04, {1, 2, 3});
        EXPECT_EQ(Process(), 0);
        const UINT8 headerSum = static_cast<UINT8>(-(address + 0x29));
        const UINT8 rest = static_cast<UINT8>(Sequence() << 2 | 2);
        const UINT8 sum = static_cast<UINT8>(-(0x20 + rest + 0x04 + 1 + 2 + 3));
        EXPECT_EQ(m_Sent, (BYTES{static_cast<UINT8>(channel), static_cast<UINT8>(address), 0x29, headerSum, 0x20, rest,
                                 0x04, 1, 2, 3, sum}));
    }
    EXPECT_EQ(m_Response.rsSa << 16 | m_Response.netFn << 8 | m_Response.cmd, 0x720B42);
    EXPECT_EQ(m_Response.lun << 8 | m_Response.completionCode, 0x3C9);
    EXPECT_EQ(ResponseData(), (BYTES{0xD1, 0xD2}));
}

TEST_F(Transport, SequenceNumbers) {
    ASSERT_EQ(Process(), 0);
    int sequence = Sequence();
    for (int request = 0; request < 70; ++request) {
        ASSERT_EQ(Process(), 0);
        sequence = sequence % 63 + 1;
        ASSERT_EQ(Sequence(), sequence);
    }
    Request(0x22, 0x0A, 0x04, {});
    for (int request = 0; request < 2; ++request) {
        EXPECT_EQ(Process(), 0);
        EXPECT_EQ(Sequence(), sequence % 63 + 1) << "a transfer exit does not advance it";
        EXPECT_EQ(m_Response.cmd, 0x34) << "and has no answer";
    }
}

TEST_F(Transport, Polling) {
    const struct {
        const char* name;
        BYTES first;
        int firstCount;
        int status;
        int sends;
        int polls;
    } rows[] = {
        {"stale answers", Message(0), 3000, 0, 1, 3001},
        {"busy", {0x83}, 3000, 0, 1, 3001},
        {"late answer", {0x80}, 99, 0, 1, 100},
        {"too late an answer", {0x80}, 100, 0, 2, 101},
        {"another code", {0xC1}, 1, 0, 2, 2},
        {"empty answer", {0x00}, 1, 0, 2, 2},
        {"short answer", {0, 0, 0x2C, 0x11, 0x72, 0, 0x42, 0}, 1, 0, 2, 2},
        {"no answer", {0x80}, ENDLESS, -504, 5, 500},
        {"endless stale answers", Message(0), ENDLESS, -504, 5, 5 * 4096},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_Sends = m_Polls = 0;
        m_FirstPolls = row.first;
        m_FirstCount = row.firstCount;
        EXPECT_EQ(Process(), row.status);
        EXPECT_EQ(m_Sends, row.sends);
        EXPECT_EQ(m_Polls, row.polls);
    }
}

TEST_F(Transport, Budgets) {
    m_FirstCount = ENDLESS;
    m_Request.rsSa = 0x22;
    EXPECT_EQ(Process(), -504);
    EXPECT_EQ(m_Polls, 5 * 1000) << "the panel is given more time";
    // A busy bus, once seen, gives every controller more time from then on.
    m_SendCode = 0x83;
    m_Sends = m_Polls = 0;
    Request(0x72, 0x08, 0x42, {});
    EXPECT_EQ(Process(), -504);
    EXPECT_EQ(m_Sends, 23);
    EXPECT_EQ(g_host.m_Sleeps, 23);
    m_SendCode = 0;
    m_Request.netFn = 0x0A;
    EXPECT_EQ(Process(), -504);
    EXPECT_EQ(m_Polls, 5 * 1000);
}

TEST_F(Transport, AttentionIsAwaitedAndPollingLogged) {
    std::remove("DBGLOG.txt");
    SetLibDebugLevel(1);
    g_host.m_Kcs.m_Attention = false;
    m_FirstPolls = {}; // not even a completion code
    m_FirstCount = 1;
    EXPECT_EQ(Process(), 0);
    EXPECT_EQ(g_host.m_ShortSleeps, 2 * 251);
    char expected[128];
    std::snprintf(expected, sizeof expected,
                  ": retryCount = 4 CompCode = 0x0 status is 0 Sendseq = 0x%02x Got Seq = 0x%02x\n\r\n", Sequence(),
                  Sequence());
    std::ifstream file("DBGLOG.txt", std::ios::binary);
    const std::string log{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(log.starts_with("Breaking after Getmsg Status is 1\n\r\ntestCount = 100") && log.ends_with(expected))
        << log;
}

TEST_F(Transport, BmcTypes) {
    int product = 0;
    int asked = 0;
    int silentAt = 0;
    g_host.m_Kcs.m_Answer = [&](const BYTES&) {
        if (++asked == silentAt)
            return BYTES{};
        const BYTES id = {static_cast<UINT8>(product), static_cast<UINT8>(product >> 8)};
        return BYTES{0x1C, 1, 0, 0, 0, 0, 0, 0x51, 0, 0, 0, 0, id[0], id[1]};
    };
    UINT32 type = 9;
    UINT32 version = 9;
    for (const auto& [id, expected] : {std::pair(0x4311, 2U), {0x4312, 2U}, {0x4315, 2U}, {0x4313, 1U}, {0x1143, 1U}}) {
        product = id;
        EXPECT_EQ(GetBmcType(&type), 0);
        EXPECT_EQ(type, expected) << id;
    }
    g_host.m_Kcs.m_Fault = {0, ENDLESS, 0, 2};
    EXPECT_EQ(GetBmcType(&type), 1);
    EXPECT_EQ(type, 0U);
    EXPECT_EQ(GetBmcTypeVersion(&type, &version), -400);
    g_host.m_Kcs.m_Fault = {1, 0, 0, 0};
    asked = 0;
    silentAt = 2;
    EXPECT_EQ(GetBmcTypeVersion(&type, &version), 1);
    asked = silentAt = 0;
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(GetBmcTypeVersion(&type, &version), 0);
        EXPECT_EQ(asked, 2) << "asked once, then remembered";
        EXPECT_EQ(type << 8 | version, 0x101U);
    }
}

TEST_F(Transport, SessionLibrary) {
    const auto send = [](size_t length, UINT8 command) {
        Request(0x20, 0x0A, command, BYTES(length, 1));
        g_host.m_Kcs.m_Request.clear();
        return Process();
    };
    const BYTES& kcsFrame = g_host.m_Kcs.m_Request;
    g_host.m_Kcs.m_Answer = [](const BYTES&) { return BYTES{0x2C, 0x40, 0}; };
    EXPECT_FALSE(SelectIPMIInterface(static_cast<_IPMI_INTERFACE_TYPE>(3)));
    EXPECT_FALSE(SelectIPMIInterface(static_cast<_IPMI_INTERFACE_TYPE>(-1)));
    ASSERT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_USB));
    EXPECT_FALSE(SelectIPMIInterface(IPMI_INTERFACE_USB_LARGE));
    EXPECT_EQ(send(3, 0x40), 0);
    EXPECT_EQ(ResponseData(), (BYTES{0x29, 0x40, 3, 0x88})) << "netFn and LUN, command, length, time-out";
    EXPECT_EQ(m_Response.completionCode, 0xC5);
    for (const auto& [command, result] : {std::pair(0xF0, 1), {0xF1, 3}, {0xF2, 1}, {0xF3, 1}})
        EXPECT_EQ(send(3, static_cast<UINT8>(command)), result) << "failure, empty, negative, above the buffer";
    EXPECT_TRUE(kcsFrame.empty());

    EXPECT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_KCS));
    EXPECT_EQ(dlopen("libipmi.so", RTLD_NOW | RTLD_NOLOAD), nullptr) << "unloaded";
    EXPECT_EQ(send(129, 0x40), 0);
    EXPECT_EQ(kcsFrame.size(), 131U);

    ASSERT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_USB_LARGE));
    EXPECT_EQ(send(129, 0x40), 0);
    EXPECT_TRUE(kcsFrame.empty());
    EXPECT_EQ(send(128, 0x40), 0);
    EXPECT_EQ(kcsFrame.size(), 130U);
    EXPECT_EQ(send(129, 0xF0), 0);
    EXPECT_EQ(kcsFrame.size(), 131U) << "falls back to KCS";
    EXPECT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_KCS));
}

} // namespace
