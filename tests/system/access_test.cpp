// Moving bytes from and to a device: the request for each kind of device, and the counts tried.
#include "tests/system/support.h"

using namespace Frudata_Tests;

namespace {

constexpr UINT8 READ = 0x11;
constexpr UINT8 WRITE = 0x12;
constexpr UINT8 MASTER_WRITE_READ = 0x52;
constexpr ADDRESS EEPROM{.type = FRU_TYPE_AT24CO2, .lun = 2, .deviceAddress = 0xA4, .bus = 3};
constexpr ADDRESS THERMOMETER{.type = FRU_TYPE_DS1624S, .lun = 1, .deviceAddress = 0x90, .bus = 5};
constexpr ADDRESS MBMC{.type = FRU_TYPE_MBMC_FRU, .lun = 1, .deviceAddress = 0xA4, .bus = 3, .deviceId = 6};
/// The header of a FRU without areas.
const BYTES HEADER = FruImage::CImageBuilder().Build(64);

class CAccessTest : public CSystemTest {
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

TEST_F(CAccessTest, EveryKindOfDevice) {
    const BYTES image = SampleBmcFru();
    const BYTES small = SampleRiserFru();
    // Which of the device's two ways reads and which writes depends on the platform and the BMC's kind.
    const struct {
        ADDRESS address;
        int platform;
        UINT16 product;
        ACCESS read, write;
        const BYTES& image;
        UINT8 controller = 0x20, channel = 0; ///< behind the BMC
    } rows[] = {
        {{.lun = 3, .bus = 4, .deviceId = 6}, 0, 1, ACCESS::FRU, ACCESS::FRU, small},
        {EEPROM, 0, 1, ACCESS::EEPROM, ACCESS::EEPROM, image},
        {THERMOMETER, 0, 1, ACCESS::THERMOMETER, ACCESS::THERMOMETER, small},
        {MBMC, 1, 0x4311, ACCESS::EEPROM, ACCESS::EEPROM, image},
        {MBMC, FRU_PLATFORM_MBMC, 1, ACCESS::FRU, ACCESS::EEPROM, small},
        {MBMC, FRU_PLATFORM_MBMC, 0x4315, ACCESS::FRU, ACCESS::FRU, small},
        {{.deviceId = 6}, FRU_PLATFORM_MBMC, 0x4312, ACCESS::FRU, ACCESS::FRU, small},
        {EEPROM, FRU_PLATFORM_MBMC, 0x4311, ACCESS::EEPROM, ACCESS::EEPROM, image},
        // Found in the SDR repository; the bus is the channel; a controller of its own.
        {{.deviceAddress = 0xC0, .bus = 0}, 0, 1, ACCESS::FRU, ACCESS::FRU, small, 0xC0},
        {{.deviceAddress = 0x2C, .bus = 7}, 0, 1, ACCESS::FRU, ACCESS::FRU, small, 0x2C, 7},
        {{.controller = 0xC2, .deviceId = 4}, 0, 1, ACCESS::FRU, ACCESS::FRU, small, 0xC2},
        // Each of these conditions keeps a request from being bridged.
        {{.deviceAddress = 0xC0}, 0, 1, ACCESS::FRU, ACCESS::FRU, image},
        {{.deviceAddress = 0xC0, .bus = 0, .deviceId = 6}, 0, 1, ACCESS::FRU, ACCESS::FRU, small},
    };
    m_bmc.AddFruDevice(0, image);
    m_bmc.AddFruDevice(6, small);
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(m_table->DeInitialize(m_table), 0U);
        EXPECT_EQ(m_table->Initialize(m_table, row.platform), 0U);
        m_bmc.SetIdentity({.product = row.product});
        m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, image);
        m_bmc.AddEeprom(5, 0x90, EEPROM_KIND::DS1624S, small);
        const bool isBridged = row.controller != 0x20;
        const FRONT front = isBridged ? FRONT::BRIDGE : g_front;
        ADDRESS seen = row.address;
        seen.controller = row.controller;
        if (isBridged)
            m_bmc.AddController(row.channel, row.controller).AddFruDevice(seen.deviceId, small);
        Requests();
        EXPECT_EQ(Find(row.address), 0U);
        EXPECT_TRUE(!isBridged || m_bmc.Exchanges().at(1).channel == row.channel);
        EXPECT_EQ(Requests(front), Reads(seen, row.read, 0, 8));
        EXPECT_EQ(LoadAt(row.address), 0U);
        EXPECT_EQ(Requests(front), Load(seen, row.read, row.image));
        Select(0);
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(Requests(front), (isBridged ? REQUESTS() : GET_DEVICE_ID) +
                                       Writes(seen, row.write, 0, Slice(row.image, 0, 8)) +
                                       Writes(seen, row.write, Start(row.image, BOARD), InfoArea(row.image, BOARD)));
    }
}

