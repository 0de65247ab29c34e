// Loading damaged and hostile images: statuses, messages, and where the reading stops.
#include "tests/system/support.h"

#include "frudata/debug.h"

#include <algorithm>
#include <map>

using namespace Frudata_Tests;

namespace {

/// Where the multi-records of `IMAGE` start.
const std::size_t RECORD = Start(IMAGE, MULTIRECORD);

using CLoadTest = CSystemTest;

/// `IMAGE` with another length byte in an info area.
BYTES Length(unsigned int area, UINT8 units) {
    return With(IMAGE, Start(IMAGE, area) + 1, {units});
}
/// `image` without its areas but `area`, which starts at `units`.
BYTES Only(unsigned int area, UINT8 units, const BYTES& image = IMAGE) {
    BYTES offsets(5);
    offsets[area - 1] = units;
    return With(image, 1, offsets);
}
/// An info area alone, `units` times 8 bytes large as it says, and good but for that.
BYTES LargeArea(unsigned int area, UINT8 units) {
    BYTES image(2200);
    const std::size_t size = units * std::size_t{8};
    image[0] = image[8] = 1;
    image[9] = units;
    image[area == CHASSIS ? 13 : area == BOARD ? 19 : 18] = 0xC1;
    image[7 + size] = ZeroChecksum(&image[8], size);
    return Only(area, 1, image);
}
/// A multi-record area alone; each record without its end-of-list bit where `isEndless`.
BYTES Records(std::size_t size, bool isEndless, UINT8 length = 250) {
    BYTES image{1, 0, 0, 0, 0, 1, 0, 0xFE};
    while (image.size() < size) {
        BYTES header{0xC0, static_cast<UINT8>(isEndless ? 2 : 0x82), length, 0};
        header.push_back(ZeroChecksum(header.data(), header.size()));
        Append(image, header);
        image.resize(image.size() + length);
    }
    return image;
}

TEST_F(CLoadTest, StatusesAndMessages) {
    const UINT8 past = static_cast<UINT8>(IMAGE.size() / 8);
    constexpr int byStatus = -1;
    const struct {
        const char* name;
        BYTES image;
        EFI_STATUS status;
        int message = byStatus; ///< 0: none
    } rows[] = {
        {"good", IMAGE, 0},
        {"upper bits of the version", With(IMAGE, 0, {0xF1}), 0},
        {"version 2", With(IMAGE, 0, {2}), FRU_STATUS_NOT_IPMI_FRU},
        {"header checksum", With(IMAGE, 7, {0x5A}), FRU_STATUS_CHECKSUM_ERROR},
        {"header not there", {1, 0, 0}, FRU_STATUS_READ_FRU_ERROR},

        {"board length 0", Length(BOARD, 0), FRU_STATUS_INVALID_BOARD_AREA},
        {"board length 1", Length(BOARD, 1), FRU_STATUS_INVALID_BOARD_AREA},
        {"board length 255", LargeArea(BOARD, 255), FRU_STATUS_INVALID_BOARD_AREA},
        {"board of 512 bytes", LargeArea(BOARD, 64), 0},
        {"board of 520 bytes", LargeArea(BOARD, 65), FRU_STATUS_INVALID_BOARD_AREA},
        {"board across the end", Slice(LargeArea(BOARD, 64), 0, 100), FRU_STATUS_INVALID_BOARD_AREA},
        {"board over chassis", With(IMAGE, 3, {IMAGE[CHASSIS]}), FRU_STATUS_INVALID_BOARD_AREA},

        {"chassis length 0", Length(CHASSIS, 0), FRU_STATUS_INVALID_CHASSIS_AREA},
        {"chassis of 512 bytes", LargeArea(CHASSIS, 64), 0},

        {"product length 0", Length(PRODUCT, 0), FRU_STATUS_INVALID_PRODUCT_AREA},
        {"product of 512 bytes", LargeArea(PRODUCT, 64), 0},
        {"product of 520 bytes", LargeArea(PRODUCT, 65), FRU_STATUS_INVALID_PRODUCT_AREA},
        {"product length 255", LargeArea(PRODUCT, 255), FRU_STATUS_INVALID_PRODUCT_AREA},
        {"product past the device", Only(PRODUCT, past), FRU_STATUS_READ_FRU_ERROR, 0},

        {"internal use negative", With(IMAGE, 1, {UINT8(IMAGE[CHASSIS] + 1)}), FRU_STATUS_INVALID_INTERNAL_AREA},
        {"internal use empty", With(IMAGE, 1, {IMAGE[CHASSIS]}), 0},
        {"internal use of 512 bytes", With(BYTES(600), 0, {1, 1, 0, 0, 0, 65}), 0},
        {"internal use of 520 bytes", With(BYTES(600), 0, {1, 1, 0, 0, 0, 66}), FRU_STATUS_INVALID_INTERNAL_AREA},
        {"internal use of 2032 bytes", With(BYTES(2200), 0, {1, 1, 0, 0, 0, 255}), FRU_STATUS_INVALID_INTERNAL_AREA},
        {"internal use past the device", With(BYTES(64), 0, {1, 9, 0, 0, 0, 10}), FRU_STATUS_INVALID_INTERNAL_AREA},

        {"record without data", With(IMAGE, RECORD + 2, {0}), 0},
        {"record checksum", With(IMAGE, RECORD + 3, {0}), FRU_STATUS_INVALID_MULTIREC_AREA},
        {"record across the end", Slice(Records(100, false), 0, 100), FRU_STATUS_INVALID_MULTIREC_AREA},
        {"one large record", Records(100, false, 255), 0},
        {"records without end", Records(66000, true, 247), FRU_STATUS_INVALID_MULTIREC_AREA},
    };
    const std::map<EFI_STATUS, std::pair<const char*, int>> traces = {
        {0, {"", 0}},
        {FRU_STATUS_NOT_IPMI_FRU, {"CFru::GetCommonHeader - Not IPMI FRU", 103}},
        {FRU_STATUS_CHECKSUM_ERROR, {"CFru::GetCommonHeader - Invalid Header Area", 109}},
        {FRU_STATUS_READ_FRU_ERROR, {"CFru::ReadFruDataFromBmc - Error Reading FRU", 109}},
        {FRU_STATUS_INVALID_BOARD_AREA, {"CFru::GetBoardArea - Invalid Board Area", 106}},
        {FRU_STATUS_INVALID_CHASSIS_AREA, {"CFru::GetChassisArea - Invalid Chassis Area", 107}},
        {FRU_STATUS_INVALID_PRODUCT_AREA, {"CFru::GetProductArea - Invalid Product Area", 0}},
        {FRU_STATUS_INVALID_INTERNAL_AREA, {"CFru::GetInternalArea - Invalid Internal Area", 104}},
        {FRU_STATUS_INVALID_MULTIREC_AREA, {"CFru::GetMultiRecArea - Invalid MultiRec Area", 108}}};
    unsigned int good = 0;
    const ADDRESS address{.deviceId = 5};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto& [trace, usual] = traces.at(row.status);
        const int message = row.message == byStatus ? usual : row.message;
        const std::wstring error =
            message == 0 ? L"" : Text(static_cast<unsigned int>(message), Identifier(address).c_str());
        EXPECT_EQ(LoadImage(row.image, address), row.status);
        EXPECT_EQ(LastError(), error);
        EXPECT_THAT(TakeLog(), testing::HasSubstr(trace));
        good += row.status == 0 ? 1U : 0U;
        // Probing sees the header only, says so of a failed read, and loads nothing.
        Requests();
        const bool isHeaderBad = message == 103 || message == 109;
        EXPECT_EQ(Find(address), isHeaderBad ? row.status : 0);
        EXPECT_EQ(LastError(), !isHeaderBad ? L"" : row.status == FRU_STATUS_READ_FRU_ERROR ? Text(123) : error);
        EXPECT_EQ(Requests(), Reads(address, ACCESS::FRU, 0, 8));
        EXPECT_EQ(NumberOfFrus(), good);
    }
}

