// The SDR repository scan: raw records and the locators they become, and repositories that break off.
#include "tests/system/support.h"

#include "frudata/sdrscan.h"
#include "sim/sdrrecords.h"

#include <memory>

namespace Frudata_Tests {

namespace {

using testing::ElementsAre;

constexpr UINT8 RESERVE = 0x22;
constexpr UINT8 GET_SDR = 0x23;

class Scan : public CSystemTest {
  protected:
    /// The locators as `type lun address bus controller id name`.
    LINES Locators() {
        auto list = std::make_unique<OrderedList<FRU_LOCATOR*>>();
        OrderedList<FRU_LOCATOR*>* argument = list.get();
        EXPECT_EQ(ScanSystemForFruLocators(argument), 0U);
        EXPECT_EQ(argument, list.get());
        LINES lines;
        while (FRU_LOCATOR* const first = list->First()) {
            // The list and what is in it are the host's.
            const std::unique_ptr<FRU_LOCATOR> locator(list->Remove(first));
            char line[64];
            std::snprintf(line, sizeof line, "%d %u %02X %02X %02X %02X %ls", locator->type, unsigned{locator->lun},
                          unsigned{locator->deviceAddress}, unsigned{locator->bus}, unsigned{locator->controller},
                          unsigned{locator->deviceId}, locator->name ? locator->name : L"(null)");
            lines.push_back(line);
            EXPECT_EQ(locator->mbmcSizeData << 16 | locator->mbmcSizeAddress, 0xFF0000);
        }
        return lines;
    }
    LINES Locators(const std::vector<BYTES>& records) {
        m_bmc.Sdrs().Clear();
        for (const BYTES& record : records)
            m_bmc.AddSdr(record);
        return Locators();
    }
};

/// Device locator: bytes 5 to 8 (access address, device, flags, channel), type and name of the device.
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

TEST_F(Scan, RecordsAndLocators) {
    const std::string long16 = "0123456789ABCDEF";
    const struct {
        const char* name;
        BYTES record;
        const char* locator;
    } rows[] = {
        {"logical device", GOOD, "2 0 20 00 20 01 PSU 1"},
        {"behind a controller", Device(0x73, 0x05, 0x9A, 0x10, "A"), "2 3 72 02 72 05 A"},
        {"odd logical id", Device(0x20, 0x05, 0x87, 0x10, ""), "2 0 20 07 20 05 "},
        {"EEPROM", Device(0x20, 0xA1, 0x0B, 0x0E, "E"), "0 1 A0 03 20 A0 E"},
        {"thermometer", Device(0x20, 0x90, 0x13, 0x02, "T"), "1 2 90 03 20 90 T"},
        {"any other device", Device(0x20, 0xA4, 0x01, 0x00, "O"), "0 0 A4 01 20 A4 O"},
        {"logical thermometer", Device(0x20, 0x09, 0x81, 0x02, "L"), "1 0 20 01 20 09 L"},
        {"physical FRU device", Device(0x20, 0xA4, 0x01, 0x10, "P"), "2 0 A4 01 20 A4 P"},
        {"physical device at 20h", Device(0xC0, 0x21, 0x05, 0x10, "Q"), "2 0 20 FF C0 20 Q"},
        {"controller", SECOND, "2 0 C0 00 20 00 HSC"},
        {"controller with odd address", ControllerRecord(0x2D, 6, 0x29, "ME"), "2 0 2C 00 20 00 ME"},
        {"the BMC itself", ControllerRecord(0x20, 0, 0xBF, "BMC"), "2 0 20 FF 20 00 BMC"},
        {"no name", Device(0x20, 1, 0x80, 0x10, "", 0xDF), "2 0 20 00 20 01 "},
        {"longest name", Device(0x20, 1, 0x80, 0x10, long16), "2 0 20 00 20 01 0123456789ABCDEF"},
        {"17 characters", Device(0x20, 1, 0x80, 0x10, long16 + "G"), "2 0 20 00 20 01 0123456789ABCDEFG"},
        {"too long a name", Device(0x20, 1, 0x80, 0x10, long16 + "GHIJKLMNOPQRST"),
         "2 0 20 00 20 01 0123456789ABCDEFG"},
        {"name with a 0", Device(0x20, 1, 0x80, 0x10, std::string("a\0b", 3)), "2 0 20 00 20 01 a"},
    };
    for (const auto& row : rows)
        EXPECT_THAT(Locators({row.record}), ElementsAre(row.locator)) << row.name;
}

TEST_F(Scan, DevicesComeBeforeControllers) {
    const BYTES other = Device(0x20, 0xA0, 0x01, 0x0E, "Riser");
    EXPECT_THAT(Locators({FullSensorRecord(1, "Temp"), SECOND, CompactSensorRecord(2, "Fan"), GOOD,
                          OemRecord(BYTES(60, 9)), ControllerRecord(0x20, 0, 0xBF, "BMC"), other}),
                ElementsAre(GOOD_LINE, "0 0 A0 01 20 A0 Riser", SECOND_LINE, "2 0 20 FF 20 00 BMC"));
    // The same again, into a list of its own; and into a list that has something in it.
    EXPECT_EQ(Locators().size(), 4U);
    FRU_LOCATOR own;
    OrderedList<FRU_LOCATOR*> list;
    OrderedList<FRU_LOCATOR*>* argument = &list;
    list.Add(&own);
    ScanSystemForFruLocators(argument);
    EXPECT_EQ(list.Count(), 5U);
    EXPECT_EQ(list.First(), &own);
    list.Remove(&own);
    while (FRU_LOCATOR* const first = list.First())
        delete list.Remove(first);
}

TEST_F(Scan, Requests) {
    EXPECT_EQ(Locators({Device(0x20, 1, 0x80, 0x10, std::string(14, 'n')), OemRecord(BYTES(27, 9))}).size(), 1U);
    // Counting: a header a record. Decoding: the header, then pieces of 16 bytes and a rest.
    const auto get = [](UINT8 reservation, UINT8 id, UINT8 offset, UINT8 count) {
        return Line(0x20, 0x0A, 0, GET_SDR, {reservation, 0, id, 0, offset, count});
    };
    const std::string reserve = Line(0x20, 0x0A, 0, RESERVE, {});
    EXPECT_THAT(Requests(), ElementsAre(reserve, get(1, 0, 0, 5), reserve, get(2, 2, 0, 5), reserve, get(3, 0, 0, 5),
                                        get(3, 0, 5, 16), get(3, 0, 21, 9), reserve, get(4, 2, 0, 5), get(4, 2, 5, 16),
                                        get(4, 2, 21, 11)));
}

TEST_F(Scan, RecordsThatEndIt) {
    const auto with = [](std::size_t byte, UINT8 value) {
        BYTES record = GOOD;
        record[byte] = value;
        return record;
    };
    BYTES shortOne{0, 0, 0x51, 0x12, 4, 0xC0, 0, 0, 0};
    BYTES shortName = GOOD;
    shortName[15] = 0xC4;
    BYTES noName = GOOD;
    noName[15] = 0xDF;
    const struct {
        const char* name;
        BYTES record;
        bool isCounted; ///< the first record is kept
        const char* trace;
    } rows[] = {
        {"type 03h", with(3, 0x03), false, "CountIPMI15SDRTypes - Unsupported SDR"},
        {"type 0Ah", with(3, 0x0A), false, "CountIPMI15SDRTypes - Unsupported SDR"},
        {"no such type", with(3, 0xFF), false, "CountIPMI15SDRTypes - Unsupported SDR"},
        {"version 01h", with(2, 0x01), true, "DecodeHeader - Unsupported IPMI Version"},
        {"version 52h", with(2, 0x52), true, "DecodeHeader - Unsupported IPMI Version"},
        {"length 4", shortOne, true, "DecodeHeader - Bad SDR Header Length"},
        {"longer than its name", shortName, true, "DecodeSDRType11V15 - Bad SDR Record Length"},
        {"bytes behind no name", noName, true, "DecodeSDRType11V15 - Bad SDR Record Length"},
        {"name longer than it", Device(0xC0, 1, 0x80, 0x10, "abc", 0xC4), true, "DecodeSDRType11V15 - Bad SDR Record"},
        {"controller's length", Slice(SECOND, 0, 18), true, "ReadRecFromBMC - Error Reading SDR"},
        {"length 251", OemRecord(BYTES(251, 9)), true, ""},
        {"length 255", OemRecord(BYTES(255, 9)), true, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const LINES expected = row.isCounted ? LINES{GOOD_LINE} : LINES{};
        EXPECT_EQ(Locators({GOOD, row.record, LogicalFruRecord(0x20, 0, 2, "behind")}), expected);
        EXPECT_THAT(TakeLog(), testing::HasSubstr(row.trace));
    }
    EXPECT_EQ(Locators({GOOD, OemRecord(BYTES(250, 9)), SECOND}), (LINES{GOOD_LINE, SECOND_LINE})) << "the longest";
    const BYTES sensors[] = {with(3, 0x01), with(3, 0x02), with(3, 0x08), with(3, 0x09),
                             with(3, 0x10), with(3, 0x13), with(3, 0x14), with(3, 0xC0)};
    for (BYTES sensor : sensors) {
        sensor[2] = 0x01; // what is not decoded is not looked at
        EXPECT_THAT(Locators({sensor, GOOD}), ElementsAre(GOOD_LINE));
    }
}

TEST_F(Scan, ErrorsAndChains) {
    // Three records: three exchanges of two to count them, then three of three.
    const struct {
        const char* name;
        FaultRule fault;
        std::size_t locators;
        const char* trace;
    } rows[] = {
        {"no reservation", {.value = 0xC1, .cmd = RESERVE}, 0, "CountIPMI15SDRTypes - Error Reserving SDR"},
        {"no record", {.value = 0xC5, .cmd = GET_SDR}, 0, "CountIPMI15SDRTypes - Error Reading SDR"},
        {"transport", {.action = FAULT_ACTION::TRANSPORT_ERROR, .cmd = GET_SDR}, 0, "GetAllSDRRecs - Error Reading"},
        {"reservation lost", {.value = 0xC5, .cmd = RESERVE, .occurrence = 5}, 1, "ReadRecFromBMC - Error Reserving"},
        {"header lost", {.value = 0xC5, .cmd = GET_SDR, .occurrence = 6}, 1, "ReadRecFromBMC - Error Reading SDR"},
        {"body lost", {.value = 0xC5, .cmd = GET_SDR, .occurrence = 7}, 1, "ReadRecFromBMC - Error Reading SDR"},
        {"transport lost", {.action = FAULT_ACTION::TRANSPORT_ERROR, .cmd = RESERVE, .occurrence = 6}, 2, ""},
        {"1 byte reservation",
         {.action = FAULT_ACTION::SHORT_ANSWER, .cmd = RESERVE, .occurrence = 5},
         1,
         "ReadRecFromBMC - Bad SDR Reserve Length"},
        {"3 byte reservation",
         {.action = FAULT_ACTION::LONG_ANSWER, .cmd = RESERVE, .occurrence = 4},
         0,
         "ReadRecFromBMC - Bad SDR Reserve Length"},
        {"empty answers", {.action = FAULT_ACTION::SHORT_ANSWER, .value = 99, .cmd = GET_SDR}, 0, ""},
        {"short header", {.action = FAULT_ACTION::SHORT_ANSWER, .value = 3, .cmd = GET_SDR, .occurrence = 6}, 1, ""},
        {"long answers", {.action = FAULT_ACTION::LONG_ANSWER, .value = 900, .cmd = GET_SDR}, 3, ""},
        {"to itself", {.action = FAULT_ACTION::NEXT_RECORD, .value = 2, .cmd = GET_SDR, .occurrence = 2}, 2, ""},
        {"to the start", {.action = FAULT_ACTION::NEXT_RECORD, .value = 0, .cmd = GET_SDR}, 1, ""},
        {"past the end", {.action = FAULT_ACTION::NEXT_RECORD, .value = 9, .cmd = GET_SDR}, 0, "Error Reading SDR"},
        {"to the end", {.action = FAULT_ACTION::NEXT_RECORD, .value = 0xFFFF, .cmd = GET_SDR}, 1, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_bmc.ClearFaults();
        m_bmc.AddFault(row.fault);
        EXPECT_EQ(Locators({GOOD, GOOD, GOOD}), LINES(row.locators, GOOD_LINE));
        EXPECT_THAT(TakeLog(), testing::HasSubstr(row.trace));
        EXPECT_LE(Requests().size(), 15U);
    }
    EXPECT_EQ(LastError(), L"") << "a scan leaves no message";
    m_bmc.ClearFaults();
    EXPECT_EQ(Locators({GOOD, SECOND}), (LINES{GOOD_LINE, SECOND_LINE})) << "the library goes on";
}

TEST_F(Scan, ARepositoryThatGrowsMeanwhile) {
    // A record is added between the counting and the decoding.
    Locators({GOOD});
    unsigned int asked = 0;
    m_bmc.SetScript([&](const IpmiRequest& request) {
        if (request.cmd == RESERVE && ++asked == 2)
            m_bmc.AddSdr(GOOD);
        return std::optional<IpmiAnswer>();
    });
    EXPECT_LE(Locators().size(), 2U);
}

} // namespace

} // namespace Frudata_Tests
