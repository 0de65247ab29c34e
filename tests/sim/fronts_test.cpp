// The three fronts: registers byte by byte, the IMB functions, the session library as a loaded object.
#include "tests/sim/support.h"

#include "sim/fronts.h"

#include "frudata/imbdriver.h"

#include <dlfcn.h>

namespace Frudata_Sim {

namespace {

constexpr UINT16 DATA = 0x0CA2;
constexpr UINT16 STATUS = 0x0CA3;

struct STEP {
    UINT16 port;     ///< written to
    UINT8 value;     ///< what is written
    UINT8 status;    ///< what the status port then reads
    int output = -1; ///< what the data port then reads, if it is read
};

class CKcsFrontTest : public testing::Test {
  protected:
    void SetUp() override {
        bmc.AddFruDevice(0, BYTES{0x11, 0x22});
        SetCurrentKcs(&kcs);
    }
    void TearDown() override { SetCurrentKcs(nullptr); }
    void Play(const std::vector<STEP>& steps) {
        for (std::size_t index = 0; index < steps.size(); ++index) {
            outb(steps[index].value, steps[index].port);
            EXPECT_EQ(inb(STATUS), steps[index].status) << "step " << index;
            if (steps[index].output >= 0) {
                EXPECT_EQ(inb(DATA), steps[index].output) << "step " << index;
            }
        }
    }
    CSimulatedBmc bmc;
    CKcsModel kcs{bmc};
};

/// Read FRU Data, one byte.
const std::vector<STEP> WRITE_PHASE{
    {STATUS, 0x61, 0x80}, {DATA, 0x28, 0x80}, {DATA, 0x11, 0x80},   {DATA, 0x00, 0x80},
    {DATA, 0x01, 0x80},   {DATA, 0x00, 0x80}, {STATUS, 0x62, 0x80},
};

TEST_F(CKcsFrontTest, Transfer) {
    EXPECT_EQ(inb(STATUS), 0x00);
    Play(WRITE_PHASE);
    Play({{DATA, 0x01, 0x41, 0x2C},
          {DATA, 0x68, 0x41, 0x11},
          {DATA, 0x68, 0x41, 0x00},
          {DATA, 0x68, 0x41, 0x01},
          {DATA, 0x68, 0x41, 0x22},
          {DATA, 0x68, 0x01, 0x00}});
    EXPECT_EQ(inb(STATUS), 0x00);
    EXPECT_EQ(kcs.Counts().commandWrites, 2U);
    EXPECT_EQ(kcs.Counts().dataWrites, 11U);
    EXPECT_EQ(kcs.Counts().dataReads, 6U);
    EXPECT_EQ(kcs.Counts().violations, 0U);
    EXPECT_EQ(inb(0x0CA4), 0xFF);
}

TEST_F(CKcsFrontTest, AbortRecovers) {
    Play({{STATUS, 0x61, 0x80},
          {DATA, 0x18, 0x80},
          {STATUS, 0x60, 0xC0},
          {DATA, 0x00, 0x41, 0x01},
          {DATA, 0x68, 0x01, 0x00}});
    Play({{STATUS, 0x99, 0xC0},
          {DATA, 0x01, 0xC0},
          {STATUS, 0x60, 0xC0},
          {DATA, 0x00, 0x41, 0x02},
          {DATA, 0x68, 0x01, 0x00}});
    EXPECT_EQ(kcs.Counts().aborts, 2U);
    Play({{STATUS, 0x61, 0x80}, {STATUS, 0x62, 0x80}, {DATA, 0x18, 0xC0}}); // a frame of one byte
}

TEST_F(CKcsFrontTest, SlowAndStuck) {
    kcs.Options() = {.notReadyPolls = 2, .notReadyOutput = 1, .outputWhileWriting = true};
    outb(0x61, STATUS);
    for (const int expected : {0x82, 0x82, 0x80, 0x81})
        EXPECT_EQ(inb(STATUS), expected);
    outb(0x18, DATA);
    outb(0x01, DATA);
    EXPECT_EQ(kcs.Counts().violations, 1U) << "written while IBF was set";
    kcs.Options() = {.stuckSet = 0x02, .stuckClear = 0x80};
    EXPECT_EQ(inb(STATUS) & 0x82, 0x02);
    kcs.Options() = {.errorOnWriteStart = true};
    outb(0x61, STATUS);
    EXPECT_EQ(inb(STATUS) & 0xC0, 0xC0);
}

TEST_F(CKcsFrontTest, FaultsAndAttention) {
    kcs.Options().errorAfterBytes = 2;
    Play(WRITE_PHASE);
    Play({{DATA, 0x01, 0x41, 0x2C}, {DATA, 0x68, 0x41, 0x11}, {DATA, 0x68, 0xC0}});
    bmc.AddFault({.action = FAULT_ACTION::TRANSPORT_ERROR, .times = 1});
    bmc.AddFault({.action = FAULT_ACTION::SILENCE, .occurrence = 2});
    Play(WRITE_PHASE);
    Play({{DATA, 0x01, 0xC0}});
    Play(WRITE_PHASE);
    Play({{DATA, 0x01, 0x40}});
    bmc.ClearFaults();
    bmc.AddController(0, 0xC0);
    Ask(bmc, 6, 0x34, {0, 0xC0, 0x18, 0x28, 0x20, 0x06, 0x01, 0xD9});
    EXPECT_EQ(inb(STATUS), 0x44);
}

TEST(Imb, ServesTheCurrentBmc) {
    EXPECT_EQ(open_imb(), 0);
    CSimulatedBmc bmc;
    bmc.AddFruDevice(0, BYTES{1, 2, 3});
    bmc.AddFault({.action = FAULT_ACTION::TRANSPORT_ERROR, .value = 9, .occurrence = 3});
    SetCurrentBmc(&bmc);
    EXPECT_NE(open_imb(), 0);
    const UINT8 data[] = {0, 0, 0, 2};
    _IMBPREQUESTDATA request{
        .cmdType = 0x11, .rsSa = 0x20, .busType = 0, .netFn = 0x0A, .rsLun = 0, .data = data, .dataLength = 4};
    UINT8 answer[8] = {};
    UINT8 completionCode = 0x55;
    int length = 8;
    const auto send = [&] { return SendTimedImbpRequest(&request, 5000, answer, &length, &completionCode); };
    EXPECT_EQ(send(), 0);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(completionCode, 0);
    EXPECT_EQ(BYTES(answer, answer + 3), (BYTES{2, 1, 2}));
    length = 2;
    EXPECT_NE(send(), 0) << "no room for the answer";
    length = 8;
    EXPECT_EQ(send(), 9);
    request.rsSa = 0xC0;
    EXPECT_NE(send(), 0) << "not the BMC";
    SetCurrentBmc(nullptr);
}

TEST(Session, ChecksItsArguments) {
    using CREATE = int(void*, const char*, int, const char*, const char*, int, int, int, const UINT8*, int, int, int,
                       int, int, int);
    using SEND = int(void*, int, UINT8, UINT8, const UINT8*, int, UINT8*, int*, int);
    using CLOSE = int(void*);
    void* const library = dlopen(SESSION_LIBRARY, RTLD_NOW);
    ASSERT_TRUE(library) << dlerror();
    const auto create = reinterpret_cast<CREATE*>(dlsym(library, "LIBIPMI_Create_IPMI20_Session"));
    const auto send = reinterpret_cast<SEND*>(dlsym(library, "LIBIPMI_Send_RAW_IPMI2_0_Command"));
    const auto close = reinterpret_cast<CLOSE*>(dlsym(library, "LIBIPMI_CloseSession"));
    ASSERT_TRUE(create && send && close);

    CSimulatedBmc bmc;
    static UINT8 answer[65536];
    UINT8 session[64] = {};
    const UINT8 administrator = 4;
    const UINT8 user = 2;
    int length = 0;
    const auto open = [&](const char* host, int port, const UINT8* privilege, int code) {
        return create(session, host, port, nullptr, nullptr, 0, 0, 0, privilege, code, 0x54, 0x20, 0, 0, 2000);
    };
    EXPECT_NE(open("127.0.0.1", 623, &administrator, 6), 0) << "no BMC";
    SetCurrentBmc(&bmc);
    EXPECT_NE(open("10.0.0.1", 623, &administrator, 6), 0);
    EXPECT_NE(open("127.0.0.1", 624, &administrator, 6), 0);
    EXPECT_NE(open("127.0.0.1", 623, &user, 6), 0);
    EXPECT_NE(open("127.0.0.1", 623, &administrator, 7), 0);
    EXPECT_NE(send(session, 0, 0x18, 0x01, nullptr, 0, answer, &length, 5000), 0) << "no session";
    EXPECT_EQ(open("127.0.0.1", 623, &administrator, 6), 0);
    EXPECT_EQ(send(session, 0, 0x18, 0x01, nullptr, 0, answer, &length, 5000), 0);
    EXPECT_EQ(length, 16);
    EXPECT_EQ(answer[1], 0x20);
    bmc.AddFault({.action = FAULT_ACTION::SILENCE});
    EXPECT_NE(send(session, 0, 0x18, 0x01, nullptr, 0, answer, &length, 5000), 0);
    EXPECT_EQ(close(session), 0);
    EXPECT_NE(close(session), 0) << "closed already";
    SetCurrentBmc(nullptr);
    dlclose(library);
}

} // namespace

} // namespace Frudata_Sim