// A failure is traced before its message, which names the FRU, is composed.
TEST_F(CLoadTest, TracesComeBeforeMessages) {
    const auto expect = [](const std::string& failure) {
        EXPECT_THAT(TakeLog(), testing::HasSubstr(failure + "\r\nCFru::GetFriendlyFruIdentifier [ENTRY]\r\n"));
    };
    LIBDBG_DEBUG_LEVEL = 3;
    for (const auto& [image, failure] :
         {std::pair(BYTES{1}, "ReadFRUHeader - Invalid Header Area"),
          {With(IMAGE, 7, {0x5A}), "GetCommonHeader - Invalid Header Area"},
          {Length(BOARD, 0), "GetBoardArea - Invalid Board Area"},
          {Length(CHASSIS, 0), "GetChassisArea - Invalid Chassis Area"},
          {With(IMAGE, 1, {UINT8(IMAGE[CHASSIS] + 1)}), "GetInternalArea - Invalid Internal Area"},
          {With(IMAGE, RECORD + 3, {0}), "GetMultiRecArea - Invalid MultiRec Area"}}) {
        EXPECT_NE(LoadImage(image), 0U);
        expect(std::string("CFru::") + failure);
    }
    EXPECT_EQ(LoadImage(IMAGE), 0U);
    Select(0);
    m_bmc.AddFault({.action = FAULT_ACTION::TRANSPORT_ERROR, .value = 9, .cmd = 0x12});
    EXPECT_NE(CommitIt(), 0U);
    expect("CFru::WriteToSystem - Error Writing System");
}

