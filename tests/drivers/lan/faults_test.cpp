// A BMC that goes away, and a network that loses packets and spoils them.
#include "tests/drivers/lan/support.h"

namespace Lan_Test {

namespace {

const BYTES GOOD_DEVICE{0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF};
const BYTES GOOD_ANSWER{8, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF};
// The header of RMCP and that of a session: IPMI 1.5 without a code, 2.0 (IPMI 2.0, sections 13.1.3 and 13.6).
constexpr std::size_t SESSION_HEADER = 16;

class CSessionFaultsTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!CIpmiSim::IsInstalled())
            GTEST_SKIP() << "ipmi_sim is not installed (Debian package openipmi)";
        m_server.emplace(FruDevice(0x20, 0, GOOD_DEVICE));
    }
    static OPTIONS Options(UINT16 port, bool isIpmi15) {
        return {.port = port, .cipherSuite = static_cast<UINT8>(isIpmi15 ? 0 : 3), .ipmi15 = isIpmi15};
    }
    static ANSWER Read(const CSession& session, int timeout = 0) {
        return session.Ask(0x0A, 0x11, {0, 0, 0, 8}, timeout);
    }

    std::optional<CIpmiSim> m_server;
};

TEST_F(CSessionFaultsTest, ABmcThatStopsLosesTheSessionWithinTheTimeOut) {
    for (const bool isIpmi15 : {false, true})
        for (const int timeout : {150, 0}) {
            SCOPED_TRACE(testing::Message() << "1.5: " << isIpmi15 << ", time-out " << timeout);
            ANSWER answer;
            const auto closed = Time([&] {
                const CSession session(Options(m_server->Port(), isIpmi15));
                ASSERT_EQ(Read(session).data, GOOD_ANSWER) << session.OpenMessage();
                m_server->Stop();
                const auto limit = milliseconds(timeout ? timeout : static_cast<int>(TIMEOUT));
                EXPECT_LT(Time([&] { answer = Read(session, timeout); }), limit + milliseconds(300));
                EXPECT_EQ(answer.result, LAN_ERR_SESSION);
                EXPECT_NE(session.Message().find("the session is lost: no answer"), std::string::npos)
                    << session.Message();
                EXPECT_LT(Time([&] { answer = Read(session); }), milliseconds(150)) << "at once, as it is lost";
                EXPECT_EQ(answer.result, LAN_ERR_SESSION);
                EXPECT_EQ(session.Ask(0x06, 0x34, {0x40, 0x30, 0x18, 0xB8, 0x20, 0x16, 0x01, 0xC9}).result,
                          LAN_ERR_SESSION);
            });
            EXPECT_LT(closed, milliseconds(2 * TIMEOUT));
            EXPECT_EQ(CSession(Options(m_server->Port(), isIpmi15)).Result(), LAN_ERR_NO_ANSWER);
            m_server->Continue();
        }
}

TEST_F(CSessionFaultsTest, LostPacketsAreSentAgain) {
    for (const bool isIpmi15 : {false, true})
        for (const bool toServer : {false, true}) {
            SCOPED_TRACE(testing::Message() << "1.5: " << isIpmi15 << ", to the server: " << toServer);
            std::atomic<unsigned int> lost = 0;
            const CRelay relay(m_server->Port(), [&](BYTES& packet, bool direction, unsigned int number) {
                // The fourth of RMCP+ is a step that this BMC answers but once.
                if (direction == toServer && (number == 4 || number % 5 == 0)) {
                    packet.clear();
                    ++lost;
                }
            });
            OPTIONS options = Options(relay.Port(), isIpmi15);
            options.retransmission = 20;
            const CSession session(options);
            ASSERT_EQ(session.Result(), LAN_OK) << session.OpenMessage();
            for (UINT8 count = 0; count < 20; ++count) {
                ASSERT_EQ(session.Ask(0x0A, 0x12, {0, 3, 0, count}).data, BYTES{1}) << session.Message();
                ASSERT_EQ(session.Ask(0x0A, 0x11, {0, 3, 0, 1}).data, (BYTES{1, count})) << session.Message();
            }
            EXPECT_GE(lost, 10U);
        }
}

