// Moving bytes from and to a device: the request for each kind of device, and the counts tried.
#include "tests/system/support.h"

#include "sim/samples.h"

namespace Frudata_Tests {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr UINT8 READ = 0x11;
constexpr UINT8 WRITE = 0x12;
constexpr UINT8 MASTER_WRITE_READ = 0x52;
constexpr ADDRESS EEPROM{.type = FRU_TYPE_AT24CO2, .lun = 2, .deviceAddress = 0xA4, .bus = 3};
constexpr ADDRESS THERMOMETER{.type = FRU_TYPE_DS1624S, .lun = 1, .deviceAddress = 0x90, .bus = 5};
constexpr ADDRESS MBMC{.type = FRU_TYPE_MBMC_FRU, .lun = 1, .deviceAddress = 0xA4, .bus = 3, .deviceId = 6};
/// The header of a FRU without areas.
const BYTES HEADER = CFruImageBuilder().Build(64);

class Access : public CSystemTest {
  protected:
    /// The counts of the requests since the last call: bytes asked for, or bytes to write.
    std::vector<int> Counts(UINT8 cmd) {
        std::vector<int> counts;
        for (const Exchange& exchange : m_bmc.Exchanges()) {
            const BYTES& data = exchange.request.data;
            const auto size = static_cast<int>(data.size());
            if (exchange.request.cmd == cmd)
                counts.push_back(cmd == READ ? data[3] : cmd == WRITE ? size - 3 : data[2] ? data[2] : size - 5);
        }
        m_bmc.ClearExchanges();
        return counts;
    }
};

TEST_F(Access, EveryKindOfDevice) {
    const BYTES image = SampleBmcFru();
    const BYTES small = SampleRiserFru();
    // Which of the device's two ways reads and which writes depends on the platform and the BMC's kind.
    const struct {
        const char* name;
        ADDRESS address;
        int platform;
        UINT16 product;
        ACCESS read, write;
        const BYTES& image;
    } rows[] = {
        {"FRU device", {.lun = 3, .bus = 4, .deviceId = 6}, 0, 1, ACCESS::FRU, ACCESS::FRU, small},
        {"EEPROM", EEPROM, 0, 1, ACCESS::EEPROM, ACCESS::EEPROM, image},
        {"thermometer", THERMOMETER, 0, 1, ACCESS::THERMOMETER, ACCESS::THERMOMETER, small},
        {"mBMC FRU elsewhere", MBMC, 1, 0x4311, ACCESS::EEPROM, ACCESS::EEPROM, image},
        {"mBMC FRU behind a BMC", MBMC, FRU_PLATFORM_MBMC, 1, ACCESS::FRU, ACCESS::EEPROM, small},
        {"mBMC FRU", MBMC, FRU_PLATFORM_MBMC, 0x4315, ACCESS::FRU, ACCESS::FRU, small},
        {"FRU device, mBMC", {.deviceId = 6}, FRU_PLATFORM_MBMC, 0x4312, ACCESS::FRU, ACCESS::FRU, small},
        {"EEPROM, mBMC", EEPROM, FRU_PLATFORM_MBMC, 0x4311, ACCESS::EEPROM, ACCESS::EEPROM, image},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Restart(row.platform);
        m_bmc.SetIdentity({.product = row.product});
        m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, image);
        m_bmc.AddEeprom(5, 0x90, EEPROM_KIND::DS1624S, small);
        m_bmc.AddFruDevice(6, small);
        EXPECT_EQ(Find(row.address), 0U);
        EXPECT_THAT(Requests(), ElementsAreArray(Reads(row.address, row.read, 0, 8)));
        EXPECT_EQ(LoadAt(row.address), 0U);
        EXPECT_THAT(Requests(), ElementsAreArray(Load(row.address, row.read, row.image)));
        Select(0);
        EXPECT_EQ(m_table->CommitConfigurationToSystem(m_table), 0U);
        EXPECT_EQ(Requests(), LINES{Line(0x20, 6, 0, 1, {})} +
                                  Writes(row.address, row.write, 0, Slice(row.image, 0, 8)) +
                                  Writes(row.address, row.write, Start(row.image, BOARD), InfoArea(row.image, BOARD)));
    }
    const ADDRESS none{.type = FRU_TYPE_NONE};
    EXPECT_EQ(LoadAt(none), FRU_STATUS_READ_FRU_ERROR);
    EXPECT_EQ(LastError(), Text(109, Identifier(none).c_str()));
    EXPECT_THAT(Requests(), ElementsAre());
}