TEST_F(CAccessTest, Counts) {
    const std::vector<int> ones = {8, 4, 0, 1, 1, 1, 1, 1, 1, 1, 1};
    constexpr EFI_STATUS noRead = FRU_STATUS_READ_FRU_ERROR;
    constexpr EFI_STATUS noWrite = FRU_STATUS_WRITE_FRU_ERROR;
    const struct {
        bool isRead;
        std::vector<int> codes, counts;
        EFI_STATUS status;
    } rows[] = {
        {true, std::vector<int>(20, 0xC8), {8, 4, 0, 1}, noRead},
        {true, std::vector<int>(20, 0xCA), {8, 4, 0, 1}, noRead},
        {true, {0xC8}, {8, 4, 4}, 0},
        {true, {0xC8, 0xCA, 0xC8}, ones, 0},
        {true, {0xC8, 0xCA, NOTHING_MOVED}, ones, 0}, // a device that accepts a count of 0
        {true, {0xC8, OWN_ANSWER, 0xCA}, {8, 4, 4, 0, 1, 1, 1, 1}, 0},
        {true, std::vector<int>(300, 0xC0), std::vector<int>(301, 8), 0},
        {true, {0xC8, 0xC0, OWN_ANSWER, 0xC0}, {8, 4, 4, 4, 4}, 0},
        {true, {0xC7}, {8}, noRead},
        {true, {0xC8, 0xC9}, {8, 4}, noRead},
        {false, std::vector<int>(20, 0xC7), {8, 4, 0}, noWrite}, // there is no step to one byte here
        {false, {0xC7}, {8, 4, 4}, 0},
        {false, {0xC7, 0xC7, NOTHING_MOVED}, {8, 4, 0}, noWrite},
        {false, std::vector<int>(300, 0xC0), std::vector<int>(301, 8), 0},
        {false, {0xC7, 0xC0, OWN_ANSWER, 0xC0}, {8, 4, 4, 4, 4}, 0},
        {false, {0xC8}, {8}, noWrite},
        {false, {0xCA}, {8}, noWrite},
        {false, {0xC7, 0xFF}, {8, 4}, noWrite},
    };
    m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, HEADER);
    EXPECT_EQ(LoadImage(HEADER), 0U);
    EXPECT_EQ(LoadAt(EEPROM), 0U);
    for (const auto& [isRead, codes, counts, status] : rows) {
        for (const unsigned int fru : {0U, 1U}) {
            SCOPED_TRACE(testing::PrintToString(codes) + testing::PrintToString(fru));
            // An EEPROM asked for no byte moves its pointer only.
            if (fru == 1 && counts == ones && codes[2] == NOTHING_MOVED)
                continue;
            const ADDRESS address = fru == 0 ? ADDRESS{} : EEPROM;
            const UINT8 cmd = fru == 1 ? MASTER_WRITE_READ : isRead ? READ : WRITE;
            Select(fru);
            Requests();
            Answer(cmd, codes);
            EXPECT_EQ(isRead ? Find(address) : CommitIt(), status);
            EXPECT_EQ(Counts(cmd), counts);
            const std::wstring error = isRead ? Text(123) : Text(113, Identifier(address).c_str());
            EXPECT_EQ(LastError(), status == 0 ? L"" : error);
        }
    }
    EXPECT_EQ(m_bmc.FruBytes(0), HEADER);
}

TEST_F(CAccessTest, RestsOfReads) {
    // A multi-record of 13 bytes: its size first, then 8 and 5.
    m_bmc.AddFruDevice(0, FruImage::CImageBuilder().MultiRecord(0xC0, {1, 2, 3, 4, 5, 6, 7, 8}).Build());
    for (const auto& [codes, counts] :
         {std::pair(std::vector<int>{}, std::vector<int>{8, 3, 8, 5}),
          {{OWN_ANSWER, OWN_ANSWER, OWN_ANSWER, 0xC8}, {8, 3, 8, 5, 1, 1, 1, 1, 1}},
          {{OWN_ANSWER, 0xCA}, {8, 3, 1, 1, 1, 8, 5}}}) { // below a step there is one byte
        Answer(READ, codes);
        EXPECT_EQ(LoadAt({}), 0U);
        EXPECT_EQ(Counts(READ), counts);
    }
}

TEST_F(CAccessTest, AnswersOfOtherLengths) {
    m_bmc.AddFruDevice(0, HEADER);
    m_bmc.AddEeprom(3, 0xA4, EEPROM_KIND::AT24, HEADER);
    for (const auto& [action, value, status] :
         {std::tuple(FAULT_ACTION::SHORT_ANSWER, UINT16{1}, FRU_STATUS_CHECKSUM_ERROR), // missing bytes are 0
          {FAULT_ACTION::SHORT_ANSWER, UINT16{9}, FRU_STATUS_NOT_IPMI_FRU},
          {FAULT_ACTION::LONG_ANSWER, UINT16{4000}, FRU_STATUS_SUCCESS}}) {
        m_bmc.ClearFaults();
        m_bmc.AddFault({.action = action, .value = value});
        EXPECT_EQ(Find({}), status) << value;
        EXPECT_EQ(Find(EEPROM), status) << value;
    }
    // Nothing of a bridged answer is left for the BMC's own, which is shorter.
    const ADDRESS behind{.deviceAddress = 0xC0, .bus = 0};
    m_bmc.AddController(0, 0xC0).AddFruDevice(0, HEADER);
    for (const auto& [action, status] : {std::pair(FAULT_ACTION::COMPLETION_CODE, FRU_STATUS_READ_FRU_ERROR),
                                         {FAULT_ACTION::SHORT_ANSWER, FRU_STATUS_CHECKSUM_ERROR}}) {
        m_bmc.ClearFaults();
        m_bmc.AddFault({.action = action, .value = 1, .controller = 0x20});
        EXPECT_EQ(Find({}), status);
        m_bmc.ClearFaults();
        EXPECT_EQ(Find(behind), 0U);
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
