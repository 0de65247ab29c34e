// Every byte of five shapes inverted, and every truncation: what is untouched is shown unchanged, and a repair makes
// nothing up.
#include "fruimage/repair.h"
#include "tests/fruimage/shapes.h"

namespace FruImage {

namespace {

const char* const VICTIMS[] = {"server", "internal between", "closing record", "every encoding", "two-byte text"};

std::vector<std::string> Texts(const FRU& fru, AREA_ID id) {
    std::vector<std::string> texts;
    if (const AREA* area = fru.Find(id)) {
        for (const FIELD& field : area->fields)
            texts.push_back(field.text);
        for (const RECORD& record : area->records)
            texts.push_back(Hex(record.data));
    }
    return texts;
}

/// Areas that have none of `touched`.
void ExpectOthersUnchanged(const FRU& before, const FRU& after, const RANGE& touched) {
    for (const AREA& area : before.areas) {
        if (area.Range().Overlaps(touched) || area.id == AREA_ID::INTERNAL_USE)
            continue;
        ASSERT_NE(after.Find(area.id), nullptr) << AreaName(area.id);
        EXPECT_FALSE(after.Find(area.id)->damaged) << AreaName(area.id);
        EXPECT_EQ(Texts(after, area.id), Texts(before, area.id)) << AreaName(area.id);
    }
}

TEST(Damage, EveryByteInverted) {
    for (const char* name : VICTIMS) {
        const FRU before = Parse(Shape(name).image);
        for (std::size_t at = 0; at < before.bytes.size(); ++at) {
            SCOPED_TRACE(testing::Message() << name << ", byte " << at);
            BYTES bytes = before.bytes;
            bytes[at] = static_cast<BYTE>(~bytes[at]);
            const FRU after = Parse(bytes);
            ExpectOthersUnchanged(before, after, {at, 1});
            const Result<PLAN> plan = Repair(after);
            if (plan) {
                const FRU repaired = Parse(plan->bytes);
                ExpectOthersUnchanged(before, repaired, {at, 1});
                EXPECT_TRUE(repaired.IsSound()) << plan->notes[0];
            }
            if (at < HEADER_SIZE) {
                EXPECT_EQ(plan->bytes, before.bytes) << plan.Error().text;
                EXPECT_EQ(after.state, STATE::DAMAGED_HEADER);
            }
            if (testing::Test::HasFailure())
                return;
        }
    }
}

TEST(Damage, EveryTruncation) {
    for (const char* name : VICTIMS) {
        const FRU before = Parse(Shape(name).image);
        for (std::size_t size = HEADER_SIZE; size < before.bytes.size(); ++size) {
            SCOPED_TRACE(testing::Message() << name << ", " << size << " bytes");
            const FRU after = Parse(BYTE_VIEW(before.bytes).first(size));
            ExpectOthersUnchanged(before, after, {size, before.bytes.size() - size});
            const Result<PLAN> plan = Repair(after);
            EXPECT_TRUE(!plan || plan->bytes.size() == size);
        }
    }
}

TEST(Damage, SmallestInputs) {
    for (std::size_t size = 0; size < 24; ++size)
        for (const BYTE fill : BYTES{0x00, 0x01, 0x42, 0xFF}) {
            const FRU fru = Parse(BYTES(size, fill));
            EXPECT_EQ(fru.state == STATE::BLANK, size != 0 && (fill == 0 || fill == 0xFF));
            EXPECT_FALSE(Repair(fru));
        }
}

} // namespace

} // namespace FruImage
