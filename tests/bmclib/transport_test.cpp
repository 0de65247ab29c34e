// Requests to the BMC, bridged requests, interface selection and BMC types, over the KCS register model.
#include "frudata/debug.h"
#include "kcsmodel.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

// What the bridging BMC answers, and what that leads to.
struct SCRIPT {
    const char* name;
    BYTES first; // to so many Get Message
    int firstCount;
    int status;
    int sends;
    int polls;
    int address = 0x72;
    UINT8 netFn = 0x0A;
    UINT8 sendCode = 0;
};

class CTransportTest : public testing::Test {
  protected:
    void SetUp() override {
        SetLibDebugLevel(0);
        g_host = HOST{};
        g_host.m_Answer = [this](const BYTES& frame) { return Answer(frame); };
        KCSAddress = 0x0CA2;
    }
    static int Send(int address = 0x72, int command = 0x42, const BYTES& data = {1, 2, 3}, UINT8 netFn = 0x0A) {
        m_Request.rsSa = static_cast<UINT8>(address);
        m_Request.netFn = netFn;
        m_Request.lun = 1;
        m_Request.cmd = static_cast<UINT8>(command);
        std::copy(data.begin(), data.end(), m_Request.data);
        m_Request.dataLength = static_cast<UINT32>(data.size());
        return ProcessMessage(&m_Request, &m_Response, 5000);
    }
    // Responder, network function, LUN, command and completion code, then the data.
    static BYTES Response() {
        BYTES bytes = {m_Response.rsSa, m_Response.netFn, m_Response.lun, m_Response.cmd, m_Response.completionCode};
        bytes.insert(bytes.end(), m_Response.data, m_Response.data + m_Response.dataLength);
        return bytes;
    }

    // A Get Message answer: completion code, then a message with code 0xC9 and two data bytes.
    static BYTES Message(int sequence) {
        return {0, 0x00, 0x2C, 0x11, 0x72, static_cast<UINT8>(sequence << 2 | 3), 0x42, 0xC9, 0xD1, 0xD2, 0x99};
    }
    BYTES Answer(const BYTES& frame) {
        BYTES answer = {m_Script.sendCode};
        if (frame[1] == 0x34) {
            ++m_Sends;
            m_Sent.assign(frame.begin() + 2, frame.end());
        } else {
            answer = m_Polls++ < m_Script.firstCount ? m_Script.first : Message(Sequence());
            if (answer.size() == 8) // too short, but with our sequence number
                answer[5] = static_cast<UINT8>(Sequence() << 2);
        }
        answer.insert(answer.begin(), {0x1C, frame[1]});
        return answer;
    }
    int Sequence() const { return m_Sent[5] >> 2; }

    BYTES m_Sent; // data of the last Send Message
    SCRIPT m_Script = {};
    int m_Sends = 0;
    int m_Polls = 0;
    static inline BMC_MESSAGE m_Request;
    static inline BMC_MESSAGE m_Response;
};

TEST_F(CTransportTest, DirectRequest) {
    BYTES answer = {0x2C, 0x11, 0xC9, 5, 6};
    g_host.m_Answer = [&answer](const BYTES&) { return answer; };
    m_Response.data[65534] = 0xEE;
    EXPECT_EQ(Send(0x20, 0x11, {7, 8}), 0);
    EXPECT_EQ(g_host.m_Request, (BYTES{0x28, 0x11, 7, 8})) << "no LUN in the frame";
    EXPECT_EQ(Response(), (BYTES{0x20, 0x0A, 1, 0x11, 0xC9, 5, 6}));
    EXPECT_EQ(m_Response.data[65534], 0);
    EXPECT_EQ(g_host.m_PortRequests, 1);
    for (const size_t size : {0U, 1U, 2U, 65535U}) {
        answer.assign(size, 1);
        EXPECT_EQ(ProcessTimedMessage(&m_Request, &m_Response, 1), 1) << size;
    }
    answer.assign(65534, 1);
    EXPECT_EQ(Send(0x20, 0x11, BYTES(65533)), 0);
    EXPECT_EQ(g_host.m_Request.size(), 65535U);
    EXPECT_EQ(m_Response.dataLength, 65531U);
    g_host.m_Written.clear();
    for (const auto& [address, length] : {std::pair(0x20, 65534U), {0x20, ~0U}, {0x72, 65526U}, {0x72, ~0U}}) {
        m_Request.rsSa = static_cast<UINT8>(address);
        m_Request.dataLength = length;
        EXPECT_EQ(ProcessMessage(&m_Request, &m_Response, 5000), 1) << length;
    }
    EXPECT_TRUE(g_host.m_Written.empty());
}

