// Send Message and Get Message, byte by byte.
#include "tests/sim/support.h"

namespace Frudata_Sim {

namespace {

/// Read FRU Data of device 0, offset 1, two bytes, from 0xC0 with sequence 5; checksums worked out by hand.
const BYTES READ_TWO_BYTES{0x00, 0xC0, 0x28, 0x18, 0x20, 0x16, 0x11, 0x00, 0x01, 0x00, 0x02, 0xB6};

BYTES WithBytes(BYTES message, std::initializer_list<std::pair<std::size_t, int>> changes) {
    for (const auto& [position, value] : changes)
        message.at(position) = static_cast<UINT8>(value);
    return message;
}

class CBridgeTest : public testing::Test {
  protected:
    void SetUp() override { bmc.AddController(0, 0xC0).AddFruDevice(0, Counting(0x70, 16)); }
    CSimulatedBmc bmc;
};

TEST_F(CBridgeTest, FramesTheAnswer) {
    EXPECT_EQ(Ask(bmc, 6, 0x31), (BYTES{0, 0}));
    EXPECT_EQ(Ask(bmc, 6, 0x34, READ_TWO_BYTES), BYTES{0});
    EXPECT_TRUE(bmc.HasMessage());
    EXPECT_EQ(Ask(bmc, 6, 0x31), (BYTES{0, 1}));
    EXPECT_EQ(Ask(bmc, 6, 0x33), (BYTES{0, 0x00, 0x2E, 0xB2, 0xC0, 0x14, 0x11, 0x00, 0x02, 0x71, 0x72, 0x36}));
    EXPECT_EQ(Ask(bmc, 6, 0x33), BYTES{0x80});
}

TEST_F(CBridgeTest, RefusesOrDrops) {
    const struct {
        const char* what;
        BYTES message;
        UINT8 completionCode;
    } rows[] = {
        {"too short", {0, 0xC0, 0x18, 0x28, 0x20, 0x16, 0x01}, 0xC7},
        {"no such controller", WithBytes(READ_TWO_BYTES, {{1, 0xC2}, {3, 0x16}}), 0x83},
        {"no such channel", WithBytes(READ_TWO_BYTES, {{0, 6}}), 0xCC},
        {"tracking asked for", WithBytes(READ_TWO_BYTES, {{0, 0x40}}), 0xCC},
        {"wrong first checksum", WithBytes(READ_TWO_BYTES, {{3, 0x19}}), 0},
        {"wrong second checksum", WithBytes(READ_TWO_BYTES, {{11, 0xB7}}), 0},
        {"answer for the BMC itself", WithBytes(READ_TWO_BYTES, {{5, 0x14}, {11, 0xB8}}), 0},
        {"answer for another requester", WithBytes(READ_TWO_BYTES, {{4, 0x22}, {11, 0xB4}}), 0},
        {"a response", WithBytes(READ_TWO_BYTES, {{2, 0x2C}, {3, 0x14}}), 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Ask(bmc, 6, 0x34, row.message), BYTES{row.completionCode}) << row.what;
        EXPECT_FALSE(bmc.HasMessage()) << row.what;
    }
}

TEST_F(CBridgeTest, QueueHoldsSixteenAndClears) {
    for (int message = 0; message < 20; ++message)
        Ask(bmc, 6, 0x34, READ_TWO_BYTES);
    for (int message = 0; message < 16; ++message)
        EXPECT_EQ(Ask(bmc, 6, 0x33)[0], 0);
    EXPECT_EQ(Ask(bmc, 6, 0x33), BYTES{0x80});
    Ask(bmc, 6, 0x34, READ_TWO_BYTES);
    EXPECT_EQ(Ask(bmc, 6, 0x30), BYTES{0xC7});
    EXPECT_EQ(Ask(bmc, 6, 0x30, {1}), BYTES{0});
    EXPECT_FALSE(bmc.HasMessage());
}

TEST_F(CBridgeTest, Faults) {
    bmc.AddFault({.action = FAULT_ACTION::STALE_MESSAGES, .value = 2, .times = 1});
    bmc.AddFault({.action = FAULT_ACTION::WRONG_SEQUENCE, .occurrence = 2, .times = 1});
    bmc.AddFault({.action = FAULT_ACTION::SILENCE, .controller = UINT8{0xC0}, .occurrence = 3, .times = 1});
    const std::vector<std::vector<int>> sequences{{3, 4, 5}, {6}, {}, {5}};
    for (const std::vector<int>& expected : sequences) {
        Ask(bmc, 6, 0x34, READ_TWO_BYTES);
        std::vector<int> seen;
        while (bmc.HasMessage())
            seen.push_back(Ask(bmc, 6, 0x33).at(5) >> 2);
        EXPECT_EQ(seen, expected);
    }
}

TEST_F(CBridgeTest, RecordsBothRequests) {
    bmc.SetRecording(true);
    Ask(bmc, 6, 0x34, READ_TWO_BYTES);
    EXPECT_EQ(FormatExchanges(bmc.Exchanges()),
              "DIRECT 20 netFn 06 lun 0 cmd 34: 00 C0 28 18 20 16 11 00 01 00 02 B6 -> 00:\n"
              "BRIDGE channel 0 C0 netFn 0A lun 0 cmd 11: 00 01 00 02 -> 00: 02 71 72\n");
}

} // namespace

} // namespace Frudata_Sim