TEST_F(Access, ControllersBehindTheBmc) {
    const struct {
        ADDRESS address;
        UINT8 channel, target;
    } rows[] = {
        {{.deviceAddress = 0xC0, .bus = 0}, 0, 0xC0},  // found in the SDR repository
        {{.deviceAddress = 0x2C, .bus = 7}, 7, 0x2C},  // the bus is the channel
        {{.controller = 0xC2, .deviceId = 4}, 0, 0xC2} // a controller of its own
    };
    for (const auto& row : rows) {
        m_bmc.AddController(row.channel, row.target).AddFruDevice(row.address.deviceId, SampleRiserFru());
        EXPECT_EQ(LoadAt(row.address), 0U);
        ADDRESS seen = row.address;
        seen.controller = row.target;
        EXPECT_EQ(m_bmc.Exchanges().at(1).channel, row.channel);
        EXPECT_THAT(Requests(FRONT::BRIDGE), ElementsAreArray(Load(seen, ACCESS::FRU, SampleRiserFru())));
        Select(NumberOfFrus() - 1);
        EXPECT_EQ(Set(FRU_AREA_BOARD, FRU_FIELD_BOARD_SERIAL_NUMBER, "bridged"), 0U);
        EXPECT_EQ(m_table->CommitConfigurationToSystem(m_table), 0U);
        const BYTES& device = m_bmc.Controller(row.channel, row.target).FruBytes(row.address.deviceId);
        EXPECT_EQ(Requests(FRONT::BRIDGE), Writes(seen, ACCESS::FRU, 0, Slice(device, 0, 8)) +
                                               Writes(seen, ACCESS::FRU, 8, InfoArea(device, BOARD)));
        EXPECT_NE(device, SampleRiserFru());
    }
    // Each of these conditions keeps a request from being bridged.
    m_bmc.AddFruDevice(0, HEADER);
    m_bmc.AddFruDevice(1, HEADER);
    for (const ADDRESS& address :
         {ADDRESS{.deviceAddress = 0xC0}, ADDRESS{.deviceAddress = 0xC0, .bus = 0, .deviceId = 1}}) {
        EXPECT_EQ(Find(address), 0U);
        EXPECT_THAT(Requests(), ElementsAreArray(Reads(address, ACCESS::FRU, 0, 8)));
    }
}

TEST_F(Access, BridgedFrame) {
    m_bmc.AddController(0, 0xC0).AddFruDevice(0, HEADER);
    EXPECT_EQ(Find({.deviceAddress = 0xC0, .bus = 0}), 0U);
    BYTES frame = m_bmc.Exchanges().at(0).request.data;
    ASSERT_EQ(frame.size(), 12U);
    EXPECT_EQ(ZeroChecksum(&frame[4], 8), 0);
    frame[5] &= 3; // without the sequence number, and then without the checksum
    EXPECT_EQ(Slice(frame, 0, 11), (BYTES{0, 0xC0, 0x28, 0x18, 0x20, 0x02, 0x11, 0, 0, 0, 8}));
    EXPECT_THAT(Requests(), ElementsAre(testing::StartsWith("20 06/0 34: 00 C0"), "20 06/0 33:"));
}

TEST_F(Access, CountsOfReads) {
    const std::vector<int> C8(20, 0xC8);
    const std::vector<int> CA(20, 0xCA);
    const std::vector<int> ones = {8, 4, 0, 1, 1, 1, 1, 1, 1, 1, 1};
    const struct {
        std::vector<int> codes, counts;
        EFI_STATUS status;
    } rows[] = {
        {{}, {8}, 0},
        {C8, {8, 4, 0, 1}, FRU_STATUS_READ_FRU_ERROR},
        {CA, {8, 4, 0, 1}, FRU_STATUS_READ_FRU_ERROR},
        {{0xC8}, {8, 4, 4}, 0},
        {{0xC8, 0xCA, 0xC8}, ones, 0},
        {{0xC8, 0xCA, NOTHING_MOVED}, ones, 0}, // a device that accepts a count of 0
        {{0xC8, OWN_ANSWER, 0xCA}, {8, 4, 4, 0, 1, 1, 1, 1}, 0},
        {{0xC0, 0xC0, 0xC0}, {8, 8, 8, 8}, 0},
        {std::vector<int>(300, 0xC0), std::vector<int>(301, 8), 0},
        {{0xC8, 0xC0, OWN_ANSWER, 0xC0}, {8, 4, 4, 4, 4}, 0},
        {{0xC9}, {8}, FRU_STATUS_READ_FRU_ERROR},
        {{0xC7}, {8}, FRU_STATUS_READ_FRU_ERROR},
        {{0xFF}, {8}, FRU_STATUS_READ_FRU_ERROR},
        {{0x80}, {8}, FRU_STATUS_READ_FRU_ERROR},
        {{0xC8, 0xC9}, {8, 4}, FRU_STATUS_READ_FRU_ERROR},
    };
    m_bmc.AddFruDevice(0, HEADER);
    m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, HEADER);
    for (const auto& row : rows) {
        for (const auto& [address, cmd] : {std::pair(ADDRESS{}, READ), std::pair(EEPROM, MASTER_WRITE_READ)}) {
            SCOPED_TRACE(testing::PrintToString(row.codes) + testing::PrintToString(cmd));
            // An EEPROM asked for no byte moves its pointer only.
            if (cmd == MASTER_WRITE_READ && row.counts == ones && row.codes[2] == NOTHING_MOVED)
                continue;
            Answer(cmd, row.codes);
            EXPECT_EQ(Find(address), row.status);
            EXPECT_EQ(Counts(cmd), row.counts);
            EXPECT_EQ(LastError(), row.status ? Text(123) : L"");
        }
    }
}

