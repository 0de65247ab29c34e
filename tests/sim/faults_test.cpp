// Fault rules on direct requests: what is answered, what is stored.
#include "tests/sim/support.h"

namespace Frudata_Sim {

namespace {

TEST(Faults, Actions) {
    const BYTES good{0, 2, 1, 2};
    const struct {
        const char* what;
        FaultRule rule;
        std::vector<BYTES> reads; ///< answers to the same read, one after the other
    } rows[] = {
        {"node busy three times from the second on",
         {.value = 0xC0, .netFn = NETFN_STORAGE, .occurrence = 2, .times = 3},
         {good, {0xC0}, {0xC0}, {0xC0}, good}},
        {"another device", {.value = 0xC0, .device = UINT8{1}}, {good}},
        {"another command", {.value = 0xC0, .cmd = CMD_WRITE_FRU_DATA}, {good}},
        {"another controller", {.value = 0xC0, .controller = UINT8{0xC0}}, {good}},
        {"short", {.action = FAULT_ACTION::SHORT_ANSWER, .value = 3, .times = 1}, {{0}, good}},
        {"shorter than nothing", {.action = FAULT_ACTION::SHORT_ANSWER, .value = 9}, {{0}}},
        {"long", {.action = FAULT_ACTION::LONG_ANSWER, .value = 2}, {{0, 2, 1, 2, 0xEE, 0xEE}}},
        {"writes only", {.action = FAULT_ACTION::CUT}, {good}},
    };
    for (const auto& row : rows) {
        CSimulatedBmc bmc;
        bmc.AddFruDevice(0, BYTES{1, 2});
        bmc.AddFault(row.rule);
        for (const BYTES& expected : row.reads)
            EXPECT_EQ(Ask(bmc, 0x0A, 0x11, {0, 0, 0, 2}), expected) << row.what;
    }
}

TEST(Faults, WritesThatAreNotStored) {
    const struct {
        const char* what;
        FaultRule rule;
        DELIVERY delivery;
        BYTES answer;
        UINT8 stored;
    } rows[] = {
        {"dropped", {.action = FAULT_ACTION::DROP_WRITE, .occurrence = 2}, DELIVERY::ANSWERED, {0, 1}, 0xA1},
        {"count 0", {.action = FAULT_ACTION::ACKNOWLEDGE_NONE, .occurrence = 2}, DELIVERY::ANSWERED, {0, 0}, 0xA1},
        {"cut", {.action = FAULT_ACTION::CUT, .value = 2}, DELIVERY::TRANSPORT_ERROR, {0}, 0xA2},
        {"silence", {.action = FAULT_ACTION::SILENCE, .occurrence = 3}, DELIVERY::SILENCE, {0}, 0xA2},
    };
    for (const auto& row : rows) {
        CSimulatedBmc bmc;
        bmc.AddFruDevice(0, BYTES{1, 2});
        bmc.AddFault(row.rule);
        IpmiAnswer last;
        for (UINT8 value = 0xA1; value <= 0xA3; ++value)
            last = bmc.Execute({.netFn = 0x0A, .cmd = 0x12, .data = {0, 0, 0, value}});
        EXPECT_EQ(last.delivery, row.delivery) << row.what;
        EXPECT_EQ(Flat(last), row.answer) << row.what;
        EXPECT_EQ(bmc.FruBytes(0)[0], row.stored) << row.what;
    }
}

TEST(Faults, EepromWritesAndRecordLoops) {
    CSimulatedBmc bmc;
    bmc.AddEeprom(1, 0xA0, EEPROM_KIND::AT24, BYTES(4));
    bmc.AddSdr({0, 0, 0x51, 0xC0, 0});
    bmc.AddFault({.action = FAULT_ACTION::DROP_WRITE, .device = UINT8{0xA0}});
    bmc.AddFault({.action = FAULT_ACTION::NEXT_RECORD, .value = 0x0102});
    EXPECT_EQ(Ask(bmc, 6, 0x52, {1, 0xA0, 0, 0, 0, 9}), BYTES{0});
    EXPECT_EQ(bmc.EepromBytes(1, 0xA0), BYTES(4));
    EXPECT_EQ(Ask(bmc, 0x0A, 0x23, {0, 0, 0, 0, 0, 1}), (BYTES{0, 2, 1, 1}));
}

TEST(Faults, ScriptAnswersFirst) {
    CSimulatedBmc bmc;
    bmc.SetScript([](const IpmiRequest& request) {
        return request.cmd == 1 ? std::optional(IpmiAnswer{.completionCode = 0xD3, .data = {7}}) : std::nullopt;
    });
    EXPECT_EQ(Ask(bmc, 6, 1), (BYTES{0xD3, 7}));
    EXPECT_EQ(Ask(bmc, 6, 2), BYTES{0xC1});
}

} // namespace

} // namespace Frudata_Sim
