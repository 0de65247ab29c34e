#include "tests/fruimage/shapes.h"

#include <algorithm>

namespace FruImage {

namespace {

AREA_DESCRIPTION Internal(std::size_t size) {
    AREA_DESCRIPTION area{.id = AREA_ID::INTERNAL_USE};
    for (std::size_t index = 0; index < size; ++index)
        area.bytes.push_back(static_cast<BYTE>(index == 0 ? 1 : index * 7 + 3));
    return area;
}

AREA_DESCRIPTION Chassis() {
    return {.id = AREA_ID::CHASSIS, .fields = {{ENCODING::BINARY, {23}}, "CPN-1", "CSN-22", "custom"}};
}

AREA_DESCRIPTION Board(std::size_t length = 0) {
    return {.id = AREA_ID::BOARD,
            .length = length,
            .fields = {{ENCODING::BINARY, {0x40, 0xE2, 0xB1}}, "Maker", "Board X", "BSN0001", "BPN-77", "", "R1.0"}};
}

AREA_DESCRIPTION Product(std::size_t spare = 0) {
    return {.id = AREA_ID::PRODUCT,
            .spare = spare,
            .fields = {"Maker", "Server 9", "PPN", "V02", "PSN-12345", "TAG1", "", "one", "two"}};
}

AREA_DESCRIPTION Records(std::vector<RECORD_DESCRIPTION> records) {
    return {.id = AREA_ID::MULTIRECORD, .records = std::move(records)};
}

RECORD_DESCRIPTION Supply() {
    return {.type = 0, .data = BYTES(24, 0x11)};
}

BYTES Made(std::vector<AREA_DESCRIPTION> areas, std::size_t size = 0, BYTE fill = 0) {
    const Result<BYTES> image = Build({.size = size, .fill = fill, .areas = std::move(areas)});
    EXPECT_TRUE(image) << testing::PrintToString(image.Error());
    return *image;
}

BYTES With(BYTES image, std::size_t offset, const BYTES& bytes) {
    std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
    return image;
}

AREA_DESCRIPTION At(std::size_t offset, AREA_DESCRIPTION area) {
    area.offset = offset;
    return area;
}

/// Every encoding in every field that has one.
AREA_DESCRIPTION Encodings() {
    const std::vector<FIELD_DESCRIPTION> values = {{ENCODING::BINARY, {0, 1, 0xFE}},
                                                   {ENCODING::BCD_PLUS, {0x12, 0x3A, 0xBC}},
                                                   {ENCODING::SIX_BIT, {0x29, 0xDC, 0xA6}},
                                                   {ENCODING::TEXT, {'L', 0xE9}}};
    AREA_DESCRIPTION area{.id = AREA_ID::PRODUCT};
    for (std::size_t index = 0; index < 28; ++index)
        area.fields.push_back(values[(index + index / 7) % values.size()]);
    return area;
}

/// Fields up to the checksum, and no end marker.
BYTES Endless() {
    BYTES image = Made({Product()}, 256);
    const AREA area = Parse(image).areas[0];
    const std::size_t marker = area.offset + area.used - 2;
    image[marker] = 0xFF;
    image[area.offset + area.length - 1] = static_cast<BYTE>(image[area.offset + area.length - 1] + 0xC1 - 0xFF);
    return image;
}

} // namespace

const SHAPE& Shape(const std::string& name) {
    static const std::vector<SHAPE> SHAPES = Shapes();
    return *std::find_if(SHAPES.begin(), SHAPES.end() - 1, [&](const SHAPE& shape) { return shape.name == name; });
}

std::vector<std::string> Damages(const FRU& fru) {
    std::vector<std::string> codes;
    for (const FINDING& finding : fru.findings)
        if (finding.severity == SEVERITY::DAMAGE)
            codes.push_back(finding.code);
    return codes;
}

FIELD_NAME Name(const std::string& text) {
    const auto name = ParseFieldName(text);
    EXPECT_TRUE(name) << text;
    return name.value_or(FIELD_NAME{});
}

std::string Value(const FRU& fru, const std::string& name) {
    const FIELD* field = fru.Find(Name(name));
    return field ? field->text : "(none)";
}

void ExpectSameArea(const FRU& before, const FRU& after, AREA_ID id) {
    const AREA* one = before.Find(id);
    const AREA* two = after.Find(id);
    ASSERT_EQ(one != nullptr, two != nullptr) << AreaName(id);
    if (!one)
        return;
    const BYTE_VIEW left = before.View(one->Range());
    const BYTE_VIEW right = after.View(two->Range());
    EXPECT_TRUE(std::equal(left.begin(), left.end(), right.begin(), right.end())) << AreaName(id);
}

void ExpectGoodPlan(const FRU& before, const PLAN& plan) {
    const FRU after = Parse(plan.bytes);
    BYTES written = before.bytes;
    written.resize(plan.bytes.size());
    for (const STEP& step : plan.steps) {
        EXPECT_EQ(&step == &plan.steps.back() || step.offset >= HEADER_SIZE, true) << "the header is not last";
        std::copy(step.bytes.begin(), step.bytes.end(), written.begin() + static_cast<std::ptrdiff_t>(step.offset));
    }
    EXPECT_EQ(written, plan.bytes);
    for (const GAP& gap : before.gaps)
        for (std::size_t at = gap.offset; at < gap.offset + gap.length; ++at) {
            const auto owned = [&](const AREA& area) { return area.Range().Overlaps({at, 1}); };
            if (plan.bytes[at] != before.bytes[at]) {
                EXPECT_TRUE(at < HEADER_SIZE || std::any_of(after.areas.begin(), after.areas.end(), owned)) << at;
            }
        }
}

DESCRIPTION Server() {
    return {.size = 512,
            .areas = {At(0x08, Board(72)), At(0x60, Product(8)),
                      At(0x100, Records({Supply(), {.type = 0xC0, .data = {1, 2, 3}}}))}};
}

std::vector<SHAPE> Shapes() {
    const auto sound = std::optional(REFUSAL::NOTHING_TO_DO);
    const auto missing = std::optional<REFUSAL>();
    const RECORD_DESCRIPTION closing{.type = 0x82, .flags = BYTE{0}, .checksum = BYTE{0x7E}};
    RECORD_DESCRIPTION wrong = Supply();
    wrong.checksum = BYTE{0x55};
    AREA_DESCRIPTION tag = Product();
    tag.fields[5] = FIELD_DESCRIPTION(std::string(63, 'T'));
    AREA_DESCRIPTION filled = Product();
    filled.fields[4] = {ENCODING::TEXT, {'S', 'N', 0, 0, 0, 0, 0, 0}};
    AREA_DESCRIPTION japanese = Product();
    japanese.language = 53;
    japanese.fields = {{ENCODING::TEXT, {'S', 0, 'u', 0, 0x2C, 0x67}}};
    AREA_DESCRIPTION padded = Product();
    padded.padding = {0, 9, 9};
    AREA_DESCRIPTION versioned = Product();
    versioned.version = 0xF2;
    AREA_DESCRIPTION early{
        .id = AREA_ID::BOARD, .fields = {{ENCODING::BINARY, {0, 0, 0}}, "Maker", "Name"}, .endsEarly = true};
    const BYTES server = *Build(Server());
    const BYTES empty = Made({Product(), Records({{.type = 0xC0}, Supply()})}, 256);
    const std::size_t board = 8;
    return {{"server", server, {}, {}, sound},
            {"internal behind product", Made({Product(), Internal(64)}), {}, {}, sound},
            {"internal behind product, board behind", Made({Product(), Internal(64), Board()}, 512), {}, {}, sound},
            {"internal between", Made({Board(), Internal(72), Product()}, 256), {}, {}, sound},
            {"internal alone", Made({Internal(120)}, 128), {}, {}, sound},
            {"internal of 4 KiB", Made({Product(), Internal(4096)}), {}, REFUSAL::NO_ROOM, sound},
            {"internal last of 4096", Made({Board(), Product(), At(200, Internal(3896))}, 4096), {}, {}, sound},
            {"no chassis", Made({Board(), Product()}, 256, 0xFF), {}, {}, sound},
            {"every info area", Made({Chassis(), Board(), Product()}, 512), {}, {}, sound},
            {"unknown bytes between", Made({At(16, Board()), At(128, Chassis())}, 256, 0xEE), {}, {}, sound},
            {"another format version", Made({Board(), versioned}, 256), {}, {}, sound},
            {"only chassis", Made({Chassis()}, 128), {}, {}, sound},
            {"240 bytes, 148 of padding", Made({Product(148)}, 256), {}, {}, sound},
            {"63-byte tag", Made({Chassis(), tag, Records({Supply()})}, 256), {}, {}, sound},
            {"NUL-filled", Made({Board(), filled}, 256), {}, {}, sound},
            {"list that never ends", Endless(), {"no-end-marker"}, REFUSAL::DAMAGED, sound},
            {"closing record", Made({Product(), Records({Supply(), closing})}, 256), {}, {}, sound},
            {"wrong record checksum", Made({Product(), Records({wrong})}, 256), {"record-checksum"}, {}, missing},
            {"empty record, wrong header checksum",
             With(empty, empty[5] * UNIT + 4, {0x55}),
             {"record-header-checksum"},
             {},
             sound}, // put right, it would end the list
            {"records on top of board",
             With(server, 5, {2, 0, static_cast<BYTE>(server[7] + server[5] - 2)}),
             {"record-header-checksum", "record-checksum", "areas-overlap", "areas-overlap"},
             {},
             missing},
            {"board's offset inside product",
             With(server, 3, {17, server[4], server[5], 0, static_cast<BYTE>(server[7] + server[3] - 17)}),
             {"area-past-end", "areas-overlap", "areas-overlap"},
             {},
             missing},
            {"length a unit short", With(server, board + 1, {8}), {"area-checksum"}, {}, missing},
            {"length zero", With(server, board + 1, {0}), {"area-length-zero"}, {}, missing},
            {"header overwritten",
             With(server, 0, BYTES(8, 0xFF)),
             {"header-version", "header-checksum"},
             REFUSAL::DAMAGED,
             missing},
            {"header of text",
             With(server, 0, {'F', 'A', 'C', 'T', 'O', 'R', 'Y', '!'}),
             {"header-version", "header-checksum"},
             REFUSAL::DAMAGED,
             missing},
            {"header lost, board twice",
             With(With(server, 0, BYTES(8)), 0x180, BYTES(server.begin() + 8, server.begin() + 80)),
             {"area-ambiguous", "header-version"},
             REFUSAL::DAMAGED,
             REFUSAL::AMBIGUOUS},
            {"every encoding", Made({Encodings()}, 512), {}, {}, sound},
            {"two-byte text", Made({japanese}, 256), {}, REFUSAL::BAD_VALUE, sound},
            {"padding", Made({padded, Board()}, 256), {}, {}, sound},
            {"list ends early", Made({early, Product()}, 256), {}, {}, sound},
            {"blank", BYTES(256, 0xFF), {}, {}, sound},
            {"no FRU", BYTES(64, 0x42), {"not-a-fru"}, REFUSAL::DAMAGED, sound}};
}

} // namespace FruImage