TEST_F(Access, RestsOfReads) {
    // A multi-record of 13 bytes: its size first, then 8 and 5.
    m_bmc.AddFruDevice(0, CFruImageBuilder().MultiRecord(0xC0, {1, 2, 3, 4, 5, 6, 7, 8}).Build());
    EXPECT_EQ(LoadAt({}), 0U);
    EXPECT_THAT(Counts(READ), ElementsAre(8, 3, 8, 5));
    Answer(READ, {OWN_ANSWER, OWN_ANSWER, OWN_ANSWER, 0xC8});
    EXPECT_EQ(LoadAt({}), 0U);
    EXPECT_THAT(Counts(READ), ElementsAre(8, 3, 8, 5, 1, 1, 1, 1, 1));
    Answer(READ, {OWN_ANSWER, 0xCA});
    EXPECT_EQ(LoadAt({}), 0U);
    EXPECT_THAT(Counts(READ), ElementsAre(8, 3, 1, 1, 1, 8, 5)) << "below a step there is one byte";
}

TEST_F(Access, CountsOfWrites) {
    const std::vector<int> C7(20, 0xC7);
    const struct {
        std::vector<int> codes, counts;
        bool isGood;
    } rows[] = {
        {{}, {8}, true},
        {C7, {8, 4, 0}, false}, // and no further: there is no step to one byte here
        {{0xC7}, {8, 4, 4}, true},
        {{0xC7, 0xC7, NOTHING_MOVED}, {8, 4, 0}, false},
        {{0xC0, 0xC0}, {8, 8, 8}, true},
        {std::vector<int>(300, 0xC0), std::vector<int>(301, 8), true},
        {{0xC7, 0xC0, OWN_ANSWER, 0xC0}, {8, 4, 4, 4, 4}, true},
        {{0xC8}, {8}, false},
        {{0xCA}, {8}, false},
        {{0x80}, {8}, false},
        {{0xC7, 0xFF}, {8, 4}, false},
    };
    m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, HEADER);
    EXPECT_EQ(LoadImage(HEADER), 0U);
    EXPECT_EQ(LoadAt(EEPROM), 0U);
    Counts(READ);
    for (const auto& row : rows) {
        for (unsigned int fru = 0; fru < 2; ++fru) {
            SCOPED_TRACE(testing::PrintToString(row.codes) + testing::PrintToString(fru));
            const UINT8 cmd = fru == 0 ? WRITE : MASTER_WRITE_READ;
            Select(fru);
            Answer(cmd, row.codes);
            EXPECT_EQ(m_table->CommitConfigurationToSystem(m_table), row.isGood ? 0 : FRU_STATUS_WRITE_FRU_ERROR);
            EXPECT_EQ(Counts(cmd), row.counts);
            EXPECT_EQ(LastError(), row.isGood ? L"" : Text(113, Identifier(fru == 0 ? ADDRESS{} : EEPROM).c_str()));
        }
    }
    EXPECT_EQ(m_bmc.FruBytes(0), HEADER);
}

TEST_F(Access, AnswersOfOtherLengths) {
    const struct {
        FAULT_ACTION action;
        UINT16 value;
        EFI_STATUS status;
    } rows[] = {{FAULT_ACTION::SHORT_ANSWER, 1, FRU_STATUS_CHECKSUM_ERROR}, // missing bytes are 0
                {FAULT_ACTION::SHORT_ANSWER, 8, FRU_STATUS_NOT_IPMI_FRU},
                {FAULT_ACTION::SHORT_ANSWER, 9, FRU_STATUS_NOT_IPMI_FRU},
                {FAULT_ACTION::LONG_ANSWER, 1, 0},
                {FAULT_ACTION::LONG_ANSWER, 4000, 0}};
    m_bmc.AddFruDevice(0, HEADER);
    m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, HEADER);
    for (const auto& row : rows) {
        m_bmc.ClearFaults();
        m_bmc.AddFault({.action = row.action, .value = row.value});
        EXPECT_EQ(Find({}), row.status) << row.value;
        EXPECT_EQ(Find(EEPROM), row.status) << row.value;
    }
    // The count that a FRU device says it returned is not looked at.
    m_bmc.ClearFaults();
    m_bmc.SetScript([](const IpmiRequest&) {
        IpmiAnswer answer{.data = {200}};
        Append(answer.data, Slice(HEADER, 0, 8));
        return std::optional(answer);
    });
    EXPECT_EQ(Find({}), 0U);
}

} // namespace

} // namespace Frudata_Tests
