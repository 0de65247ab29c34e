// Sessions with OpenIPMI's ipmi_sim: a BMC that is not ours.
#include "fruimage/imagebuilder.h"
#include "tests/drivers/lan/support.h"

#include "frudata/frudata.h"
#include "frudata/imbdriver.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include <sys/prctl.h>
#include <sys/wait.h>

// This test is a host, too: the library's requests go the way of a session, and no test touches a real port.
extern "C" {
int open_imb(void) {
    return Frudata_Driver::LanOpenImb();
}
int close_imb(void) {
    return Frudata_Driver::LanCloseImb();
}
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* data, int* length,
                         UINT8* completionCode) {
    return Frudata_Driver::LanSendTimedImbpRequest(request, timeout, data, length, completionCode);
}
UINT8 inb(UINT16) {
    return 0xFF;
}
void outb(UINT8, UINT16) {}
}

namespace Lan_Test {

namespace {

const BYTES GOOD_DEVICE{0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF};
// Read FRU Data of device 0, 8 bytes from offset 0, for the controller 0x30: request and answer as IPMI 2.0, sections
// 22.6 and 22.7, frame them.
const BYTES SEND_READ{0x40, 0x30, 0x28, 0xA8, 0x20, 0x16, 0x11, 0x00, 0x00, 0x00, 0x08, 0xB1};
const BYTES ANSWER_READ{0x00, 0x2E, 0xB2, 0x30, 0x14, 0x11, 0x00, 0x08, 0x01,
                        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xA3};

class CSessionTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        if (!CIpmiSim::IsInstalled())
            return;
        const FruImage::BYTES image =
            FruImage::CImageBuilder()
                .Product({.manufacturer = "Maker", .productName = "Rack", .assetTag = "none"}, 16)
                .Build(256);
        BYTES behind = GOOD_DEVICE;
        behind.resize(64, 0xFF);
        g_server.emplace(FruDevice(0x20, 0, image) + FruDevice(0x30, 0, behind));
    }
    static void TearDownTestSuite() { g_server.reset(); }
    void SetUp() override {
        if (!g_server)
            GTEST_SKIP() << "ipmi_sim is not installed (Debian package openipmi)";
    }
    static OPTIONS Options() { return {.port = g_server->Port()}; }

    static std::optional<CIpmiSim> g_server;
};

std::optional<CIpmiSim> CSessionTest::g_server;

TEST_F(CSessionTest, EveryWayReadsWritesAndBridges) {
    const struct {
        UINT8 cipherSuite;
        UINT8 ipmi15;
        const char* description;
    } ways[] = {{3, 0, "IPMI 2.0, cipher suite 3, administrator"},
                {0, 0, "IPMI 2.0, cipher suite 3, administrator"}, // this BMC refuses 17
                {0, 1, "IPMI 1.5, administrator"}};
    UINT8 mark = 0x40;
    for (const auto& way : ways) {
        SCOPED_TRACE(way.description);
        OPTIONS options = Options();
        options.cipherSuite = way.cipherSuite;
        options.ipmi15 = way.ipmi15;
        const CSession session(options);
        ASSERT_EQ(session.Result(), LAN_OK) << session.OpenMessage();
        EXPECT_EQ(session.Description(), "127.0.0.1:" + std::to_string(options.port) + ", " + way.description);
        EXPECT_EQ(session.Ask(0x06, 0x01).data.size(), 15U);
        EXPECT_EQ(session.Ask(0x06, 0x7F).completionCode, 0xC1);
        EXPECT_EQ(session.Ask(0x0A, 0x12, {0, 250, 0, ++mark, mark}).data, BYTES{2});
        EXPECT_EQ(session.Ask(0x0A, 0x11, {0, 250, 0, 2}).data, (BYTES{2, mark, mark}));

        EXPECT_EQ(session.Ask(0x06, 0x33).completionCode, 0x80);
        const ANSWER sent = session.Ask(0x06, 0x34, SEND_READ);
        EXPECT_TRUE(sent.result == LAN_OK && sent.completionCode == 0 && sent.data.empty()) << session.Message();
        EXPECT_EQ(session.Ask(0x06, 0x33).data, ANSWER_READ);
        EXPECT_EQ(session.Ask(0x06, 0x33).completionCode, 0x80);
        EXPECT_EQ(session.Ask(0x06, 0x34, {0x40, 0x40, 0x18, 0xA8, 0x20, 0x16, 0x01, 0xC9}).completionCode, 0x83);
        EXPECT_EQ(session.Ask(0x06, 0x33).completionCode, 0x80);
    }
}

