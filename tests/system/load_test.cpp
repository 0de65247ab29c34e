// Loading damaged and hostile images: statuses, messages, and where the reading stops.
#include "tests/system/support.h"

#include "sim/samples.h"

#include <algorithm>
#include <map>

namespace Frudata_Tests {

namespace {

using testing::ElementsAreArray;

constexpr UINT8 READ = 0x11;
const BYTES IMAGE = SampleBmcFru();

using Loading = CSystemTest;

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
    BYTES bytes(units * std::size_t{8});
    const BYTES start = area == CHASSIS ? BYTES{1, units, 1, 0, 0, 0xC1}
                        : area == BOARD ? BYTES{1, units, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xC1}
                                        : BYTES{1, units, 0, 0, 0, 0, 0, 0, 0, 0, 0xC1};
    std::copy(start.begin(), start.end(), bytes.begin());
    bytes.back() = ZeroChecksum(bytes.data(), bytes.size());
    BYTES image(8);
    image[0] = 1;
    Append(image, bytes);
    image.resize(2200);
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
/// Where the first multi-record of `IMAGE` starts.
std::size_t Record() {
    return Start(IMAGE, MULTIRECORD);
}

TEST_F(Loading, StatusesAndMessages) {
    const UINT8 past = static_cast<UINT8>(IMAGE.size() / 8);
    const struct {
        const char* name;
        BYTES image;
        EFI_STATUS status;
        unsigned int message; ///< 0: none
    } rows[] = {
        {"good", IMAGE, 0, 0},
        {"no areas", Only(BOARD, 0), 0, 0},
        {"version 2", With(IMAGE, 0, {2}), FRU_STATUS_NOT_IPMI_FRU, 103},
        {"erased", BYTES(64, 0xFF), FRU_STATUS_NOT_IPMI_FRU, 103},
        {"header checksum", With(IMAGE, 7, {0x5A}), FRU_STATUS_CHECKSUM_ERROR, 109},
        {"header not there", {1, 0, 0}, FRU_STATUS_READ_FRU_ERROR, 109},

        {"board length 0", Length(BOARD, 0), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board length 1", Length(BOARD, 1), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board length 255", LargeArea(BOARD, 255), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board of 512 bytes", LargeArea(BOARD, 64), 0, 0},
        {"board of 520 bytes", LargeArea(BOARD, 65), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board of 912 bytes", LargeArea(BOARD, 114), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board past the device", Only(BOARD, past), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board across the end", Only(BOARD, 1, Slice(LargeArea(BOARD, 64), 0, 100)), FRU_STATUS_INVALID_BOARD_AREA,
         106},
        {"board at 2040", Only(BOARD, 255), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board padding", With(LargeArea(BOARD, 4), 30, {7}), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"board end mark", With(LargeArea(BOARD, 4), 19, {0}), FRU_STATUS_INVALID_BOARD_AREA, 106},

        {"chassis length 0", Length(CHASSIS, 0), FRU_STATUS_INVALID_CHASSIS_AREA, 107},
        {"chassis of 512 bytes", LargeArea(CHASSIS, 64), 0, 0},
        {"chassis length 255", LargeArea(CHASSIS, 255), FRU_STATUS_INVALID_CHASSIS_AREA, 107},
        {"chassis past the device", Only(CHASSIS, past), FRU_STATUS_INVALID_CHASSIS_AREA, 107},

        {"product length 0", Length(PRODUCT, 0), FRU_STATUS_INVALID_PRODUCT_AREA, 0},
        {"product of 512 bytes", LargeArea(PRODUCT, 64), 0, 0},
        {"product of 520 bytes", LargeArea(PRODUCT, 65), FRU_STATUS_INVALID_PRODUCT_AREA, 0},
        {"product length 255", LargeArea(PRODUCT, 255), FRU_STATUS_INVALID_PRODUCT_AREA, 0},
        {"product past the device", Only(PRODUCT, past), FRU_STATUS_READ_FRU_ERROR, 0},

        {"chassis over product", With(IMAGE, 2, {IMAGE[PRODUCT]}), 0, 0},
        {"board over chassis", With(IMAGE, 3, {IMAGE[CHASSIS]}), FRU_STATUS_INVALID_BOARD_AREA, 106},
        {"header as chassis", Only(CHASSIS, 1, With(IMAGE, 8, BYTES(16, 0xFF))), FRU_STATUS_INVALID_CHASSIS_AREA, 107},

        {"internal use negative", With(IMAGE, 1, {static_cast<UINT8>(IMAGE[CHASSIS] + 1)}),
         FRU_STATUS_INVALID_INTERNAL_AREA, 104},
        {"internal use empty", With(IMAGE, 1, {IMAGE[CHASSIS]}), 0, 0},
        {"internal use of 512 bytes", With(BYTES(600, 0), 0, {1, 1, 0, 0, 0, 65}), 0, 0},
        {"internal use of 520 bytes", With(BYTES(600, 0), 0, {1, 1, 0, 0, 0, 66}), FRU_STATUS_INVALID_INTERNAL_AREA,
         104},
        {"internal use of 2032 bytes", With(BYTES(2200, 0), 0, {1, 1, 0, 0, 0, 255}), FRU_STATUS_INVALID_INTERNAL_AREA,
         104},
        {"internal use past the device", With(BYTES(64, 0), 0, {1, 9, 0, 0, 0, 10}), FRU_STATUS_INVALID_INTERNAL_AREA,
         104},

        {"record without data", With(IMAGE, Record() + 2, {0}), 0, 0},
        {"record checksum", With(IMAGE, Record() + 3, {0}), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
        {"record data", With(IMAGE, Record() + 5, {0xAA}), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
        {"second record's type", With(IMAGE, Record() + 11, {0}), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
        {"records past the device", Only(MULTIRECORD, past), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
        {"record across the end", Slice(Records(100, false), 0, 100), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
        {"one large record", Records(100, false, 255), 0, 0},
        {"records up to the end", Records(1000, true), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
        {"records without end", Records(66000, true, 247), FRU_STATUS_INVALID_MULTIREC_AREA, 108},
    };
    const std::map<EFI_STATUS, const char*> traces = {
        {0, ""},
        {FRU_STATUS_NOT_IPMI_FRU, "CFru::GetCommonHeader - Not IPMI FRU"},
        {FRU_STATUS_CHECKSUM_ERROR, "CFru::GetCommonHeader - Invalid Header Area"},
        {FRU_STATUS_READ_FRU_ERROR, "CFru::ReadFruDataFromBmc - Error Reading FRU"},
        {FRU_STATUS_INVALID_BOARD_AREA, "CFru::GetBoardArea - Invalid Board Area"},
        {FRU_STATUS_INVALID_CHASSIS_AREA, "CFru::GetChassisArea - Invalid Chassis Area"},
        {FRU_STATUS_INVALID_PRODUCT_AREA, "CFru::GetProductArea - Invalid Product Area"},
        {FRU_STATUS_INVALID_INTERNAL_AREA, "CFru::GetInternalArea - Invalid Internal Area"},
        {FRU_STATUS_INVALID_MULTIREC_AREA, "CFru::GetMultiRecArea - Invalid MultiRec Area"}};
    unsigned int good = 0;
    const ADDRESS address{.deviceId = 5};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadImage(row.image, address), row.status);
        EXPECT_EQ(LastError(), row.message == 0 ? L"" : Text(row.message, Identifier(address).c_str()));
        EXPECT_THAT(TakeLog(), testing::HasSubstr(traces.at(row.status)));
        good += row.status == 0 ? 1U : 0U;
        EXPECT_EQ(NumberOfFrus(), good);
        m_bmc.ClearExchanges();
    }
}

TEST_F(Loading, OneBadAreaStopsTheReading) {
    const struct {
        unsigned int area;
        std::vector<unsigned int> before; ///< the info areas that have been read in full by then
    } rows[] = {{BOARD, {}}, {PRODUCT, {BOARD}}, {CHASSIS, {BOARD, PRODUCT}}};
    for (const auto& row : rows) {
        LINES expected = Reads({}, ACCESS::FRU, 0, 8);
        for (const unsigned int area : row.before)
            expected = expected + Reads({}, ACCESS::FRU, Start(IMAGE, area), 2) +
                       Reads({}, ACCESS::FRU, Start(IMAGE, area), InfoArea(IMAGE, area).size());
        EXPECT_NE(LoadImage(Length(row.area, 0)), 0U);
        EXPECT_EQ(Requests(), expected + Reads({}, ACCESS::FRU, Start(IMAGE, row.area), 2));
    }
    EXPECT_NE(LoadImage(LargeArea(PRODUCT, 65)), 0U);
    EXPECT_EQ(Requests(), Reads({}, ACCESS::FRU, 0, 8) + Reads({}, ACCESS::FRU, 8, 2)) << "no buffer holds it";
}

TEST_F(Loading, OnlyMultiRecords) {
    const BYTES image = Only(MULTIRECORD, IMAGE[MULTIRECORD]);
    EXPECT_EQ(LoadImage(image), 0U);
    EXPECT_THAT(Requests(), ElementsAreArray(Load({}, ACCESS::FRU, image)));
    Select(0);
    unsigned int size = 0;
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD), 0U);
    EXPECT_EQ(m_table->GetAreaSize(m_table, size), 0U);
    EXPECT_EQ(size, 20U);
    std::vector<UINT8> records(size);
    EXPECT_EQ(m_table->GetAreaData(m_table, records.data(), size), 0U);
    EXPECT_EQ(records, Slice(IMAGE, Record(), 20));
    // A record without data is the end, and not kept.
    EXPECT_EQ(LoadImage(With(image, Record() + 13, {0})), 0U);
    Select(1);
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD), 0U);
    EXPECT_EQ(m_table->GetAreaSize(m_table, size), 0U);
    EXPECT_EQ(size, 11U);
}

TEST_F(Loading, FailedReads) {
    // Of each info area the length is read, then its bytes in pieces.
    const auto after = [](unsigned int request, unsigned int area) {
        return request + 1 + static_cast<unsigned int>(InfoArea(IMAGE, area).size() / 8);
    };
    const unsigned int product = after(2, BOARD);
    const unsigned int chassis = after(product, PRODUCT);
    const unsigned int internal = after(chassis, CHASSIS);
    const struct {
        unsigned int request;
        std::optional<EFI_STATUS> status; ///< none: the transport's
        unsigned int message;
    } rows[] = {{1, {}, 109},
                {2, FRU_STATUS_INVALID_BOARD_AREA, 106},
                {3, FRU_STATUS_INVALID_BOARD_AREA, 106},
                {product, {}, 0},
                {product + 1, {}, 0},
                {chassis, FRU_STATUS_INVALID_CHASSIS_AREA, 107},
                {internal, FRU_STATUS_INVALID_INTERNAL_AREA, 104},
                {internal + 2, FRU_STATUS_INVALID_MULTIREC_AREA, 108},
                {internal + 3, FRU_STATUS_INVALID_MULTIREC_AREA, 108}};
    m_bmc.AddFruDevice(0, IMAGE);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.request);
        m_bmc.ClearFaults();
        m_bmc.AddFault({.action = FAULT_ACTION::TRANSPORT_ERROR, .value = 9, .cmd = READ, .occurrence = row.request});
        EXPECT_EQ(LoadAt({}), row.status.value_or(TransportStatus(9)));
        EXPECT_EQ(LastError(), row.message == 0 ? L"" : Text(row.message, Identifier({}).c_str()));
        EXPECT_EQ(Requests().size(), row.request);
    }
    m_bmc.ClearFaults();
    EXPECT_EQ(LoadAt({}), 0U) << "the library goes on";
}

TEST_F(Loading, Assertions) {
    for (const auto& [area, file] :
         {std::pair(CHASSIS, "chassisinfoarea"), {BOARD, "boardinfoarea"}, {PRODUCT, "productinfoarea"}}) {
        const std::size_t last = Start(IMAGE, area) + InfoArea(IMAGE, area).size() - 1;
        const BYTES damaged = With(IMAGE, last, {static_cast<UINT8>(IMAGE[last] + 1)});
        EXPECT_ASSERTION(LoadImage(damaged), file, "IsValid()");
    }
    EXPECT_ASSERTION(LoadImage(Only(INTERNAL, 1)), "fru", "0");
}

} // namespace

} // namespace Frudata_Tests
