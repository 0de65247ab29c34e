// Every command's good answer and its refusals.
#include "tests/sim/support.h"

#include "sim/sdrrecords.h"

namespace Frudata_Sim {

namespace {

struct ROW {
    const char* what;
    UINT8 netFn;
    UINT8 cmd;
    BYTES data;
    BYTES answer; ///< completion code, data
};

void Check(CSimulatedBmc& bmc, const std::vector<ROW>& rows) {
    for (const ROW& row : rows)
        EXPECT_EQ(Ask(bmc, row.netFn, row.cmd, row.data), row.answer) << row.what;
}

TEST(Commands, FruInventory) {
    CSimulatedBmc bmc({.ipmiVersion = 0x51, .manufacturer = 0x012345, .product = 0x4311});
    bmc.AddFruDevice(0, Counting(0, 260), {.maxRead = 4, .maxWrite = 2, .readRefusal = 0xC8});
    bmc.AddFruDevice(1, BYTES{1, 2, 3}, {.readOnly = true, .partialReads = true});
    bmc.AddFruDevice(2, BYTES{1}, {.failure = 0xD5});
    Check(bmc, {
                   {"device id", 6, 1, {}, {0, 0x20, 1, 2, 0x10, 0x51, 0x8B, 0x45, 0x23, 0x01, 0x11, 0x43, 0, 0, 0, 0}},
                   {"device id takes no data", 6, 1, {0}, {0xC7}},
                   {"unknown command", 0x0A, 0x7F, {}, {0xC1}},
                   {"unknown network function", 0x30, 0x11, {0, 0, 0, 1}, {0xC1}},
                   {"area info", 0x0A, 0x10, {0}, {0, 0x04, 0x01, 0}},
                   {"area info length", 0x0A, 0x10, {}, {0xC7}},
                   {"area info unknown", 0x0A, 0x10, {9}, {0xCB}},
                   {"read", 0x0A, 0x11, {0, 0x01, 0x01, 3}, {0, 3, 1, 2, 3}},
                   {"read length", 0x0A, 0x11, {0, 0, 0}, {0xC7}},
                   {"read too long", 0x0A, 0x11, {0, 0, 0, 4, 0}, {0xC7}},
                   {"read unknown", 0x0A, 0x11, {9, 0, 0, 1}, {0xCB}},
                   {"read above the limit", 0x0A, 0x11, {0, 0, 0, 5}, {0xC8}},
                   {"read nothing", 0x0A, 0x11, {0, 0, 0, 0}, {0xC8}},
                   {"read across the end", 0x0A, 0x11, {0, 0x03, 0x01, 2}, {0xC9}},
                   {"read past the end", 0x0A, 0x11, {0, 0x04, 0x01, 1}, {0xC9}},
                   {"partial read", 0x0A, 0x11, {1, 1, 0, 8}, {0, 2, 2, 3}},
                   {"partial read past the end", 0x0A, 0x11, {1, 3, 0, 8}, {0xC9}},
                   {"dead read", 0x0A, 0x11, {2, 0, 0, 1}, {0xD5}},
                   {"dead write", 0x0A, 0x12, {2, 0, 0, 1}, {0xD5}},
                   {"dead info", 0x0A, 0x10, {2}, {0xD5}},
                   {"write", 0x0A, 0x12, {0, 0x02, 0x01, 0xAA, 0xBB}, {0, 2}},
                   {"written", 0x0A, 0x11, {0, 0x01, 0x01, 3}, {0, 3, 1, 0xAA, 0xBB}},
                   {"write above the limit", 0x0A, 0x12, {0, 0, 0, 1, 2, 3}, {0xC7}},
                   {"write nothing", 0x0A, 0x12, {0, 0, 0}, {0xC7}},
                   {"write across the end", 0x0A, 0x12, {0, 0x03, 0x01, 1, 2}, {0xC9}},
                   {"write protected", 0x0A, 0x12, {1, 0, 0, 1}, {0x80}},
                   {"write unknown", 0x0A, 0x12, {9, 0, 0, 1}, {0xCB}},
               });
    EXPECT_EQ(bmc.Execute({.netFn = 0x0A, .lun = 1, .cmd = 0x11, .data = {0, 0, 0, 1}}).completionCode, 0xC2);
    EXPECT_EQ(bmc.FruBytes(1), (BYTES{1, 2, 3}));
}

TEST(Commands, Eeproms) {
    CSimulatedBmc bmc;
    bmc.AddEeprom(1, 0xA1, EEPROM_KIND::AT24, Counting(0, 512), {.maxRead = 8, .maxWrite = 10, .pageSize = 8});
    bmc.AddEeprom(2, 0x90, EEPROM_KIND::DS1624S, Counting(0x40, 256));
    Check(bmc, {
                   {"read at two offset bytes", 6, 0x52, {1, 0xA0, 2, 0x01, 0x03}, {0, 3, 4}},
                   {"the pointer runs on", 6, 0x52, {1, 0xA0, 1}, {0, 5}},
                   {"and wraps", 6, 0x52, {1, 0xA0, 2, 0x01, 0xFF}, {0, 0xFF, 0}},
                   {"a write answers nothing", 6, 0x52, {1, 0xA0, 0, 0, 6, 0x11, 0x22, 0x33}, {0}},
                   {"and wraps inside its page", 6, 0x52, {1, 0xA0, 8, 0, 0}, {0, 0x33, 1, 2, 3, 4, 5, 0x11, 0x22}},
                   {"an empty access", 6, 0x52, {1, 0xA0, 0}, {0}},
                   {"too short", 6, 0x52, {1, 0xA0}, {0xC7}},
                   {"read above the limit", 6, 0x52, {1, 0xA0, 9, 0, 0}, {0xCA}},
                   {"write above the limit", 6, 0x52, {1, 0xA0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {0xC7}},
                   {"no such address", 6, 0x52, {1, 0xA4, 1, 0, 0}, {0x83}},
                   {"no such bus", 6, 0x52, {3, 0xA0, 1, 0, 0}, {0xCC}},
                   {"access command", 6, 0x52, {2, 0x90, 2, 0x17, 0x10}, {0, 0x50, 0x51}},
                   {"another command", 6, 0x52, {2, 0x90, 2, 0xAA, 0x10}, {0x83}},
               });
    EXPECT_EQ(bmc.EepromBytes(1, 0xA0)[6], 0x11);
}

TEST(Commands, SdrRepository) {
    CSimulatedBmc bmc;
    EXPECT_EQ(Ask(bmc, 0x0A, 0x23, {0, 0, 0, 0, 0, 5}), BYTES{0xCB}) << "empty";
    bmc.AddSdr(OemRecord({0xA0, 0xA1, 0xA2}));
    bmc.AddSdr(ControllerRecord(0xC0, 1, 0x08, "HSC"));
    bmc.Sdrs().SetMaxRead(16);
    Check(bmc,
          {
              {"no reservation at an offset", 0x0A, 0x23, {0, 0, 1, 0, 5, 3}, {0xC5}},
              {"none needed at the start", 0x0A, 0x23, {0, 0, 0, 0, 0, 5}, {0, 2, 0, 1, 0, 0x51, 0xC0, 3}},
              {"info", 0x0A, 0x20, {}, {0, 0x51, 2, 0, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0x22}},
              {"reserve", 0x0A, 0x22, {}, {0, 1, 0}},
              {"reserve takes no data", 0x0A, 0x22, {1}, {0xC7}},
              {"a part", 0x0A, 0x23, {1, 0, 1, 0, 6, 2}, {0, 2, 0, 0xA1, 0xA2}},
              {"the last record", 0x0A, 0x23, {1, 0, 0xFF, 0xFF, 5, 2}, {0, 0xFF, 0xFF, 0xC0, 1}},
              {"whole record", 0x0A, 0x23, {1, 0, 1, 0, 0, 0xFF}, {0, 2, 0, 1, 0, 0x51, 0xC0, 3, 0xA0, 0xA1, 0xA2}},
              {"whole record above the limit", 0x0A, 0x23, {1, 0, 2, 0, 0, 0xFF}, {0xCA}},
              {"past the record", 0x0A, 0x23, {1, 0, 1, 0, 7, 2}, {0xC9}},
              {"offset past the record", 0x0A, 0x23, {1, 0, 1, 0, 9, 0}, {0xC9}},
              {"no such record", 0x0A, 0x23, {1, 0, 3, 0, 0, 5}, {0xCB}},
              {"wrong length", 0x0A, 0x23, {1, 0, 3, 0, 0}, {0xC7}},
              {"a second reservation", 0x0A, 0x22, {}, {0, 2, 0}},
              {"cancels the first", 0x0A, 0x23, {1, 0, 1, 0, 0, 5}, {0xC5}},
          });
    bmc.Sdrs().CancelReservation();
    EXPECT_EQ(Ask(bmc, 0x0A, 0x23, {2, 0, 1, 0, 0, 5}), BYTES{0xC5}) << "changed by someone else";
}

TEST(Commands, LocatorRecords) {
    EXPECT_EQ(LogicalFruRecord(0x20, 1, 7, "PSU"),
              (BYTES{0, 0, 0x51, 0x11, 14, 0x20, 7, 0x80, 0x10, 0, 0x10, 0, 7, 1, 0, 0xC3, 'P', 'S', 'U'}));
    EXPECT_EQ(PhysicalFruRecord(0x20, 0, 3, 0xA4, DEVICE_TYPE_DS1624, ""),
              (BYTES{0, 0, 0x51, 0x11, 11, 0x20, 0xA4, 3, 0, 0, 2, 0, 7, 1, 0, 0xC0}));
    EXPECT_EQ(ControllerRecord(0xC0, 6, 0x29, "M"),
              (BYTES{0, 0, 0x51, 0x12, 12, 0xC0, 6, 0, 0x29, 0, 0, 0, 0x2E, 1, 0, 0xC1, 'M'}));
    EXPECT_EQ(FullSensorRecord(1, "T1").size(), 50U);
    EXPECT_EQ(CompactSensorRecord(1, "T1").size(), 34U);
}

} // namespace

} // namespace Frudata_Sim