TEST_F(CSessionTest, RefusalsSayWhyAndEndInTime) {
    const UINT16 port = g_server->Port();
    const struct {
        const char* name;
        OPTIONS options;
        int result;
        const char* message;
    } rows[] = {
        {"wrong password", {.password = "Wrong-4711"}, LAN_ERR_PASSWORD, ": wrong password"},
        {"wrong password, 1.5",
         {.password = "Wrong-4711", .cipherSuite = 0, .ipmi15 = 1},
         LAN_ERR_PASSWORD,
         ": wrong password"},
        {"no password", {.password = ""}, LAN_ERR_PASSWORD, ": wrong password"},
        {"unknown user", {.user = "nobody"}, LAN_ERR_USER, ": unknown user"},
        {"unknown user, 1.5", {.user = "nobody", .cipherSuite = 0, .ipmi15 = 1}, LAN_ERR_USER, ": unknown user"},
        {"privilege",
         {.user = GUEST, .password = GUEST_PASSWORD, .cipherSuite = 0, .ipmi15 = 1},
         LAN_ERR_PRIVILEGE,
         ": the user may not have the privilege level"},
        {"cipher suite", {.cipherSuite = 17}, LAN_ERR_CIPHER, ": the cipher suite is refused"},
        {"nobody there", {.port = FreePort()}, LAN_ERR_NO_ANSWER, ": no answer"},
        {"nobody there, 1.5", {.port = FreePort(), .cipherSuite = 0, .ipmi15 = 1}, LAN_ERR_NO_ANSWER, ": no answer"},
        {"nobody on IPv6", {.host = "::1"}, LAN_ERR_NO_ANSWER, ": no answer"},
        // A label of more than 63 bytes is refused before anybody is asked for it.
        {"no such name", {.host = std::string(64, 'x')}, LAN_ERR_NAME, ": "},
        {"no host", {.host = ""}, LAN_ERR_OPTION, "no host"},
        {"long user", {.user = std::string(17, 'u')}, LAN_ERR_OPTION, "16 bytes"},
        {"long password", {.password = std::string(21, 'p')}, LAN_ERR_OPTION, "20 bytes"},
        {"long password, 1.5",
         {.password = std::string(17, 'p'), .cipherSuite = 0, .ipmi15 = 1},
         LAN_ERR_OPTION,
         "16 bytes"},
        {"suite without a key", {.cipherSuite = 1}, LAN_ERR_OPTION, "17 nor 3"},
        {"suite in 1.5", {.ipmi15 = 1}, LAN_ERR_OPTION, "no cipher suites"},
        {"privilege out of range", {.privilege = 5}, LAN_ERR_OPTION, "privilege level"},
        {"short time-out", {.timeout = 99}, LAN_ERR_OPTION, "100 to 60000"},
        {"late retransmission", {.retransmission = TIMEOUT / 2 + 1}, LAN_ERR_OPTION, "half of the time-out"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        OPTIONS options = row.options;
        if (options.port == 0)
            options.port = port;
        const auto time = Time([&] {
            const CSession session(options);
            EXPECT_EQ(session.Result(), row.result);
            EXPECT_NE(session.OpenMessage().find(row.message), std::string::npos) << session.OpenMessage();
            EXPECT_TRUE(options.password.empty() || session.OpenMessage().find(options.password) == std::string::npos);
        });
        EXPECT_LT(time, milliseconds(2 * TIMEOUT + 300));
    }
}

TEST_F(CSessionTest, AMessageIsCutToItsRoom) {
    const LAN_SESSION_OPTIONS options{};
    LAN_SESSION* session = nullptr;
    char message[5] = "????";
    EXPECT_EQ(Lan().Open(&options, &session, message, sizeof message), LAN_ERR_OPTION);
    EXPECT_STREQ(message, "no h");
}

TEST_F(CSessionTest, WhatDoesNotFitIsRefusedAndTheSessionGoesOn) {
    const CSession session(Options());
    EXPECT_EQ(session.Ask(0x0A, 0x12, BYTES(LAN_LARGEST_REQUEST_SIZE + 1)).result, LAN_ERR_SIZE);
    EXPECT_NE(session.Message().find("249 bytes"), std::string::npos) << session.Message();
    EXPECT_EQ(session.Ask(0x0A, 0x11, {0, 0, 0, 8}, 0, 8).result, LAN_ERR_SIZE);
    EXPECT_NE(session.Message().find("9 bytes, room is for 8"), std::string::npos) << session.Message();
    EXPECT_EQ(session.Ask(0x07, 0x01).result, LAN_ERR_OPTION);
    EXPECT_EQ(session.Ask(0x40, 0x01).result, LAN_ERR_OPTION);
    EXPECT_EQ(session.Ask(0x06, 0x34, {0x40, 0x30}).completionCode, 0xC7);
    EXPECT_EQ(session.Ask(0x06, 0x01).result, LAN_OK);
    EXPECT_EQ(session.Message(), "");
    EXPECT_EQ(session.Ask(0x40, 0x01).result, LAN_ERR_OPTION);
    EXPECT_NE(session.Message().find("not a request"), std::string::npos) << session.Message();
}

TEST_F(CSessionTest, SilentOwnersKeepTheirSession) {
    const CSession session(Options());
    std::this_thread::sleep_for(milliseconds(2 * TIMEOUT));
    EXPECT_EQ(session.Ask(0x06, 0x01).result, LAN_OK) << session.Message();
}

TEST_F(CSessionTest, NoCoreDumpWhileOneIsOpen) {
    ASSERT_EQ(prctl(PR_GET_DUMPABLE), 1);
    {
        const CSession first(Options());
        { const CSession second(Options()); }
        EXPECT_EQ(prctl(PR_GET_DUMPABLE), 0);
    }
    EXPECT_EQ(prctl(PR_GET_DUMPABLE), 1);
}

/// How often `coded`, each byte with its bits inverted, stands in the writable memory of this process.
unsigned int CountInMemory(const BYTES& coded) {
    unsigned int count = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        unsigned long first = 0;
        unsigned long last = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx rw", &first, &last) != 2 || line.find(" rw") == std::string::npos ||
            line.find("[v") != std::string::npos)
            continue;
        const auto* const begin = reinterpret_cast<const UINT8*>(first);
        const auto* const end = reinterpret_cast<const UINT8*>(last);
        const auto matches = [](UINT8 byte, UINT8 code) { return byte == static_cast<UINT8>(~code); };
        for (auto at = begin; (at = std::search(at, end, coded.begin(), coded.end(), matches)) != end; ++at)
            ++count;
    }
    return count;
}

