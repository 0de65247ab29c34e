// What each edit does, and what is refused.
#include "tests/fruimage/shapes.h"

namespace FruImage {

namespace {

Result<PLAN> Edited(const BYTES& image, std::vector<EDIT> edits, const LIMITS& limits = {}) {
    const FRU fru = Parse(image);
    Result<PLAN> plan = Apply(fru, edits, limits);
    if (plan)
        ExpectGoodPlan(fru, *plan);
    return plan;
}

const BYTES& Image() {
    return Shape("server").image;
}

const EDIT LONG_BOARD = Set("board.file-id", std::string(60, 'b'));

TEST(Edit, Fields) {
    const std::vector<EDIT> edits = {
        Set("product.serial-number", "X"),     Set("board.mfg-date", "2000-03-01"),
        Set("chassis.type", "Blade"),          SET_FIELD{Name("product.version"), "12.5", ENCODING::BCD_PLUS},
        Set("product.custom3", "three"),       ADD_FIELD{AREA_ID::PRODUCT, "four", {}},
        REMOVE_FIELD{Name("product.custom1")}, SET_BYTES{Name("product.file-id"), ENCODING::BINARY, {0xFF}}};
    const Result<PLAN> plan = Edited(Image(), edits);
    ASSERT_TRUE(plan) << testing::PrintToString(plan.Error());
    const FRU fru = Parse(plan->bytes);
    EXPECT_TRUE(fru.IsSound());
    EXPECT_EQ(fru.Find(Name("product.serial-number"))->encoding, ENCODING::SIX_BIT) << "one byte of text is no field";
    EXPECT_EQ(fru.Find(Name("product.version"))->bytes, (BYTES{0x12, 0xC5}));
    const std::pair<const char*, const char*> rows[] = {
        {"product.serial-number", "X"}, {"board.mfg-date", "2000-03-01T00:00Z"},
        {"chassis.type", "Blade (28)"}, {"product.custom1", "two"},
        {"product.custom2", "three"},   {"product.custom3", "four"},
        {"product.file-id", "FF"},      {"product.name", "Server 9"},
        {"chassis.part-number", ""}};
    for (const auto& [name, text] : rows)
        EXPECT_EQ(Value(fru, name), text) << name;
    EXPECT_TRUE(Edited(plan->bytes, {edits[0], edits[1], edits[2], edits[3]})->IsEmpty()) << "they are there already";
    const Result<PLAN> early = Edited(Shape("list ends early").image, {Set("board.manufacturer", "Other")});
    EXPECT_EQ(Value(Parse(early->bytes), "board.serial-number"), "(none)") << "the list ends as early as before";
}

TEST(Edit, LanguageTakesTheTextsAlong) {
    const Result<PLAN> plan = Edited(Image(), {Set("product.language", "Japanese")});
    ASSERT_TRUE(plan);
    const FRU fru = Parse(plan->bytes);
    EXPECT_EQ(fru.Find(Name("product.name"))->bytes.size(), 16U);
    EXPECT_EQ(Value(fru, "product.name"), "Server 9");
    const Result<PLAN> back = Edited(plan->bytes, {Set("product.language", "0")});
    EXPECT_EQ(Parse(back->bytes).Find(Name("product.name"))->bytes.size(), 8U);
}

TEST(Edit, GrowsIntoUnusedBytesAndMovesAsFewAsItMust) {
    // The board's room is 0x58 bytes, then the product area follows; behind that are free bytes up to the records.
    const Result<PLAN> plan =
        Edited(Image(), {LONG_BOARD, Set("board.part-number", std::string(20, 'p'))}, {.deviceSize = 512});
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->moves.size(), 2U);
    EXPECT_EQ(plan->moves[0].sizeAfter, 120U);
    EXPECT_EQ(plan->moves[1].from, 0x60U);
    EXPECT_EQ(plan->moves[1].to, 0x80U);
    ExpectSameArea(Parse(Image()), Parse(plan->bytes), AREA_ID::PRODUCT);
    EXPECT_EQ(plan->steps.front().area, AREA_ID::PRODUCT) << "what moves is written first";
    EXPECT_EQ(plan->steps.back().area, AREA_ID::HEADER);
}

TEST(Edit, OverTheDevicesSizeIsRefusedWithTheBytesNeeded) {
    const BYTES& image = Shape("no chassis").image;
    const Result<PLAN> plan = Edited(
        image, {LONG_BOARD, Set("product.name", std::string(60, 'n')), Set("product.file-id", std::string(60, 'n'))},
        {.deviceSize = image.size()});
    EXPECT_EQ(plan.Error().code, REFUSAL::NO_ROOM);
    EXPECT_EQ(plan.Error().available, 256U);
    EXPECT_EQ(plan.Error().needed, 280U);
}

TEST(Edit, AreasGoBehindAnInternalUseAreaInTheirWay) {
    const BYTES& image = Shape("internal behind product, board behind").image;
    const Result<PLAN> plan = Edited(image, {Set("product.name", std::string(60, 'n'))}, {.deviceSize = image.size()});
    ASSERT_TRUE(plan) << testing::PrintToString(plan.Error());
    ASSERT_EQ(plan->moves.size(), 1U);
    EXPECT_EQ(plan->moves[0].area, AREA_ID::PRODUCT);
    EXPECT_TRUE(plan->steps.front().safe);
    for (const AREA_ID id : {AREA_ID::INTERNAL_USE, AREA_ID::BOARD})
        ExpectSameArea(Parse(image), Parse(plan->bytes), id);
}

TEST(Edit, AreasLeaveThePlaceOfAnEmptyRecordArea) {
    BYTES image = {1, 0, 0, 0, 1, 4, 0, 0xFA, 1, 3, 0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC1};
    image.resize(40);
    image[31] = ZeroChecksum(Slice(image, 8, 24));
    ASSERT_TRUE(Parse(image).IsSound());
    const Result<PLAN> plan = Edited(image, {Set("board.serial-number", "B1")});
    ASSERT_TRUE(plan);
    EXPECT_EQ(Parse(plan->bytes).Find(AREA_ID::MULTIRECORD)->offset, 32U);
    EXPECT_EQ(Parse(plan->bytes).Find(AREA_ID::BOARD)->offset, 40U);
}

TEST(Edit, InternalUseAreaChangesSizeOnlyWhereAsked) {
    const BYTES& image = Shape("internal between").image;
    EXPECT_EQ(Edited(image, {SET_INTERNAL{BYTES(80, 1)}}).Error().code, REFUSAL::FIXED_SIZE);
    EXPECT_EQ(Edited(image, {SET_INTERNAL{BYTES(40, 1), true}}).Error().code, REFUSAL::FIXED_SIZE)
        << "nothing would begin there";
    EXPECT_EQ(Edited(image, {REMOVE_AREA{AREA_ID::PRODUCT}}).Error().code, REFUSAL::FIXED_SIZE);
    const Result<PLAN> same = Edited(image, {SET_INTERNAL{BYTES(72, 1)}});
    EXPECT_EQ(Parse(same->bytes).Find(AREA_ID::INTERNAL_USE)->length, 72U);
    const Result<PLAN> grown = Edited(image, {SET_INTERNAL{BYTES(80, 1), true}});
    ASSERT_TRUE(grown);
    EXPECT_EQ(Parse(grown->bytes).Find(AREA_ID::INTERNAL_USE)->length, 80U);
    ExpectSameArea(Parse(image), Parse(grown->bytes), AREA_ID::PRODUCT);
}

TEST(Edit, Records) {
    const RECORD_VALUE record{0xC1, 2, {9, 9}};
    const struct {
        const char* shape;
        EDIT edit;
        std::vector<int> types;
    } rows[] = {{"server", APPEND_RECORD{record}, {0, 0xC0, 0xC1}},
                {"server", REPLACE_RECORD{0, record}, {0xC1, 0xC0}},
                {"server", REMOVE_RECORD{1}, {0}},
                {"server", REPLACE_RECORDS{{record}}, {0xC1}},
                {"server", REPLACE_RECORDS{}, {}},
                {"server", SET_RECORD_BYTES{{0xC2, 0x82, 1, 0xFF, 0xBC, 1}}, {0xC2}},
                {"closing record", APPEND_RECORD{record}, {0, 0xC1, 0x82}},
                {"wrong record checksum", REPLACE_RECORD{0, record}, {0xC1}},
                {"only chassis", APPEND_RECORD{record}, {0xC1}}};
    for (const auto& row : rows) {
        const Result<PLAN> plan = Edited(Shape(row.shape).image, {row.edit});
        ASSERT_TRUE(plan) << row.shape << ": " << testing::PrintToString(plan.Error());
        const FRU fru = Parse(plan->bytes);
        EXPECT_EQ(Damages(fru), std::vector<std::string>()) << row.shape;
        std::vector<int> types;
        if (const AREA* area = fru.Find(AREA_ID::MULTIRECORD))
            for (const RECORD& one : area->records)
                types.push_back(one.Type());
        EXPECT_EQ(types, row.types) << row.shape;
    }
}

TEST(Edit, MakesAreasAndWholeFrus) {
    for (const BYTES& empty : {BYTES(), BYTES(256, 0xFF), BYTES(256)}) {
        const Result<PLAN> plan = Edited(empty,
                                         {Set("board.serial-number", "B1"), Set("chassis.type", "23"),
                                          Set("product.name", "P1"), SET_INTERNAL{BYTES(16, 1)}},
                                         {.deviceSize = 256, .spare = 16});
        ASSERT_TRUE(plan) << testing::PrintToString(plan.Error());
        const FRU fru = Parse(plan->bytes);
        EXPECT_TRUE(fru.IsSound());
        EXPECT_EQ(Value(fru, "board.serial-number"), "B1");
        EXPECT_EQ(fru.Find(AREA_ID::INTERNAL_USE)->length, 16U);
        EXPECT_GE(fru.Find(AREA_ID::PRODUCT)->Free(), 16U);
    }
}

TEST(Edit, Refused) {
    const struct {
        EDIT edit;
        REFUSAL code;
    } rows[] = {{Set("product.custom4", "x y"), REFUSAL::NO_SUCH_FIELD},
                {REMOVE_FIELD{Name("product.name")}, REFUSAL::NO_SUCH_FIELD},
                {REMOVE_FIELD{Name("product.custom3")}, REFUSAL::NO_SUCH_FIELD},
                {SET_FIELD{{AREA_ID::MULTIRECORD, FIELD_NAME::FIXED, 0}, "x", {}}, REFUSAL::NO_SUCH_FIELD},
                {SET_FIELD{{AREA_ID::BOARD, FIELD_NAME::FIXED, 99}, "xy", {}}, REFUSAL::NO_SUCH_FIELD},
                {SET_BYTES{Name("board.mfg-date"), ENCODING::BINARY, {1}}, REFUSAL::BAD_VALUE},
                {SET_BYTES{Name("board.file-id"), ENCODING::TEXT, {1}}, REFUSAL::BAD_VALUE},
                {SET_FIELD{Name("board.file-id"), "ab", ENCODING::TWO_BYTE_TEXT}, REFUSAL::BAD_VALUE},
                {Set("board.language", "Klingon"), REFUSAL::BAD_VALUE},
                {APPEND_RECORD{{1, 2, {}}}, REFUSAL::BAD_VALUE},
                {REMOVE_RECORD{2}, REFUSAL::NO_SUCH_FIELD},
                {SET_RECORD_BYTES{{1, 2, 3}}, REFUSAL::BAD_VALUE},
                {REMOVE_AREA{AREA_ID::CHASSIS}, REFUSAL::NO_SUCH_FIELD}};
    for (std::size_t row = 0; row < std::size(rows); ++row)
        EXPECT_EQ(Edited(Image(), {rows[row].edit}).Error().code, rows[row].code) << row;
}

TEST(Build, RefusesWhatIsNoFru) {
    const AREA_DESCRIPTION product{.id = AREA_ID::PRODUCT, .fields = {"name"}};
    const auto with = [&](auto change) {
        DESCRIPTION description{.areas = {product}};
        change(description, description.areas[0]);
        return Build(description).Error().code;
    };
    EXPECT_EQ(with([](auto&, auto& area) { area.fields = {"x"}; }), REFUSAL::BAD_DESCRIPTION);
    EXPECT_EQ(with([](auto&, auto& area) { area.fields = {std::string(64, 'x')}; }), REFUSAL::BAD_DESCRIPTION);
    EXPECT_EQ(with([](auto&, auto& area) { area.offset = 12; }), REFUSAL::BAD_DESCRIPTION);
    EXPECT_EQ(with([](auto&, auto& area) { area.length = 8; }), REFUSAL::BAD_DESCRIPTION);
    EXPECT_EQ(with([](auto& all, auto& area) { all.areas.push_back(area); }), REFUSAL::BAD_DESCRIPTION);
    EXPECT_EQ(with([](auto& all, auto&) { all.gaps = {{10, {1}}}; }), REFUSAL::BAD_DESCRIPTION);
    EXPECT_EQ(with([](auto&, auto& area) { area.offset = 2048; }), REFUSAL::NOT_ADDRESSABLE);
    EXPECT_EQ(with([](auto& all, auto&) { all.size = 16; }), REFUSAL::NO_ROOM);
}

} // namespace

} // namespace FruImage