TEST_F(CSessionFaultsTest, SpoiledPacketsNeverPassForAnAnswer) {
    const struct {
        const char* name;
        void (*spoil)(BYTES& packet);
    } rows[] = {{"cut", [](BYTES& packet) { packet.resize(packet.size() - 5); }},
                {"nothing but its header", [](BYTES& packet) { packet.resize(SESSION_HEADER); }},
                {"four bytes", [](BYTES& packet) { packet.resize(4); }},
                {"over-long", [](BYTES& packet) { packet.resize(60000, 0x5A); }},
                {"length over its end",
                 [](BYTES& packet) {
                     packet[13] = 0xFF;
                     packet[14] = 0xFF;
                     packet[15] = 0xFF;
                 }},
                {"changed", [](BYTES& packet) { packet[packet.size() / 2] ^= 0x10; }},
                {"noise", [](BYTES& packet) {
                     for (std::size_t index = 4; index < packet.size(); ++index)
                         packet[index] = static_cast<UINT8>(index * 151);
                 }}};
    for (const auto& row : rows)
        for (const bool isIpmi15 : {false, true}) {
            SCOPED_TRACE(testing::Message() << row.name << ", 1.5: " << isIpmi15);
            std::atomic<bool> spoiling = false;
            const CRelay relay(m_server->Port(), [&](BYTES& packet, bool toServer, unsigned int) {
                if (spoiling && !toServer && packet.size() > SESSION_HEADER)
                    row.spoil(packet);
            });
            const CSession session(Options(relay.Port(), isIpmi15));
            ASSERT_EQ(session.Result(), LAN_OK) << session.OpenMessage();
            spoiling = true;
            ANSWER answer;
            EXPECT_LT(Time([&] { answer = Read(session, 250); }), milliseconds(550));
            EXPECT_TRUE(answer.result != LAN_OK || answer.data == GOOD_ANSWER);
            EXPECT_EQ(answer.result == LAN_OK, session.Message().empty());
        }
}

TEST_F(CSessionFaultsTest, AControllerThatNeverAnswersEndsTheRequestInTime) {
    for (const bool isIpmi15 : {false, true}) {
        std::atomic<unsigned int> answers = 0;
        std::atomic<bool> bridging = false;
        // The BMC acknowledges Send Message, then hands the answer on: that one is lost each time.
        const CRelay relay(m_server->Port(), [&](BYTES& packet, bool toServer, unsigned int) {
            if (bridging && !toServer && ++answers % 2 == 0)
                packet.clear();
        });
        const CSession session(Options(relay.Port(), isIpmi15));
        ASSERT_EQ(session.Result(), LAN_OK) << session.OpenMessage();
        bridging = true;
        int result = LAN_OK;
        EXPECT_LT(Time([&] {
                      result = session.Ask(0x06, 0x34, {0x40, 0x30, 0x18, 0xB8, 0x20, 0x16, 0x01, 0xC9}, 250).result;
                  }),
                  milliseconds(550));
        EXPECT_EQ(result, LAN_ERR_SESSION);
        EXPECT_GE(answers, 2U);
    }
}

TEST_F(CSessionFaultsTest, ASessionOfSpoiledPacketsIsNotOpened) {
    const CRelay relay(m_server->Port(), [](BYTES& packet, bool toServer, unsigned int number) {
        if (!toServer && number > 1)
            packet.resize(packet.size() / 2);
    });
    for (const bool isIpmi15 : {false, true}) {
        const auto time = Time([&] {
            const CSession session(Options(relay.Port(), isIpmi15));
            EXPECT_NE(session.Result(), LAN_OK);
            EXPECT_NE(session.OpenMessage(), "");
        });
        EXPECT_LT(time, milliseconds(3 * TIMEOUT + 300));
    }
}

} // namespace

} // namespace Lan_Test
