// Writing back: which areas go out, what the host is told meanwhile, and what a failure leaves.
#include "tests/system/support.h"

#include <csignal>
#include <unistd.h>

using namespace Frudata_Tests;

namespace {

/// In the place of a field: the whole area.
constexpr int WHOLE = -1;

class CCommitTest : public CSystemTest {
  protected:
    void LoadAndSelect(const BYTES& image) {
        ASSERT_EQ(LoadImage(image), 0U);
        Select(NumberOfFrus() - 1);
        Requests();
        g_progress.clear();
    }
    void Edit(FRU_AREA area, int field, const BYTES& data) {
        const auto size = static_cast<unsigned int>(data.size());
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
        if (field == WHOLE) {
            EXPECT_EQ(m_table->SetAreaData(m_table, data.data(), size), 0U) << LastError().c_str();
            return;
        }
        EXPECT_EQ(m_table->SelectFieldInteger(m_table, static_cast<unsigned int>(field)), 0U);
        EXPECT_EQ(m_table->SetFieldDataValue(m_table, data.data(), size), 0U);
    }
    /// The requests of a commit that writes the header and these areas of FRU device 0.
    REQUESTS Expected(const std::vector<unsigned int>& areas) {
        const BYTES& device = m_bmc.FruBytes(0);
        REQUESTS requests = GET_DEVICE_ID + Writes({}, ACCESS::FRU, 0, Slice(IMAGE, 0, 8));
        for (const unsigned int area : areas)
            requests = requests + Writes({}, ACCESS::FRU, Start(IMAGE, area),
                                         area == INTERNAL ? Slice(device, 8, 16) : InfoArea(device, area));
        return requests;
    }
    std::vector<std::wstring> Steps(std::initializer_list<unsigned int> texts) {
        std::vector<std::wstring> steps{L"1 " + Text(64, Identifier({}).c_str()) + L" 0 0"};
        for (const unsigned int text : texts)
            steps.push_back(L"1 " + Format(text) + L" 0 0");
        return steps;
    }
};

TEST_F(CCommitTest, WhatIsWritten) {
    const struct {
        FRU_AREA area;
        int field;
        BYTES value; ///< none: not edited
        std::vector<unsigned int> areas;
        bool isChanged; ///< on the device
    } rows[] = {
        {FRU_AREA_NONE, 0, {}, {BOARD}, false},
        {FRU_AREA_PRODUCT, 1, {'N', 'W'}, {BOARD, PRODUCT}, true},
        {FRU_AREA_PRODUCT, 7, {'x', 'y'}, {BOARD}, false}, // a custom field does not mark this area
        {FRU_AREA_BOARD, 4, {'M', 'B'}, {BOARD}, true},
        {FRU_AREA_BOARD, 0, {1, 2, 3}, {BOARD}, true},
        {FRU_AREA_BOARD, 7, {'x', 'y'}, {BOARD}, true},
        {FRU_AREA_CHASSIS, 1, {'C', 'H'}, {CHASSIS, BOARD}, true},
        {FRU_AREA_CHASSIS, 3, {'x', 'y'}, {CHASSIS, BOARD}, true},
        {FRU_AREA_INTERNAL_USE, WHOLE, BYTES(16, 9), {INTERNAL, BOARD}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.area << ' ' << row.field);
        LoadAndSelect(IMAGE);
        if (!row.value.empty())
            Edit(row.area, row.field, row.value);
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(Requests(), Expected(row.areas));
        EXPECT_EQ(m_bmc.FruBytes(0) != IMAGE, row.isChanged);
        EXPECT_EQ(g_progress, Steps({66, 67, 68, 69}));
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(Requests(), Expected({BOARD})) << "the other areas are written once";
        EXPECT_EQ(LastError(), L"");
    }
}

TEST_F(CCommitTest, MultiRecords) {
    const BYTES records{0xC1, 0x02, 9, 0xD3, 0x61, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0xC2, 0x82, 1, 0xF6, 0xC5, 0x0A};
    const std::size_t start = Start(IMAGE, MULTIRECORD);
    LoadAndSelect(IMAGE);
    Edit(FRU_AREA_MULTIRECORD, WHOLE, records);
    EXPECT_EQ(CommitIt(), 0U);
    REQUESTS expected = Expected({BOARD});
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

TEST_F(CCommitTest, AreasArePackedAndMayBeAbsent) {
    const BYTES riser = SampleRiserFru();
    const BYTES board = InfoArea(riser, BOARD);
    const BYTES moved = With(With(riser, 3, {3}), 24, board);
    const BYTES bare = FruImage::CImageBuilder().Build(64);
    const BYTES empty = With(riser, 1, {1});
    EXPECT_EQ(m_table->SetProgressCallback(m_table, nullptr), 0U);
    for (const auto& [image, written] : {std::pair(moved, With(moved, 8, board)), // the gap before the board closes
                                         {bare, bare},
                                         {empty, empty}}) { // an area without bytes takes no place
        LoadAndSelect(image);
        EXPECT_EQ(CommitIt(), 0U);
        EXPECT_EQ(Requests().size(), image == bare ? 2U : 2U + board.size() / 8);
        EXPECT_EQ(m_bmc.FruBytes(0), written);
    }
}

TEST_F(CCommitTest, FailureAtEachWrite) {
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
        TakeLog();
        const bool isSent = done % 2 != 0;
        m_bmc.AddFault({.action = isSent ? FAULT_ACTION::COMPLETION_CODE : FAULT_ACTION::TRANSPORT_ERROR,
                        .value = 0xC9,
                        .cmd = 0x12,
                        .occurrence = static_cast<unsigned int>(done + 1)});
        EXPECT_EQ(CommitIt(), FRU_STATUS_WRITE_FRU_ERROR);
        EXPECT_EQ(LastError(), Text(113, Identifier({}).c_str()));
        EXPECT_EQ(TakeLog(), (isSent ? "CFru::WriteFruDataToBmc - Error Writing FRU\r\n" : std::string()) +
                                 "CFru::WriteToSystem - Error Writing System\r\n"
                                 "FruData::CommitConfigurationToSystem - Write FRU Error\r\n");
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

// The host's callback may look around: its calls send nothing.
unsigned int LookAround(PROGRESS_CALLBACK_TYPE, const WCHAR*, unsigned int, unsigned int) {
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    const WCHAR* text = nullptr;
    EXPECT_EQ(table->SelectList(table, FRU_LIST_SYSTEM), 0U);
    EXPECT_EQ(table->SelectFru(table, 0), 0U);
    EXPECT_EQ(table->SelectAreaEnum(table, FRU_AREA_PRODUCT), 0U);
    EXPECT_EQ(table->SelectFieldInteger(table, 1), 0U);
    EXPECT_EQ(table->GetFieldStringValue(table, text), 0U);
    g_progress.emplace_back(text);
    return 0;
}

TEST_F(CCommitTest, CallbacksMayReadAndSignalsStayTheHosts) {
    LoadAndSelect(IMAGE);
    EXPECT_EQ(m_table->SetProgressCallback(m_table, LookAround), 0U);
    std::vector<sighandler_t> before;
    for (int number = 1; number < NSIG; ++number)
        before.push_back(std::signal(number, SIG_IGN));
    alarm(1000);
    EXPECT_EQ(CommitIt(), 0U);
    // The KCS waits use the alarm of the process, the other ways use no signal.
    EXPECT_EQ(alarm(0) != 0, g_front != FRONT::KCS);
    for (int number = 1; number < NSIG; ++number) {
        const bool isTaken = number == SIGALRM && g_front == FRONT::KCS;
        const sighandler_t after = std::signal(number, before[static_cast<std::size_t>(number - 1)]);
        EXPECT_TRUE(after == SIG_ERR || after == (isTaken ? SIG_DFL : SIG_IGN)) << number;
    }
    EXPECT_EQ(g_progress, std::vector<std::wstring>(5, L"NW-2000 Server"));
    EXPECT_EQ(m_bmc.FruBytes(0), IMAGE);
}

// The host's callback has enough of it.
unsigned int OnlyOnce(PROGRESS_CALLBACK_TYPE, const WCHAR* message, unsigned int, unsigned int) {
    g_progress.emplace_back(message);
    return GetFruDataInterface()->SetProgressCallback(nullptr, nullptr);
}

TEST_F(CCommitTest, ACallbackThatClearsItselfIsNotCalledAgain) {
    LoadAndSelect(IMAGE);
    EXPECT_EQ(m_table->SetProgressCallback(m_table, OnlyOnce), 0U);
    EXPECT_EQ(CommitIt(), 0U);
    EXPECT_EQ(g_progress, std::vector<std::wstring>{Text(64, Identifier({}).c_str())});
}

} // namespace
