// Writing back: which areas go out, what the host is told meanwhile, and what a failure leaves.
#include "tests/system/support.h"

#include "sim/samples.h"

namespace Frudata_Tests {

namespace {

using testing::ElementsAre;

constexpr UINT8 WRITE = 0x12;
const BYTES IMAGE = SampleBmcFru();

class Commit : public CSystemTest {
  protected:
    void LoadAndSelect(const BYTES& image) {
        ASSERT_EQ(LoadImage(image), 0U);
        Select(NumberOfFrus() - 1);
        Requests();
    }
    EFI_STATUS CommitIt() { return m_table->CommitConfigurationToSystem(m_table); }
    EFI_STATUS SetArea(FRU_AREA area, const BYTES& data) {
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
        return m_table->SetAreaData(m_table, data.data(), static_cast<unsigned int>(data.size()));
    }
    EFI_STATUS SetCustom(FRU_AREA area, unsigned int field, const BYTES& data) {
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
        EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
        return m_table->SetFieldDataValue(m_table, data.data(), static_cast<unsigned int>(data.size()));
    }
    /// The requests of a commit that writes the header and these areas of FRU device 0.
    LINES Expected(const std::vector<unsigned int>& areas) {
        const BYTES& device = m_bmc.FruBytes(0);
        LINES lines = LINES{Line(0x20, 6, 0, 1, {})} + Writes({}, ACCESS::FRU, 0, Slice(IMAGE, 0, 8));
        for (const unsigned int area : areas)
            lines = lines + Writes({}, ACCESS::FRU, Start(IMAGE, area),
                                   area == INTERNAL ? Slice(device, 8, 16) : InfoArea(device, area));
        return lines;
    }
    std::vector<std::wstring> Steps(std::initializer_list<unsigned int> texts) {
        std::vector<std::wstring> steps{L"1 " + Text(64, Identifier({}).c_str()) + L" 0 0"};
        for (const unsigned int text : texts)
            steps.push_back(L"1 " + Format(text) + L" 0 0");
        return steps;
    }
};

TEST_F(Commit, WhatIsWritten) {
    const auto set = [this](FRU_AREA area, FRU_FIELD field, const std::string& value) {
        return [=, this] { return Set(area, field, value); };
    };
    const struct {
        const char* name;
        std::function<EFI_STATUS()> edit;
        std::vector<unsigned int> areas;
        bool isChanged; ///< on the device
    } rows[] = {
        {"nothing", [] { return 0U; }, {BOARD}, false},
        {"product field", set(FRU_AREA_PRODUCT, FRU_FIELD_PRODUCT_NAME, "NW-3000"), {BOARD, PRODUCT}, true},
        {"product custom field",
         [this] {
             return SetCustom(FRU_AREA_PRODUCT, 7, {'x', 'y'});
         },
         {BOARD},
         false},
        {"board field", set(FRU_AREA_BOARD, FRU_FIELD_BOARD_PART_NUMBER, "MB-3"), {BOARD}, true},
        {"board date",
         [this] {
             return SetCustom(FRU_AREA_BOARD, 0, {1, 2, 3});
         },
         {BOARD},
         true},
        {"board custom field",
         [this] {
             return SetCustom(FRU_AREA_BOARD, 7, {'x', 'y'});
         },
         {BOARD},
         true},
        {"chassis field", set(FRU_AREA_CHASSIS, FRU_FIELD_CHASSIS_PART_NUMBER, "CH-3"), {CHASSIS, BOARD}, true},
        {"chassis custom field",
         [this] {
             return SetCustom(FRU_AREA_CHASSIS, 3, {'x', 'y'});
         },
         {CHASSIS, BOARD},
         true},
        {"internal use", [this] { return SetArea(FRU_AREA_INTERNAL_USE, BYTES(16, 9)); }, {INTERNAL, BOARD}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        LoadAndSelect(IMAGE);
        ASSERT_EQ(row.edit(), 0U);
        g_progress.clear();
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(Requests(), Expected(row.areas));
        EXPECT_EQ(m_bmc.FruBytes(0) != IMAGE, row.isChanged);
        EXPECT_EQ(g_progress, Steps({66, 67, 68, 69}));
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(Requests(), Expected({BOARD})) << "the other areas are written once";
        EXPECT_EQ(LastError(), L"");
    }
}

TEST_F(Commit, MultiRecords) {
    const BYTES records{0xC1, 0x02, 9, 0xD3, 0x61, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0xC2, 0x82, 1, 0xF6, 0xC5, 0x0A};
    const std::size_t start = Start(IMAGE, MULTIRECORD);
    LoadAndSelect(IMAGE);
    ASSERT_EQ(SetArea(FRU_AREA_MULTIRECORD, records), 0U) << LastError().c_str();
    EXPECT_EQ(CommitIt(), 0U);
    LINES expected = Expected({BOARD});
    for (const auto& [offset, length] : {std::pair(0U, 9U), {14U, 1U}}) {
        for (std::size_t byte = offset; byte < offset + 5; ++byte)
            expected = expected + Writes({}, ACCESS::FRU, start + byte, {records[byte]});
        expected = expected + Writes({}, ACCESS::FRU, start + offset + 5, Slice(records, offset + 5, length));
    }
    EXPECT_EQ(Requests(), expected);
    EXPECT_EQ(g_progress, Steps({66, 67, 68, 69, 70}));
    EXPECT_EQ(m_bmc.FruBytes(0), With(IMAGE, start, records));
    EXPECT_EQ(CommitIt(), 0U);
    EXPECT_EQ(Requests(), Expected({BOARD}));
}

TEST_F(Commit, AreasArePackedAndMayBeAbsent) {
    // A gap before the board area of a device closes: areas go out one behind the other.
    const BYTES riser = SampleRiserFru();
    BYTES moved = With(riser, 3, {3});
    const BYTES board = InfoArea(riser, BOARD);
    moved = With(moved, 24, board);
    LoadAndSelect(moved);
    EXPECT_EQ(m_table->SetProgressCallback(m_table, nullptr), 0U);
    EXPECT_EQ(CommitIt(), 0U);
    EXPECT_EQ(m_bmc.FruBytes(0), With(moved, 8, board));
    LoadAndSelect(CFruImageBuilder().Build(64));
    EXPECT_EQ(CommitIt(), 0U);
    EXPECT_EQ(Requests().size(), 2U) << "Get Device ID and the header";
    // An area without bytes takes no place.
    BYTES empty = riser;
    empty = With(empty, 1, {1});
    LoadAndSelect(empty);
    EXPECT_EQ(CommitIt(), 0U);
    EXPECT_EQ(m_bmc.FruBytes(0), empty);
}

TEST_F(Commit, NeedsASelectedFruOfTheSystem) {
    EXPECT_EQ(CommitIt(), FRU_STATUS_NOT_LOADED);
    EXPECT_EQ(LastError(), Text(125));
    ASSERT_EQ(LoadImage(IMAGE), 0U);
    Requests();
    for (const int list : {FRU_LIST_SYSTEM, FRU_LIST_FILE, FRU_LIST_NONE}) {
        m_table->SelectList(m_table, list);
        EXPECT_EQ(CommitIt(), FRU_STATUS_NO_SUCH_FIELD) << list;
        EXPECT_EQ(LastError(), Text(125));
    }
    // A FRU of a file stays selected and is still not written.
    Select(0);
    EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, L"out.fru", nullptr), 0U);
    EXPECT_EQ(m_table->LoadConfigurationFromFile(m_table, L"out.fru", nullptr), 0U);
    EXPECT_EQ(CommitIt(), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_THAT(Requests(), ElementsAre());
}

TEST_F(Commit, FailuresAreTraced) {
    // The mini-BMC's writer says nothing of its own.
    for (const auto& [platform, lines] : {std::pair(0, "CFru::WriteFruDataToBmc - Error Writing FRU\r\n"), {3, ""}}) {
        Restart(platform);
        m_bmc.SetIdentity({.product = 0x4311});
        LoadAndSelect(IMAGE);
        Answer(WRITE, {0xC9});
        TakeLog();
        EXPECT_EQ(CommitIt(), FRU_STATUS_WRITE_FRU_ERROR);
        EXPECT_EQ(TakeLog(), lines + std::string("CFru::WriteToSystem - Error Writing System\r\n"
                                                 "FruData::CommitConfigurationToSystem - Write FRU Error\r\n"));
    }
}

TEST_F(Commit, FailureAtEachWrite) {
    const auto edit = [this] {
        LoadAndSelect(IMAGE);
        EXPECT_EQ(Set(FRU_AREA_CHASSIS, FRU_FIELD_CHASSIS_PART_NUMBER, "CH-3"), 0U);
        EXPECT_EQ(Set(FRU_AREA_BOARD, FRU_FIELD_BOARD_PART_NUMBER, "MB-3"), 0U);
        EXPECT_EQ(Set(FRU_AREA_PRODUCT, FRU_FIELD_PRODUCT_PART_NUMBER, "NW-3"), 0U);
    };
    edit();
    EXPECT_EQ(CommitIt(), 0U);
    const BYTES edited = m_bmc.FruBytes(0);
    // Writes: the header, then chassis, board and product, which touch, in pieces of 8 bytes.
    const std::size_t start = Start(IMAGE, CHASSIS);
    const std::size_t productWrite = 1 + (Start(IMAGE, PRODUCT) - start) / 8;
    const std::size_t writes = productWrite + InfoArea(IMAGE, PRODUCT).size() / 8;
    for (std::size_t done = 0; done < writes; ++done) {
        SCOPED_TRACE(done);
        edit();
        const FAULT_ACTION action = done % 2 == 0 ? FAULT_ACTION::TRANSPORT_ERROR : FAULT_ACTION::COMPLETION_CODE;
        const auto occurrence = static_cast<unsigned int>(done + 1);
        m_bmc.AddFault({.action = action, .value = 0xC9, .cmd = WRITE, .occurrence = occurrence, .times = 1});
        EXPECT_EQ(CommitIt(), FRU_STATUS_WRITE_FRU_ERROR);
        EXPECT_EQ(LastError(), Text(113, Identifier({}).c_str()));
        EXPECT_EQ(Requests().size(), done + 2) << "the failure is the last request";
        m_bmc.ClearFaults();
        BYTES expected = IMAGE;
        const auto take = [&](std::size_t offset, std::size_t count) {
            expected = With(expected, offset, Slice(edited, offset, count));
        };
        take(start, done == 0 ? 0 : 8 * (done - 1));
        EXPECT_EQ(m_bmc.FruBytes(0), expected) << "what was written stays";
        // The next commit brings the board, and what the failed one had not come to: a failed area no longer
        // counts as changed.
        take(start, done == 0 ? InfoArea(IMAGE, CHASSIS).size() : 0);
        take(Start(IMAGE, BOARD), InfoArea(IMAGE, BOARD).size());
        take(Start(IMAGE, PRODUCT), done < productWrite ? InfoArea(IMAGE, PRODUCT).size() : 0);
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(m_bmc.FruBytes(0), expected);
    }
}

} // namespace

} // namespace Frudata_Tests