TEST_F(CTransportTest, BridgedRequest) {
    g_host.m_Attention = 0;
    for (const auto& [address, channel] : {std::pair(0x72, 0), {0x2C, 6}, {0x24, 0}}) {
        EXPECT_EQ(Send(address, 0x04), 0);
        const UINT8 headerSum = static_cast<UINT8>(-(address + 0x29));
        const UINT8 rest = static_cast<UINT8>(Sequence() << 2 | 2);
        const UINT8 sum = static_cast<UINT8>(-(0x20 + rest + 0x04 + 1 + 2 + 3));
        EXPECT_EQ(m_Sent, (BYTES{static_cast<UINT8>(channel), static_cast<UINT8>(address), 0x29, headerSum, 0x20, rest,
                                 0x04, 1, 2, 3, sum}));
    }
    EXPECT_EQ(Response(), (BYTES{0x72, 0x0B, 3, 0x42, 0xC9, 0xD1, 0xD2}));
    EXPECT_EQ(g_host.m_SleptMilliseconds, 3U * 502) << "attention is awaited";
}

TEST_F(CTransportTest, SequenceNumbers) {
    ASSERT_EQ(Send(), 0);
    int sequence = Sequence();
    for (int request = 0; request < 70; ++request) {
        ASSERT_EQ(Send(), 0);
        sequence = sequence % 63 + 1;
        ASSERT_EQ(Sequence(), sequence);
    }
    for (int request = 0; request < 2; ++request) {
        EXPECT_EQ(Send(0x22, 0x04, {}), 0);
        EXPECT_EQ(Sequence(), sequence % 63 + 1) << "a transfer exit does not advance it";
        EXPECT_EQ(m_Response.cmd, 0x34) << "and has no answer";
    }
}

TEST_F(CTransportTest, Polling) {
    const SCRIPT rows[] = {
        {"stale answers", Message(0), 3000, 0, 1, 3001},
        {"busy", {0x83}, 3000, 0, 1, 3001},
        {"late answer", {0x80}, 99, 0, 1, 100},
        {"too late an answer", {0x80}, 100, 0, 2, 101},
        {"another code", {0xC1}, 1, 0, 2, 2},
        {"empty answer", {0x00}, 3000, 0, 1, 3001},
        {"short foreign answer", {0, 0, 0x2C, 0x11, 0x72, 0, 0x42}, 3000, 0, 1, 3001},
        {"no completion code", {}, 1, 0, 2, 2},
        {"our answer, cut short", {0, 0, 0x2C, 0x11, 0x72, 0, 0x42, 0}, 1, 0, 2, 2},
        {"no answer", {0x80}, ALWAYS, -504, 5, 500},
        {"endless stale answers", Message(0), ALWAYS, -504, 5, 5 * 4096},
        {"the panel is given more time", {0x80}, ALWAYS, -504, 5, 5 * 1000, 0x22},
        {"a busy bus for firmware", {0x80}, ALWAYS, -504, 23, 0, 0x72, 0x08, 0x83},
        {"more time for all from then on", {0x80}, ALWAYS, -504, 5, 5 * 1000},
    };
    for (const SCRIPT& row : rows) {
        SCOPED_TRACE(row.name);
        m_Sends = m_Polls = 0;
        m_Script = row;
        EXPECT_EQ(Send(row.address, 0x42, {}, row.netFn), row.status);
        EXPECT_EQ(std::pair(m_Sends, m_Polls), std::pair(row.sends, row.polls));
    }
    EXPECT_EQ(g_host.m_SleptMilliseconds, 23000U);
}

