// The SDR repository scan: raw records and the locators they become, and repositories that break off.
#include "tests/system/support.h"

#include "frudata/sdrscan.h"
#include "sim/sdrrecords.h"

#include <memory>

using namespace Frudata_Tests;

namespace {

using LINES = std::vector<std::string>;

constexpr UINT8 RESERVE = 0x22;
constexpr UINT8 GET_SDR = 0x23;

class CSystemScanTest : public CSystemTest {
  protected:
    /// The locators of a repository with `records`, as `type lun address bus controller id name`.
    LINES Locators(const std::vector<BYTES>& records) {
        m_bmc.Sdrs().Clear();
        for (const BYTES& record : records)
            m_bmc.AddSdr(record);
        // What the host has in its list already stays in front.
        FRU_LOCATOR own;
        OrderedList<FRU_LOCATOR*> list;
        OrderedList<FRU_LOCATOR*>* argument = &list;
        list.Add(&own);
        EXPECT_EQ(ScanSystemForFruLocators(argument), 0U);
        EXPECT_EQ(argument, &list);
        EXPECT_EQ(list.First(), &own);
        list.Remove(&own);
        LINES lines;
        while (FRU_LOCATOR* const first = list.First()) {
            const std::unique_ptr<FRU_LOCATOR> locator(list.Remove(first));
            char line[64];
            std::snprintf(line, sizeof line, "%d %u %02X %02X %02X %02X %ls", locator->type, unsigned{locator->lun},
                          unsigned{locator->deviceAddress}, unsigned{locator->bus}, unsigned{locator->controller},
                          unsigned{locator->deviceId}, locator->name ? locator->name : L"(null)");
            lines.push_back(line);
            EXPECT_EQ(locator->mbmcSizeData << 16 | locator->mbmcSizeAddress, 0xFF0000);
        }
        return lines;
    }
};

/// Device locator: bytes 5 to 7 (access address, device, flags), type and name of the device.
BYTES Device(UINT8 access, UINT8 device, UINT8 flags, UINT8 deviceType, const std::string& name, int typeLength = -1) {
    BYTES record{0, 0, 0x51, 0x11, 0, access, device, flags, 0x70, 0, deviceType, 1, 2, 3, 4};
    record.push_back(static_cast<UINT8>(typeLength < 0 ? 0xC0 | static_cast<int>(name.size()) : typeLength));
    record.insert(record.end(), name.begin(), name.end());
    record[4] = static_cast<UINT8>(record.size() - 5);
    return record;
}
const BYTES GOOD = LogicalFruRecord(0x20, 0, 1, "PSU 1");
const std::string GOOD_LINE = "2 0 20 00 20 01 PSU 1";
const BYTES SECOND = ControllerRecord(0xC0, 0, 0x29, "HSC");
const std::string SECOND_LINE = "2 0 C0 00 20 00 HSC";

TEST_F(CSystemScanTest, RecordsAndLocators) {
    const auto with = [](std::size_t byte, UINT8 value) {
        BYTES record = GOOD;
        record[byte] = value;
        return record;
    };
    const std::string long16 = "0123456789ABCDEF";
    const struct {
        const char* name;
        std::vector<BYTES> records;
        LINES locators;
        const char* trace = "";
    } rows[] = {
        {"behind a controller", {Device(0x73, 0x05, 0x9A, 0x10, "A")}, {"2 3 72 02 72 05 A"}},
        {"odd logical id", {Device(0x20, 0x05, 0x87, 0x10, "")}, {"2 0 20 07 20 05 "}},
        {"EEPROM", {Device(0x20, 0xA1, 0x0B, 0x0E, "E")}, {"0 1 A0 03 20 A0 E"}},
        {"thermometer", {Device(0x20, 0x90, 0x13, 0x02, "T")}, {"1 2 90 03 20 90 T"}},
        {"any other device", {Device(0x20, 0xA4, 0x01, 0x00, "O")}, {"0 0 A4 01 20 A4 O"}},
        {"logical thermometer", {Device(0x20, 0x09, 0x81, 0x02, "L")}, {"1 0 20 01 20 09 L"}},
        {"physical FRU device", {Device(0x20, 0xA4, 0x01, 0x10, "P")}, {"2 0 A4 01 20 A4 P"}},
        {"physical device at 20h", {Device(0xC0, 0x21, 0x05, 0x10, "Q")}, {"2 0 20 FF C0 20 Q"}},
        {"odd controller address", {ControllerRecord(0x2D, 6, 0x29, "ME")}, {"2 0 2C 00 20 00 ME"}},
        {"no name", {Device(0x20, 1, 0x80, 0x10, "", 0xDF)}, {"2 0 20 00 20 01 "}},
        {"too long", {Device(0x20, 1, 0x80, 0x10, long16 + "GHIJKLMNOPQRST")}, {"2 0 20 00 20 01 0123456789ABCDEFG"}},
        {"name with a 0", {Device(0x20, 1, 0x80, 0x10, {"a\0b", 3})}, {"2 0 20 00 20 01 a"}},
        {"longest record", {GOOD, OemRecord(BYTES(250, 9)), SECOND}, {GOOD_LINE, SECOND_LINE}},
        {"devices before controllers",
         {FullSensorRecord(1, "Temp"), SECOND, CompactSensorRecord(2, "Fan"), GOOD, OemRecord(BYTES(60, 9)),
          ControllerRecord(0x20, 0, 0xBF, "BMC"), Device(0x20, 0xA0, 0x01, 0x0E, "Riser")},
         {GOOD_LINE, "0 0 A0 01 20 A0 Riser", SECOND_LINE, "2 0 20 FF 20 00 BMC"}},
        // What ends a scan keeps the locators before it, unless it is met in counting.
        {"type 0Ah", {GOOD, with(3, 0x0A), GOOD}, {}, "CountIPMI15SDRTypes - Unsupported SDR"},
        {"version 01h", {GOOD, with(2, 0x01), GOOD}, {GOOD_LINE}, "DecodeHeader - Unsupported IPMI Version"},
        {"length 4", {GOOD, {0, 0, 0x51, 0x12, 4, 0, 0, 0, 0}, GOOD}, {GOOD_LINE}, "Bad SDR Header Length"},
        {"over its name", {GOOD, with(15, 0xC4), GOOD}, {GOOD_LINE}, "DecodeSDRType11V15 - Bad SDR Record Length"},
        {"behind no name", {GOOD, with(15, 0xDF), GOOD}, {GOOD_LINE}, "DecodeSDRType11V15 - Bad SDR Record Length"},
        {"name over it", {GOOD, Device(0xC0, 1, 0x80, 0x10, "abc", 0xC4), GOOD}, {GOOD_LINE}, "Bad SDR Record"},
        {"controller short", {GOOD, Slice(SECOND, 0, 18), GOOD}, {GOOD_LINE}, "ReadRecFromBMC - Error Reading SDR"},
        {"length 251", {GOOD, OemRecord(BYTES(251, 9)), GOOD}, {GOOD_LINE}, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Locators(row.records), row.locators) << row.name;
        EXPECT_THAT(TakeLog(), testing::HasSubstr(row.trace)) << row.name;
    }
    // What is not decoded is not looked at, such as a version that a locator may not have.
    for (const int type : {0x01, 0x02, 0x08, 0x09, 0x10, 0x13, 0x14, 0xC0})
        EXPECT_EQ(Locators({BYTES{0, 0, 0x01, static_cast<UINT8>(type), 3, 1, 2, 3}, GOOD}), LINES{GOOD_LINE});
}

TEST_F(CSystemScanTest, Requests) {
    EXPECT_EQ(Locators({Device(0x20, 1, 0x80, 0x10, std::string(14, 'n')), OemRecord(BYTES(27, 9))}).size(), 1U);
    // Counting: a header a record. Decoding: the header, then pieces of 16 bytes and a rest.
    const auto get = [](UINT8 reservation, UINT8 id, UINT8 offset, UINT8 count) {
        return BYTES{0x20, 0x0A, 0, GET_SDR, reservation, 0, id, 0, offset, count};
    };
    const BYTES reserve{0x20, 0x0A, 0, RESERVE};
    EXPECT_EQ(Requests(),
              (REQUESTS{reserve, get(1, 0, 0, 5), reserve, get(2, 2, 0, 5), reserve, get(3, 0, 0, 5), get(3, 0, 5, 16),
                        get(3, 0, 21, 9), reserve, get(4, 2, 0, 5), get(4, 2, 5, 16), get(4, 2, 21, 11)}));
}

TEST_F(CSystemScanTest, ErrorsAndChains) {
    using enum FAULT_ACTION;
    // Three records: three exchanges of two to count them, then three of three.
    const struct {
        FaultRule fault;
        std::size_t locators;
        const char* trace;
        std::size_t mostRequests = 15;
    } rows[] = {
        {{.value = 0xC1, .cmd = RESERVE}, 0, "CountIPMI15SDRTypes - Error Reserving SDR"},
        {{.value = 0xC5, .cmd = GET_SDR}, 0, "CountIPMI15SDRTypes - Error Reading SDR"},
        {{.action = TRANSPORT_ERROR, .cmd = GET_SDR}, 0, "GetAllSDRRecs - Error Reading"},
        {{.value = 0xC5, .cmd = RESERVE, .occurrence = 5}, 1, "ReadRecFromBMC - Error Reserving"},
        {{.value = 0xC5, .cmd = GET_SDR, .occurrence = 6}, 1, "ReadRecFromBMC - Error Reading SDR"}, // the header
        {{.value = 0xC5, .cmd = GET_SDR, .occurrence = 7}, 1, "ReadRecFromBMC - Error Reading SDR"}, // the rest
        {{.action = TRANSPORT_ERROR, .cmd = RESERVE, .occurrence = 6}, 2, ""},
        {{.action = SHORT_ANSWER, .value = 1, .cmd = RESERVE, .occurrence = 5}, 1, "Bad SDR Reserve Length"},
        {{.action = LONG_ANSWER, .value = 1, .cmd = RESERVE, .occurrence = 4}, 0, "Bad SDR Reserve Length"},
        {{.action = SHORT_ANSWER, .value = 99, .cmd = GET_SDR}, 0, ""},
        {{.action = SHORT_ANSWER, .value = 3, .cmd = GET_SDR, .occurrence = 6}, 1, ""},
        {{.action = LONG_ANSWER, .value = 900, .cmd = GET_SDR}, 3, ""},
        // The rest in two answers; an answer without any of it.
        {{.action = SHORT_ANSWER, .value = 3, .cmd = GET_SDR, .occurrence = 5, .times = 1}, 3, "", 16},
        {{.action = SHORT_ANSWER, .value = 16, .cmd = GET_SDR, .occurrence = 5}, 0, "ReadRecFromBMC - Error Reading"},
        {{.action = SHORT_ANSWER, .value = 99, .cmd = GET_SDR, .occurrence = 7}, 1, "ReadRecFromBMC - Error Reading"},
        // Chains: to itself, to the start, to the first record by its own id (at once and last), nowhere, to the end.
        {{.action = NEXT_RECORD, .value = 2, .cmd = GET_SDR, .occurrence = 2}, 2, "GetAllSDRRecs - Repeated SDR"},
        {{.action = NEXT_RECORD, .value = 0, .cmd = GET_SDR}, 1, "CountIPMI15SDRTypes - Repeated SDR", 5},
        {{.action = NEXT_RECORD, .value = 0, .cmd = GET_SDR, .occurrence = 4}, 1, "GetAllSDRRecs - Repeated SDR"},
        {{.action = NEXT_RECORD, .value = 1, .cmd = GET_SDR}, 2, "CountIPMI15SDRTypes - Repeated SDR", 10},
        {{.action = NEXT_RECORD, .value = 1, .cmd = GET_SDR, .occurrence = 8}, 3, "More SDRs than counted", 18},
        {{.action = NEXT_RECORD, .value = 9, .cmd = GET_SDR}, 0, "Error Reading SDR"},
        {{.action = NEXT_RECORD, .value = 0xFFFF, .cmd = GET_SDR}, 1, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        m_bmc.ClearFaults();
        m_bmc.AddFault(row.fault);
        EXPECT_EQ(Locators({GOOD, GOOD, GOOD}), LINES(row.locators, GOOD_LINE));
        EXPECT_THAT(TakeLog(), testing::HasSubstr(row.trace));
        EXPECT_LE(Requests().size(), row.mostRequests);
    }
    EXPECT_EQ(LastError(), L"") << "a scan leaves no message";
    m_bmc.ClearFaults();
    EXPECT_EQ(Locators({GOOD, SECOND}), (LINES{GOOD_LINE, SECOND_LINE})) << "the library goes on";
}

} // namespace
