// The kernel's IPMI device as the library's IMB driver.
#include "frudata/imbdriver.h"
#include "frudata/openipmi.h"
#include "kernel.h"

#include <cerrno>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/ipmi.h>

namespace {

// Get Device ID to the controller 0x30, and the answer 11 22 to it (IPMI 2.0, sections 22.7 and 22.6).
const BYTES SEND_MESSAGE = {0x00, 0x30, 0x18, 0xB8, 0x20, 0x16, 0x01, 0xC9};
const BYTES FRAMED = {0x00, 0x1E, 0xC2, 0x30, 0x14, 0x01, 0x00, 0x11, 0x22, 0x88};
constexpr int UNTOUCHED = 0xEE;

class CDriverTest : public testing::Test {
  protected:
    void SetUp() override {
        g_kernel = KERNEL{};
        g_kernel.errors["/dev/ipmi0"] = 0;
        ASSERT_EQ(open_imb(), 1);
    }
    void TearDown() override { EXPECT_EQ(close_imb(), 0); }

    int Send(UINT8 cmd, const BYTES& data = {}, int room = 255, UINT8 netFn = 0x06) {
        m_answer.assign(static_cast<std::size_t>(room) + 1, UNTOUCHED);
        m_code = UNTOUCHED;
        const _IMBPREQUESTDATA request = {cmd, 0x20, 0, netFn, 0, data.data(), static_cast<int>(data.size())};
        int length = room;
        const int status = SendTimedImbpRequest(&request, 5000, m_answer.data(), &length, &m_code);
        EXPECT_EQ(m_answer.back(), UNTOUCHED);
        if (status == OPENIPMI_OK)
            m_answer.resize(static_cast<std::size_t>(length));
        else
            EXPECT_EQ(m_answer.front(), UNTOUCHED);
        return status;
    }
    int SendMessage(const BYTES& data = SEND_MESSAGE) { return Send(0x34, data); }
    int GetMessage(int room = 255) { return Send(0x33, {}, room); }