TEST_F(CTransportTest, BmcTypes) {
    BYTES product;
    int silentAt = 0;
    g_host.m_Answer = [&](const BYTES&) {
        return --silentAt == 0 ? BYTES{} : BYTES{28, 1, 0, 0, 0, 0, 0, 0x51, 0, 0, 0, 0, product[0], product[1]};
    };
    UINT32 type = 9;
    UINT32 version = 9;
    for (const auto& [low, expected] : {std::pair(0x11, 2U), {0x12, 2U}, {0x15, 2U}, {0x13, 1U}, {0x43, 1U}}) {
        product = {static_cast<UINT8>(low), static_cast<UINT8>(low == 0x43 ? 0x11 : 0x43)};
        EXPECT_EQ(GetBmcType(&type), 0);
        EXPECT_EQ(type, expected) << low;
    }
    g_host.m_Fault = {0, ALWAYS, 0, 2};
    EXPECT_EQ(GetBmcType(&type), 1);
    EXPECT_EQ(type, 0U);
    EXPECT_EQ(GetBmcTypeVersion(&type, &version), -400);
    g_host.m_Fault = {};
    silentAt = 2;
    EXPECT_EQ(GetBmcTypeVersion(&type, &version), 1);
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(GetBmcTypeVersion(&type, &version), 0);
        EXPECT_EQ(silentAt, -2) << "asked for both, then remembered";
        EXPECT_EQ(type << 8 | version, 0x101U);
    }
}

TEST_F(CTransportTest, SessionLibrary) {
    constexpr struct {
        _IPMI_INTERFACE_TYPE type;
        size_t length;
        int command;
        int result;
        size_t kcsFrame; // size; 0: not used
    } rows[] = {
        {IPMI_INTERFACE_USB, 129, 0xF0, 1, 0},         {IPMI_INTERFACE_USB, 3, 0xF1, 3, 0},
        {IPMI_INTERFACE_USB, 3, 0xF2, 1, 0},           {IPMI_INTERFACE_USB, 3, 0xF3, 1, 0},
        {IPMI_INTERFACE_KCS, 129, 0x40, 0, 131},       {IPMI_INTERFACE_USB_LARGE, 128, 0x40, 0, 130},
        {IPMI_INTERFACE_USB_LARGE, 129, 0xF0, 0, 131}, // falls back to KCS
        {IPMI_INTERFACE_USB_LARGE, 129, 0x40, 0, 0},   {IPMI_INTERFACE_USB, 3, 0x40, 0, 0},
    };
    g_host.m_Answer = [](const BYTES&) { return BYTES{0x2C, 0x40, 0}; };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ASSERT_TRUE(SelectIPMIInterface(row.type));
        EXPECT_FALSE(row.type == IPMI_INTERFACE_USB && SelectIPMIInterface(IPMI_INTERFACE_USB_LARGE)) << "not directly";
        g_host.m_Request.clear();
        EXPECT_EQ(Send(0x20, row.command, BYTES(row.length, 1)), row.result);
        EXPECT_EQ(g_host.m_Request.size(), row.kcsFrame);
        EXPECT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_KCS));
        EXPECT_EQ(dlopen("libipmi.so", RTLD_NOW | RTLD_NOLOAD), nullptr) << "unloaded";
    }
    EXPECT_EQ(Response(), (BYTES{0x20, 0x0A, 1, 0x40, 0xC5, 0x29, 0x40, 3, 0x88})) << "netFn and LUN to time-out";
    EXPECT_FALSE(SelectIPMIInterface(static_cast<_IPMI_INTERFACE_TYPE>(3)));
    EXPECT_FALSE(SelectIPMIInterface(static_cast<_IPMI_INTERFACE_TYPE>(-1)));
}

} // namespace
