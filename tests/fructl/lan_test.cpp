// The tool over a LAN session, to a BMC that is not the simulated one.
#include "tests/drivers/lan/lanserver.h"
#include "tests/fructl/support.h"

#include "sim/sdrrecords.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <set>

namespace Fructl_Tests {

using namespace Frudata_Sim;
using namespace Lan_Test;

constexpr std::size_t DATA = 36;

/// Whether a packet of IPMI 1.5, which shows its requests, has this one with data.
bool IsRequest(const BYTES& packet, UINT8 netFnAndLun, UINT8 cmd) {
    constexpr std::size_t NETFN = 31;
    constexpr std::size_t COMMAND = 35;
    return packet.size() > DATA && packet[NETFN] == netFnAndLun && packet[COMMAND] == cmd;
}

class CLanTest : public CFructlTest {
  protected:
    void SetUp() override {
        if (!CIpmiSim::IsInstalled())
            GTEST_SKIP() << "ipmi_sim is not installed (Debian package openipmi)";
        m_image = SamplePsuFru(1);
        m_server.emplace(FruDevice(0x20, 0, m_image));
    }

    RESULT Remote(const std::string& arguments, UINT16 port, const std::string& password = PASSWORD) {
        WriteText("password", password + "\n");
        std::filesystem::permissions("password", std::filesystem::perms::owner_read);
        RESULT result = Fructl(arguments + " --timeout 1000 --user " + USER +
                               " --password-file password --host 127.0.0.1:" + std::to_string(port));
        std::filesystem::remove("password");
        EXPECT_EQ((result.output + result.errors).find(password), std::string::npos);
        return result;
    }
    RESULT Remote(const std::string& arguments) { return Remote(arguments, m_server->Port()); }
    BYTES Contents() {
        EXPECT_EQ(Remote("save --system --binary -o contents.bin").status, 0);
        return ReadFile("contents.bin");
    }

    BYTES m_image;
    std::optional<CIpmiSim> m_server;
};

TEST_F(CLanTest, TheWholeJobOverASession) {
    for (const char* version : {"", " --cipher 3 --privilege administrator"}) {
        SCOPED_TRACE(version);
        const RESULT commit =
            Remote("commit --system board.serial-number=LAN-42 --backup kept.bin" + std::string(version));
        ASSERT_EQ(commit.status, 0) << commit.errors;
        EXPECT_EQ(Remote("get --system board.serial-number" + std::string(version)).output, "LAN-42\n");
        const RESULT restore = Remote("restore kept.bin --to system" + std::string(version));
        ASSERT_EQ(restore.status, 0) << restore.errors;
        EXPECT_EQ(Contents(), m_image);
        std::filesystem::remove("kept.bin");
    }
    EXPECT_EQ(Remote("get --system board.serial-number --lan-1.5").output,
              Remote("get --system board.serial-number").output);
    EXPECT_THAT(Remote("info --json").Json()["transport"].get<std::string>(),
                testing::StartsWith("LAN, 127.0.0.1:" + std::to_string(m_server->Port())));
}

TEST_F(CLanTest, ARunHasOneSession) {
    std::set<BYTES> sessions;
    const CRelay relay(m_server->Port(), [&sessions](BYTES& packet, bool toServer, unsigned int) {
        // Of an Open Session Request, one sent again too, the console's number (IPMI 2.0, sections 13.6 and 13.17).
        if (toServer && packet.size() >= 24 && packet[5] == 0x10)
            sessions.emplace(packet.begin() + 20, packet.begin() + 24);
    });
    for (const char* arguments : {"info", "commit --system board.serial-number=LAN-44 --no-backup"}) {
        sessions.clear();
        EXPECT_EQ(Remote(std::string(arguments) + " --cipher 3", relay.Port()).status, 0);
        EXPECT_EQ(sessions.size(), 1U) << arguments;
    }
}

TEST_F(CLanTest, ALostSessionCostsOneDevice) {
    std::string commands;
    for (const UINT8 id : {UINT8{1}, UINT8{0}})
        commands += FruDevice(0x20, id, m_image) + Sdr(LogicalFruRecord(0x20, 0, id, "PSU"));
    m_server.emplace(commands);
    const CRelay relay(m_server->Port(), [](BYTES& packet, bool toServer, unsigned int) {
        if (toServer && IsRequest(packet, 0x28, 0x11) && packet.at(DATA) == 1)
            packet.clear();
    });
    const RESULT scan = Remote("scan --load --csv --lan-1.5", relay.Port());
    EXPECT_EQ(scan.status, 6) << scan.errors;
    EXPECT_THAT(scan.output, HasSubstr("unreadable"));
    EXPECT_THAT(scan.output, HasSubstr("the session is lost"));
    EXPECT_THAT(scan.output, HasSubstr(",ok,"));
}

TEST_F(CLanTest, ASignalLeavesNoProcess) {
    // A session that the BMC forgets, and one that nobody opens.
    const CRelay relay(m_server->Port(), [](BYTES& packet, bool toServer, unsigned int number) {
        if (toServer && number > 9)
            packet.clear();
    });
    for (const UINT16 port : {relay.Port(), FreePort()}) {
        const RESULT result =
            Shell("export IPMI_PASSWORD=" + std::string(PASSWORD) +
                  "; setsid -w sh -c 'echo $$ >group; exec timeout --foreground -s INT 0.4 \"$@\"' sh " FRUCTL_PROGRAM
                  " show --system --cipher 3 --timeout 5000 --user " +
                  USER + " --host 127.0.0.1:" + std::to_string(port));
        EXPECT_EQ(result.status, 124) << result.errors;
        EXPECT_EQ(kill(-std::stoi(ReadText("group")), 0), -1) << port;
    }
}

TEST_F(CLanTest, WhatIsWrongIsSaid) {
    const RESULT wrong = Remote("show --system", m_server->Port(), "not-this-one");
    EXPECT_EQ(wrong.status, 3);
    EXPECT_THAT(wrong.errors, HasSubstr("password"));
    const RESULT nobody = Remote("show --system", FreePort());
    EXPECT_EQ(nobody.status, 3);
    EXPECT_THAT(nobody.errors, HasSubstr("127.0.0.1"));
}

TEST_F(CLanTest, ASessionThatBreaksDuringACommitIsRepairedOverAnother) {
    RESULT commit{};
    {
        // The header is written, nothing after it.
        unsigned int writes = 0;
        const CRelay relay(m_server->Port(), [&writes](BYTES& packet, bool toServer, unsigned int) {
            writes += toServer && IsRequest(packet, 0x28, 0x12);
            if (writes > 1)
                packet.clear();
        });
        commit = Remote("commit --system board.serial-number=LAN-43 product.asset-tag=A-43 --lan-1.5 --backup kept.bin",
                        relay.Port());
    }
    EXPECT_EQ(commit.status, 3) << commit.errors;
    EXPECT_THAT(commit.errors, HasSubstr("the session is lost"));
    EXPECT_THAT(commit.errors, HasSubstr("no answer within 1000 ms; 8 of "));
    EXPECT_THAT(commit.errors, HasSubstr("fructl restore 'kept.bin' --to system"));
    ASSERT_EQ(Remote("restore kept.bin --to system").status, 0);
    EXPECT_EQ(Contents(), m_image);
}

} // namespace Fructl_Tests