    BYTES m_answer;
    UINT8 m_code = 0;
};

struct PLAIN {
    const char* name;
    std::deque<STEP> script;
    int status;
    BYTES answer = {}; // completion code and data
    int milliseconds = 0;
    int room = 255;
};

TEST_F(CDriverTest, PlainRequests) {
    const PLAIN rows[] = {
        {"answer", {{ARRIVES, {0, 1, 2}}}, OPENIPMI_OK, {0, 1, 2}},
        {"code alone", {{ARRIVES, {0xC1}}}, OPENIPMI_OK, {0xC1}},
        {"no code", {{ARRIVES}}, OPENIPMI_ERR_BAD_ANSWER},
        {"room full", {{ARRIVES, {0, 1, 2}}}, OPENIPMI_OK, {0, 1, 2}, 0, 2},
        {"one byte too long", {{ARRIVES, {0, 1, 2}}}, OPENIPMI_ERR_BAD_ANSWER, {}, 0, 1},
        {"longer than any message", {{ARRIVES, BYTES(5000)}}, OPENIPMI_ERR_BAD_ANSWER, {}, 0, 65535},
        {"silence", {}, OPENIPMI_ERR_TIMEOUT, {}, 5000},
        {"late", {{PAUSE}, {PAUSE}, {ARRIVES, {0}}}, OPENIPMI_OK, {0}, 1000},
        {"interrupted", {{POLL_INTERRUPTED}, {TAKE_INTERRUPTED}, {ARRIVES, {0, 3}}}, OPENIPMI_OK, {0, 3}, 500},
        {"always interrupted", {{POLL_INTERRUPTED, {}, true}}, OPENIPMI_ERR_TIMEOUT, {}, 5000},
        {"taken by another process", {{TAKEN_BY_OTHERS}}, OPENIPMI_ERR_TIMEOUT, {}, 5000},
        {"closed", {{PAUSE}, {DEVICE_CLOSED}}, OPENIPMI_ERR_DEVICE, {}, 1000},
        {"gone", {{DEVICE_GONE}}, OPENIPMI_ERR_DEVICE},
        {"stale answer before", {{ARRIVES_FOR_PREVIOUS, {0xC3}}, {ARRIVES, {0, 4}}}, OPENIPMI_OK, {0, 4}},
        {"stale answer alone", {{ARRIVES_FOR_PREVIOUS, {0}}}, OPENIPMI_ERR_TIMEOUT, {}, 5000},
        {"stale answers without end", {{ARRIVES_FOR_PREVIOUS, {0}, true}}, OPENIPMI_ERR_TIMEOUT, {}, 5000},
        {"event", {{ARRIVES_AS_EVENT, {0, 9}}, {ARRIVES, {0, 5}}}, OPENIPMI_OK, {0, 5}},
    };
    EXPECT_EQ(Send(0x02), OPENIPMI_ERR_TIMEOUT); // whose answer may come later
    for (const PLAIN& row : rows) {
        SCOPED_TRACE(row.name);
        g_kernel.script = row.script;
        g_kernel.milliseconds = 0;
        EXPECT_EQ(Send(0x11, {0, 8}, row.room, 0x0A), row.status) << OpenIpmiFailure();
        m_answer.insert(m_answer.begin(), m_code);
        EXPECT_EQ(row.status == OPENIPMI_OK ? m_answer : BYTES{}, row.answer);
        EXPECT_EQ(m_code == UNTOUCHED, row.status != OPENIPMI_OK);
        EXPECT_EQ(g_kernel.milliseconds, row.milliseconds);
        if (row.status == OPENIPMI_ERR_BAD_ANSWER) {
            EXPECT_NE(std::string(OpenIpmiFailure()).find("an answer too long"), std::string::npos);
        }
        EXPECT_EQ(g_kernel.sent.back(),
                  (SENT{IPMI_SYSTEM_INTERFACE_ADDR_TYPE, IPMI_BMC_CHANNEL, 0, 0, 0x0A, 0x11, {0, 8}}));
    }
    g_kernel.sendError = ENODEV;
    EXPECT_EQ(Send(0x01), OPENIPMI_ERR_DEVICE);
    EXPECT_STREQ(OpenIpmiFailure(), "/dev/ipmi0: No such device");
}

TEST_F(CDriverTest, BridgedRequest) {
    g_kernel.script = {{ARRIVES_AS_EVENT, {0, 9}}, {ARRIVES, {0}}};
    EXPECT_EQ(Send(0x01), OPENIPMI_OK);
    EXPECT_EQ(GetMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0x80) << "nothing was bridged";
    EXPECT_EQ(SendMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0);
    EXPECT_EQ(g_kernel.sent.back(), (SENT{IPMI_IPMB_ADDR_TYPE, 0, 0x30, 0, 0x06, 0x01, {}}));
    EXPECT_LE(g_kernel.patience, 3000U) << "two rounded-up seconds more stay within the time-out";
    EXPECT_EQ(GetMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0x80);
    EXPECT_EQ(g_kernel.milliseconds, 50) << "a hundred of them are the time-out";
    g_kernel.script = {{ARRIVES_FOR_PREVIOUS, {0, 0x11, 0x22}}, {ARRIVES, {0, 7}}};
    EXPECT_EQ(Send(0x01), OPENIPMI_OK) << "a plain request between";
    EXPECT_EQ(m_answer, BYTES{7});
    EXPECT_EQ(GetMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0);
    EXPECT_EQ(m_answer, FRAMED);
    EXPECT_EQ(GetMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0x80) << "given once";

    // From LUN 3 to LUN 1 with two data bytes, on channel 6, which is to be tracked.
    EXPECT_EQ(SendMessage({0x46, 0x2C, 0x29, 0xAB, 0x20, 0xFF, 0x42, 0x03, 0x04, 0x98}), OPENIPMI_OK);
    EXPECT_EQ(g_kernel.sent.back(), (SENT{IPMI_IPMB_ADDR_TYPE, 6, 0x2C, 1, 0x0A, 0x42, {3, 4}}));
    g_kernel.script = {{ARRIVES, {0xC9}}};
    EXPECT_EQ(GetMessage(8), OPENIPMI_OK);
    EXPECT_EQ(m_answer, (BYTES{0x06, 0x2F, 0xB1, 0x2C, 0xFD, 0x42, 0xC9, 0xCC}));
}

TEST_F(CDriverTest, BridgedFailures) {
    struct ROW {
        const char* name;
        std::deque<STEP> script;
        int status;
        int code = UNTOUCHED;
        std::size_t length = 256;
        int room = 255;
    };
    const ROW rows[] = {
        {"no acknowledgement on the bus", {{ARRIVES, {0x83}}}, OPENIPMI_OK, 0, 8},
        {"given up by the kernel", {{ARRIVES, {0xC3}}}, OPENIPMI_OK, 0, 8},
        {"stale answer", {{ARRIVES_FOR_PREVIOUS, {0, 1}}}, OPENIPMI_OK, 0x80, 0},
        {"no code", {{ARRIVES}}, OPENIPMI_ERR_BAD_ANSWER},
        {"longer than any message", {{ARRIVES, BYTES(5000)}}, OPENIPMI_ERR_BAD_ANSWER, UNTOUCHED, 65536, 65535},
        {"one byte too long", {{ARRIVES, {0, 0x11, 0x22}}}, OPENIPMI_ERR_BAD_ANSWER, UNTOUCHED, 10, 9},
        {"closed", {{DEVICE_CLOSED}}, OPENIPMI_ERR_DEVICE},
        {"gone", {{DEVICE_GONE}}, OPENIPMI_ERR_DEVICE},
    };
    SendMessage();
    for (const ROW& row : rows) {
        SCOPED_TRACE(row.name);
        g_kernel.script.clear();
        ASSERT_EQ(SendMessage(), OPENIPMI_OK);
        g_kernel.script = row.script;
        EXPECT_EQ(GetMessage(row.room), row.status);
        EXPECT_EQ(m_code, row.code);
        EXPECT_EQ(m_answer.size(), row.length);
        EXPECT_TRUE(row.length != 8 || m_answer[6] == row.script[0].bytes[0]);
    }
    EXPECT_EQ(SendMessage(BYTES(7)), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0xC7);
    g_kernel.sendError = EINVAL;
    EXPECT_EQ(SendMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0xCC) << "not an IPMB channel";
    g_kernel.script = {{ARRIVES, {0}}}; // to the request before
    EXPECT_EQ(GetMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0x80);
    g_kernel.sendError = ENODEV;
    EXPECT_EQ(SendMessage(), OPENIPMI_ERR_DEVICE);
}

TEST_F(CDriverTest, LibraryBridgesThroughIt) {
    ASSERT_EQ(BmcLibInitialize(), 0);
    static BMC_MESSAGE request = {0x30, 0x06, 0, 0x01, {}, 0, 0};
    static BMC_MESSAGE response;
    g_kernel.script = {{ARRIVES, {0xC9, 0x11, 0x22}}};
    EXPECT_EQ(ProcessMessage(&request, &response, 5000), 0);
    EXPECT_EQ((BYTES{response.rsSa, response.netFn, response.cmd, response.completionCode}),
              (BYTES{0x30, 0x07, 0x01, 0xC9}));
    EXPECT_EQ(BYTES(response.data, response.data + response.dataLength), (BYTES{0x11, 0x22}));
    EXPECT_EQ(ProcessMessage(&request, &response, 5000), BMCLIB_ERR_RETRIES);
    EXPECT_EQ(g_kernel.milliseconds, 25000) << "five tries, and nothing waits beside them";
    EXPECT_EQ(BmcLibDeinitialize(), 0);
}

TEST_F(CDriverTest, ForkedProcessOpensItsOwn) {
    EXPECT_EQ(g_kernel.flags & (O_RDWR | O_CLOEXEC), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(open_imb(), 1);
    EXPECT_EQ(g_kernel.opened, 1);
    EXPECT_EQ(SendMessage(), OPENIPMI_OK);
    g_kernel.process = 2;
    g_kernel.script = {{ARRIVES, {0}}};
    EXPECT_EQ(GetMessage(), OPENIPMI_OK);
    EXPECT_EQ(m_code, 0x80) << "the parent's request";
    EXPECT_EQ(g_kernel.opened, 2);
    g_kernel.process = 3;
    g_kernel.errors["/dev/ipmi0"] = EACCES;
    EXPECT_EQ(Send(0x01), OPENIPMI_ERR_DEVICE);
}

TEST_F(CDriverTest, Opening) {
    struct ROW {
        std::map<std::string, int> errors;
        const char* device;
        const char* failure;
        mode_t mode = 0600;
        gid_t owner = 0;
    };
    const ROW rows[] = {
        {{{"/dev/ipmi0", ENOTDIR}, {"/dev/ipmi/0", 0}}, "/dev/ipmi/0", ""},
        {{{"/dev/ipmi0", ENXIO}, {"/dev/ipmi/0", ENODEV}, {"/dev/ipmidev/0", 0}}, "/dev/ipmidev/0", ""},
        {{},
         nullptr,
         "no IPMI device /dev/ipmi0, /dev/ipmi/0 or /dev/ipmidev/0: are the kernel's modules ipmi_si and "
         "ipmi_devintf loaded"},
        {{{"/dev/ipmi0", EACCES}}, nullptr, "/dev/ipmi0: Permission denied; it needs root"},
        {{{"/dev/ipmi0", EACCES}}, nullptr, "/dev/ipmi0: Permission denied; it needs root", 0640, 5},
        {{{"/dev/ipmi0", EACCES}}, nullptr, "/dev/ipmi0: Permission denied; it needs root or the group tty", 0660, 5},
        {{{"/dev/ipmi/0", EACCES}},
         nullptr,
         "/dev/ipmi/0: Permission denied; it needs root or the group 4242",
         0660,
         4242},
        {{{"/dev/ipmi0", EBUSY}, {"/dev/ipmi/0", 0}}, nullptr, "/dev/ipmi0: Device or resource busy"},
    };
    for (const ROW& row : rows) {
        SCOPED_TRACE(row.failure);
        close_imb();
        g_kernel.errors = row.errors;
        g_kernel.mode = row.mode;
        g_kernel.owner = row.owner;
        EXPECT_EQ(open_imb(), row.device ? 1 : 0);
        EXPECT_STREQ(OpenIpmiDevice(), row.device);
        EXPECT_STREQ(row.device ? "" : OpenIpmiFailure(), row.failure);
    }
    EXPECT_EQ(Send(0x01), OPENIPMI_ERR_DEVICE) << "not open";
}

TEST_F(CDriverTest, Arguments) {
    const UINT8 byte = 0;
    UINT8 code = 0;
    UINT8 room[8];
    int length = sizeof room;
    const _IMBPREQUESTDATA rows[] = {
        {1, 0x24, 0, 6, 0, &byte, 1},  {1, 0x20, 1, 6, 0, &byte, 1}, {1, 0x20, 0, 6, 0, nullptr, 1},
        {1, 0x20, 0, 6, 0, &byte, -1}, {1, 0x20, 0, 6, 4, &byte, 1}, {1, 0x20, 0, 6, 0, &byte, 0x10000},
    };
    for (const _IMBPREQUESTDATA& row : rows)
        EXPECT_EQ(OpenIpmiSend(&row, 5000, room, &length, &code), OPENIPMI_ERR_ARGUMENT);
    const _IMBPREQUESTDATA good = {1, 0x20, 0, 6, 0, nullptr, 0};
    EXPECT_EQ(OpenIpmiSend(&good, -1, room, &length, &code), OPENIPMI_ERR_TIMEOUT);
    length = -1;
    EXPECT_EQ(OpenIpmiSend(&good, 5000, room, &length, &code), OPENIPMI_ERR_ARGUMENT);
    EXPECT_EQ(g_kernel.sent.size(), 1U);
}

} // namespace
