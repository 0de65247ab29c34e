// Images against bytes worked out by hand from the FRU Information Storage Definition.
#include "tests/sim/support.h"

#include "sim/samples.h"

namespace Frudata_Sim {

namespace {

FruImage::CImageBuilder SmallImage() {
    return FruImage::CImageBuilder()
        .InternalUse({0xAA})
        .Chassis({.chassisType = 0x11, .partNumber = "PN", .customFields = {{FruImage::ENCODING::BINARY, {0x05}}}})
        .Board({.minutes = 0x010203, .manufacturer = "AB"}, 3)
        .MultiRecord(0xC0, {1, 2})
        .MultiRecord(0x00, {3});
}

TEST(ImageBuilder, AreasByteByByte) {
    const BYTES expected{// common header, internal use
                         0x01, 0x01, 0x02, 0x04, 0x00, 0x07, 0x00, 0xF1, 0x01, 0xAA, 0, 0, 0, 0, 0, 0,
                         // chassis
                         0x01, 0x02, 0x11, 0xC2, 'P', 'N', 0xC0, 0x01, 0x05, 0xC1, 0, 0, 0, 0, 0, 0x05,
                         // board: date/time low byte first; three spare bytes take it past 16
                         0x01, 0x03, 0x00, 0x03, 0x02, 0x01, 0xC2, 'A', 'B', 0xC0, 0xC0, 0xC0, 0xC0, 0xC1, 0, 0, 0, 0,
                         0, 0, 0, 0, 0, 0xF0,
                         // records, the last with the end-of-list bit; erased memory
                         0xC0, 0x02, 0x02, 0xFD, 0x3F, 1, 2, 0x00, 0x82, 0x01, 0xFD, 0x80, 3, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(SmallImage().Build(72), expected);
    const BYTES product = FruImage::CImageBuilder().Product({.productName = "XY", .language = 25}).Build();
    EXPECT_EQ(product, (BYTES{1,    0,   0,   0,    1,    0,    0,    0xFE, 1,    2, 25, 0xC0,
                              0xC2, 'X', 'Y', 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC1, 0, 0,  0x30}));
}

TEST(ImageBuilder, RefusesWhatTheFormatCannotHold) {
    EXPECT_TRUE(FruImage::CImageBuilder().Chassis({.partNumber = std::string(64, 'x')}).Build().empty());
    EXPECT_TRUE(FruImage::CImageBuilder().Chassis({.partNumber = "x"}).Build().empty());
    EXPECT_TRUE(FruImage::CImageBuilder().Chassis({}, 2048).Build().empty());
    EXPECT_TRUE(FruImage::CImageBuilder().MultiRecord(0, BYTES(256)).Build().empty());
    EXPECT_TRUE(SmallImage().Build(68).empty());
}

TEST(ImageBuilder, Damage) {
    for (const auto& [damage, position, value] : {std::tuple(FRU_DAMAGE::HEADER_CHECKSUM, 7U, UINT8{0xAB}),
                                                  {FRU_DAMAGE::AREA_CHECKSUM, 31U, UINT8{0x5F}},
                                                  {FRU_DAMAGE::LENGTH_PAST_END, 17U, UINT8{0xFF}},
                                                  {FRU_DAMAGE::LENGTH_ZERO, 17U, UINT8{0x00}}}) {
        BYTES expected = SmallImage().Build(), damaged = expected;
        expected[position] = value;
        DamageFruImage(damaged, damage);
        EXPECT_EQ(damaged, expected);
    }
}

} // namespace

} // namespace Frudata_Sim