TEST_F(CSessionTest, NoPasswordIsLeftInMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's memory is terabytes";
#endif
    // Nothing but Open ever has this one: here it is inverted.
    const BYTES coded{0xA5, 0x8E, 0xC9, 0xD2, 0x9A, 0xB8, 0xC4, 0x8B, 0xCB, 0x90};
    const std::string host = "127.0.0.1";
    for (const bool isIpmi15 : {false, true}) {
        char password[LAN_PASSWORD_SIZE_15 + 1] = {};
        std::transform(coded.begin(), coded.end(), password, [](UINT8 code) { return static_cast<char>(~code); });
        EXPECT_EQ(CountInMemory(coded), 1U) << "the test finds it";
        LAN_SESSION_OPTIONS options{};
        options.host = host.c_str();
        options.port = g_server->Port();
        options.user = USER;
        options.password = password;
        options.ipmi15 = isIpmi15;
        options.timeout = TIMEOUT;
        LAN_SESSION* session = nullptr;
        EXPECT_EQ(Lan().Open(&options, &session, nullptr, 0), LAN_ERR_PASSWORD);
        EXPECT_EQ(CountInMemory(coded), 0U) << "IPMI 1.5: " << isIpmi15;
    }
}

TEST_F(CSessionTest, AChildProcessHasNoPartInIt) {
    const CSession session(Options());
    const pid_t child = fork();
    if (child == 0) {
        alarm(5);
        const int result = session.Ask(0x06, 0x01).result;
        Lan().Close(session.Handle());
        _exit(result);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), LAN_ERR_SESSION);
    EXPECT_EQ(session.Ask(0x06, 0x01).result, LAN_OK);
}

TEST_F(CSessionTest, TheLibraryLoadsAndCommitsOverIt) {
    const CSession session(Options());
    UseLanSession(&Lan(), session.Handle());
    _EFI_FRU_INTERFACE* const fru = GetFruDataInterface();
    ASSERT_EQ(fru->Initialize(nullptr, 0), 0U);
    const auto load = [fru](UINT8 controller) {
        return fru->LoadFruAtAddress(fru, FRU_TYPE_IMBDEVICE, 0, controller, 0xFF, controller, 0, 0xFF, 0);
    };
    const UINT8 tag[] = {'R', 'A', 'C', 'K', '7'};
    ASSERT_EQ(load(0x20), 0U);
    const auto select = [fru] {
        return fru->SelectList(fru, FRU_LIST_SYSTEM) | fru->SelectFru(fru, 0) |
               fru->SelectAreaEnum(fru, FRU_AREA_PRODUCT) | fru->SelectFieldEnum(fru, FRU_FIELD_PRODUCT_ASSET_TAG);
    };
    ASSERT_EQ(select(), 0U);
    ASSERT_EQ(fru->SetFieldDataValue(fru, tag, sizeof tag), 0U);
    ASSERT_EQ(fru->CommitConfigurationToSystem(fru), 0U);
    EXPECT_EQ(load(0x30), 0U) << "bridged";
    UseLanSession(nullptr, nullptr);
    EXPECT_NE(load(0x20), 0U);
    fru->DeInitialize(fru);
    const ANSWER device = session.Ask(0x0A, 0x11, {0, 8, 0, LAN_SAFE_ANSWER_SIZE - 1});
    EXPECT_NE(std::string(device.data.begin(), device.data.end()).find("RACK7"), std::string::npos)
        << testing::PrintToString(device.data);
}

} // namespace

} // namespace Lan_Test
