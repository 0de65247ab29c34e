// Each shape: read, described and built again, grown, repaired.
#include "fruimage/repair.h"
#include "tests/fruimage/shapes.h"

namespace FruImage {

namespace {

const std::string LONG = "Asset tag of forty characters, 0123456789";

class CShapeTest : public testing::TestWithParam<SHAPE> {
  protected:
    bool HasOverlap() const { return std::ranges::count(GetParam().damages, "areas-overlap") != 0; }
};

TEST_P(CShapeTest, Read) {
    const FRU fru = Parse(GetParam().image);
    EXPECT_EQ(Damages(fru), GetParam().damages);
    for (const AREA& area : fru.areas)
        for (std::size_t position = 0; position < area.fields.size(); ++position)
            EXPECT_EQ(fru.Find(FieldAt(area.id, position)), &area.fields[position]);
    std::size_t bytes = fru.bytes.empty() ? 0 : HEADER_SIZE;
    for (const AREA& area : fru.areas)
        bytes += area.length;
    for (const GAP& gap : fru.gaps) {
        EXPECT_NE(gap.length, 0U);
        bytes += gap.length;
    }
    if (fru.IsSound()) {
        EXPECT_EQ(bytes, fru.bytes.size()) << "every byte belongs to one thing";
    }
}

TEST_P(CShapeTest, DescribedAndBuilt) {
    const FRU fru = Parse(GetParam().image);
    const Result<DESCRIPTION> description = Describe(fru);
    EXPECT_EQ(static_cast<bool>(description), fru.state == STATE::FRU && !HasOverlap());
    if (description) {
        EXPECT_EQ(*Build(*description), GetParam().image);
    }
}

TEST_P(CShapeTest, Grown) {
    const FRU fru = Parse(GetParam().image);
    const EDIT edit = Set("product.asset-tag", LONG);
    const Result<PLAN> plan = Apply(fru, {&edit, 1}, {.deviceSize = std::max<std::size_t>(fru.bytes.size(), 256)});
    ASSERT_EQ(plan ? std::nullopt : std::optional(plan.Error().code), GetParam().refusal) << plan.Error().text;
    if (!plan)
        return;
    const FRU after = Parse(plan->bytes);
    EXPECT_EQ(Value(after, "product.asset-tag"), LONG);
    EXPECT_EQ(Damages(after), GetParam().damages);
    for (const AREA_ID id : {AREA_ID::INTERNAL_USE, AREA_ID::CHASSIS, AREA_ID::BOARD, AREA_ID::MULTIRECORD})
        if (!HasOverlap() || !fru.Find(id) || !fru.Find(id)->damaged)
            ExpectSameArea(fru, after, id);
    if (const AREA* internal = fru.Find(AREA_ID::INTERNAL_USE)) {
        EXPECT_EQ(after.Find(AREA_ID::INTERNAL_USE)->Range(), internal->Range());
    }
    for (const char* name : {"product.manufacturer", "product.serial-number", "product.custom1", "product.custom2"})
        if (fru.Find(Name(name))) {
            EXPECT_EQ(Value(after, name), Value(fru, name));
        }
    ExpectGoodPlan(fru, *plan);
}

TEST_P(CShapeTest, Repaired) {
    const FRU fru = Parse(GetParam().image);
    const Result<PLAN> plan = Repair(fru);
    ASSERT_EQ(plan ? std::nullopt : std::optional(plan.Error().code), GetParam().repair) << plan.Error().text;
    if (!plan)
        return;
    EXPECT_TRUE(Parse(plan->bytes).IsSound()) << testing::PrintToString(plan->notes);
    EXPECT_FALSE(plan->changes.empty());
    if (GetParam().image.size() == Shape("server").image.size() && GetParam().name != "records on top of board") {
        EXPECT_EQ(plan->bytes, Shape("server").image);
    }
    ExpectGoodPlan(fru, *plan);
}

TEST_P(CShapeTest, WantedRangesAreEnough) {
    const BYTES& device = GetParam().image;
    BYTES known(device.size(), 0xAA);
    std::vector<RANGE> read;
    std::size_t bytes = 0;
    for (std::vector<RANGE> wanted = WantedRanges(known, read); !wanted.empty(); wanted = WantedRanges(known, read))
        for (const RANGE& range : wanted) {
            ASSERT_LE(range.End(), device.size());
            std::copy_n(device.begin() + static_cast<std::ptrdiff_t>(range.offset), range.length,
                        known.begin() + static_cast<std::ptrdiff_t>(range.offset));
            read.push_back(range);
            ASSERT_LE(bytes += range.length, device.size()) << "bytes are read twice";
        }
    const FRU whole = Parse(device);
    const FRU part = Parse(known, read);
    EXPECT_EQ(Damages(part), Damages(whole));
    ASSERT_EQ(part.areas.size(), whole.areas.size());
    for (const AREA& area : whole.areas)
        ExpectSameArea(whole, part, area.id);
}

INSTANTIATE_TEST_SUITE_P(Image, CShapeTest, testing::ValuesIn(Shapes()), [](const auto& row) {
    std::string name = row.param.name;
    for (char& character : name)
        character = std::isalnum(static_cast<unsigned char>(character)) ? character : '_';
    return name;
});

TEST(Read, TextsOfShapes) {
    const struct {
        const char* shape;
        const char* field;
        const char* text;
    } rows[] = {{"NUL-filled", "product.serial-number", "SN"},
                {"two-byte text", "product.manufacturer", "Su\xE6\x9C\xAC"},
                {"list ends early", "board.product-name", "Name"},
                {"list ends early", "board.serial-number", "(none)"},
                {"only chassis", "chassis.type", "Rack mount chassis (23)"},
                {"server", "board.mfg-date", "2018-03-01T16:32Z"},
                {"length zero", "board.part-number", "BPN-77"},
                {"length a unit short", "board.part-number", "BPN-77"},
                {"every encoding", "product.manufacturer", "00 01 FE"},
                {"every encoding", "product.name", "123 -."},
                {"every encoding", "product.part-number", "IPMI"},
                {"every encoding", "product.version", "L\xC3\xA9"}};
    for (const auto& row : rows)
        EXPECT_EQ(Value(Parse(Shape(row.shape).image), row.field), row.text) << row.shape;
}

TEST(Read, FieldCutByItsAreasEndIsShownAsFarAsItGoes) {
    BYTES image = Shape("server").image;
    image[8 + 1] = 3; // the board's fields go on behind 24 bytes
    const FRU fru = Parse(image);
    EXPECT_EQ(Damages(fru), (std::vector<std::string>{"no-end-marker", "area-checksum"}));
    EXPECT_EQ(Value(fru, "board.product-name"), "Board X");
    EXPECT_EQ(Value(fru, "board.serial-number"), "BS");
    EXPECT_TRUE(fru.Find(Name("board.serial-number"))->cut);
}

TEST(Read, WantsLittleOfALargeDevice) {
    BYTES device = Shape("server").image;
    device.resize(8192, 0xFF);
    const RANGE header{0, 8};
    std::size_t bytes = 0;
    for (const RANGE& range : WantedRanges(device, {&header, 1}))
        bytes += range.length;
    EXPECT_LE(bytes, 64U);
}

} // namespace

} // namespace FruImage