TEST_F(CLoadTest, ARecordWithoutDataIsNotKept) {
    const BYTES image = Only(MULTIRECORD, IMAGE[MULTIRECORD]);
    for (const auto& [bytes, length] : {std::pair(image, 20U), {With(image, RECORD + 13, {0}), 11U}}) {
        EXPECT_EQ(LoadImage(bytes), 0U);
        Select(NumberOfFrus() - 1);
        BYTES records(length);
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD), 0U);
        unsigned int size = 0;
        EXPECT_EQ(m_table->GetAreaSize(m_table, size), 0U);
        ASSERT_EQ(size, length);
        EXPECT_EQ(m_table->GetAreaData(m_table, records.data(), size), 0U);
        EXPECT_EQ(records, Slice(IMAGE, RECORD, length));
    }
}

TEST_F(CLoadTest, StopsAtTheFirstFailure) {
    // Of each info area the length is read, then its bytes in pieces.
    const auto after = [](std::size_t request, unsigned int area) {
        return request + 1 + InfoArea(IMAGE, area).size() / 8;
    };
    const std::size_t product = after(2, BOARD);
    const std::size_t chassis = after(product, PRODUCT);
    const std::size_t internal = after(chassis, CHASSIS);
    const struct {
        std::size_t request;
        std::optional<EFI_STATUS> status; ///< none: the transport's
        unsigned int message;
        BYTES image = IMAGE; ///< another one fails by itself
    } rows[] = {{1, {}, 109},
                {2, FRU_STATUS_INVALID_BOARD_AREA, 106},
                {3, FRU_STATUS_INVALID_BOARD_AREA, 106},
                {product, {}, 0},
                {product + 1, {}, 0},
                {chassis, FRU_STATUS_INVALID_CHASSIS_AREA, 107},
                {internal, FRU_STATUS_INVALID_INTERNAL_AREA, 104},
                {internal + 2, FRU_STATUS_INVALID_MULTIREC_AREA, 108},
                {internal + 3, FRU_STATUS_INVALID_MULTIREC_AREA, 108},
                {2, FRU_STATUS_INVALID_BOARD_AREA, 106, Length(BOARD, 0)},
                {product, FRU_STATUS_INVALID_PRODUCT_AREA, 0, Length(PRODUCT, 0)},
                {chassis, FRU_STATUS_INVALID_CHASSIS_AREA, 107, Length(CHASSIS, 0)},
                {2, FRU_STATUS_INVALID_PRODUCT_AREA, 0, LargeArea(PRODUCT, 65)}}; // no buffer holds it
    const auto fail = [this](std::size_t request) {
        m_bmc.ClearFaults();
        const auto occurrence = static_cast<unsigned int>(request);
        m_bmc.AddFault({.action = FAULT_ACTION::TRANSPORT_ERROR, .value = 9, .cmd = 0x11, .occurrence = occurrence});
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.request);
        fail(row.image == IMAGE ? row.request : row.request + 1);
        EXPECT_EQ(LoadImage(row.image), row.status.value_or(TransportStatus(9)));
        EXPECT_EQ(LastError(), row.message == 0 ? L"" : Text(row.message, Identifier({}).c_str()));
        REQUESTS expected = Load({}, ACCESS::FRU, row.image);
        expected.resize(row.request);
        EXPECT_EQ(Requests(), expected);
    }
    fail(1);
    EXPECT_EQ(Find({}), TransportStatus(9));
    EXPECT_EQ(LastError(), Text(123));
    m_bmc.ClearFaults();
    EXPECT_EQ(LoadImage(IMAGE), 0U) << "the library goes on";
}

TEST_F(CLoadTest, Assertions) {
    const auto damaged = [](unsigned int area) {
        const std::size_t last = Start(IMAGE, area) + InfoArea(IMAGE, area).size() - 1;
        return With(IMAGE, last, {static_cast<UINT8>(IMAGE[last] + 1)});
    };
    for (const auto& [image, line] : {std::pair(damaged(CHASSIS), "chassisinfoarea.cpp: assertion failed: IsValid()"),
                                      {damaged(BOARD), "boardinfoarea.cpp: assertion failed: IsValid()"},
                                      {damaged(PRODUCT), "productinfoarea.cpp: assertion failed: IsValid()"},
                                      {Only(INTERNAL, 1), "fru.cpp: assertion failed: 0"}})
        EXPECT_DEATH(LoadImage(image), testing::HasSubstr(std::string("frudata: ") + line + "\n"));
}

} // namespace
