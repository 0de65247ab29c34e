// Random images and random edits: what no edit names has the same bytes, sums are right, nothing is found.
#include "tests/fruimage/shapes.h"

#include <random>
#include <set>

namespace FruImage {

namespace {

class CRandom {
  public:
    explicit CRandom(unsigned seed) : m_engine(seed) {}

    std::size_t Below(std::size_t limit) { return m_engine() % limit; }
    bool OneIn(std::size_t number) { return Below(number) == 0; }

    std::string Text() {
        std::string text(Below(12), ' ');
        for (char& character : text)
            character = static_cast<char>('!' + Below(90));
        return text.size() == 1 ? text + "." : text;
    }

    BYTES Bytes(std::size_t size) {
        BYTES bytes(size);
        for (BYTE& byte : bytes)
            byte = static_cast<BYTE>(m_engine());
        return bytes;
    }

    FIELD_DESCRIPTION Field() {
        const std::size_t kind = Below(6);
        if (kind >= 3)
            return FIELD_DESCRIPTION(Text());
        return {static_cast<ENCODING>(kind), Bytes(Below(OneIn(20) ? 64 : 10))};
    }

    AREA_DESCRIPTION Area(AREA_ID id) {
        AREA_DESCRIPTION area{.id = id, .spare = Below(40)};
        if (id == AREA_ID::INTERNAL_USE) {
            area.bytes = Bytes(8 * (1 + Below(12)));
            area.bytes[0] = 1;
        } else if (id == AREA_ID::MULTIRECORD)
            for (std::size_t left = 1 + Below(3); left > 0; --left)
                area.records.push_back({.type = static_cast<BYTE>(Below(256)), .data = Bytes(1 + Below(30))});
        else
            for (std::size_t position = 0; position < AreaRow(id).fields.size() + Below(4); ++position)
                area.fields.push_back(position < AreaRow(id).LeadingFields()
                                          ? FIELD_DESCRIPTION(ENCODING::BINARY, Bytes(id == AREA_ID::BOARD ? 3U : 1U))
                                          : Field());
        return area;
    }

    BYTES Image() {
        DESCRIPTION description{.fill = static_cast<BYTE>(OneIn(2) ? 0 : 0xFF)};
        std::vector<AREA_ID> ids = {AREA_ID::INTERNAL_USE, AREA_ID::CHASSIS, AREA_ID::BOARD, AREA_ID::PRODUCT,
                                    AREA_ID::MULTIRECORD};
        std::shuffle(ids.begin(), ids.end(), m_engine);
        std::size_t position = HEADER_SIZE;
        for (const AREA_ID id : ids) {
            if (OneIn(4))
                continue;
            position += 8 * Below(4);
            AREA_DESCRIPTION area = Area(id);
            area.offset = position;
            DESCRIPTION alone{.areas = {area}};
            position = RoundUp(Build(alone)->size());
            description.areas.push_back(std::move(area));
        }
        description.size = position + 8 * Below(30);
        return *Build(description);
    }

    EDIT Edit(const FRU& fru) {
        const AREA_ID area = static_cast<AREA_ID>(2 + Below(3));
        const AREA* present = fru.Find(area);
        const std::size_t fields = present ? present->fields.size() : AreaRow(area).fields.size();
        const std::size_t position = std::max(AreaRow(area).LeadingFields(), Below(std::max<std::size_t>(fields, 1)));
        switch (Below(8)) {
        case 0:
            return ADD_FIELD{area, Text(), {}};
        case 1:
            return REMOVE_FIELD{{area, FIELD_NAME::CUSTOM, Below(3)}};
        case 2:
            return APPEND_RECORD{{static_cast<BYTE>(Below(256)), 2, Bytes(1 + Below(40))}};
        case 3:
            return REMOVE_RECORD{Below(3)};
        case 4:
            return SET_BYTES{FieldAt(area, position), ENCODING::BINARY, Bytes(Below(64))};
        default:
            return SET_FIELD{FieldAt(area, position), Text() + Text() + Text() + Text(), {}};
        }
    }

  private:
    std::mt19937 m_engine;
};

AREA_ID AreaOf(const EDIT& edit) {
    return std::visit(
        [](const auto& one) {
            if constexpr (requires { one.name; })
                return one.name.area;
            else if constexpr (requires { one.area; })
                return one.area;
            else
                return AREA_ID::MULTIRECORD;
        },
        edit);
}

void ExpectOnlyNamed(const FRU& before, const FRU& after, const EDIT& edit) {
    for (const AREA_ROW& row : Areas())
        if (row.id != AreaOf(edit))
            ExpectSameArea(before, after, row.id);
    const auto* set = std::get_if<SET_FIELD>(&edit);
    const AREA* old = set ? before.Find(set->name.area) : nullptr;
    for (std::size_t position = 0; old && position < old->fields.size(); ++position)
        if (position != set->name.Position()) {
            EXPECT_EQ(after.Find(FieldAt(old->id, position))->bytes, old->fields[position].bytes);
        }
    if (set) {
        EXPECT_EQ(after.Find(set->name)->text, set->text);
    }
    const AREA* internal = before.Find(AREA_ID::INTERNAL_USE);
    if (internal) {
        EXPECT_EQ(after.Find(AREA_ID::INTERNAL_USE)->Range(), internal->Range());
    }
}

TEST(Property, EditsTouchNothingElse) {
    unsigned made = 0;
    for (unsigned seed = 0; seed < 4000; ++seed) {
        SCOPED_TRACE(seed);
        CRandom random(seed);
        FRU fru = Parse(random.Image());
        ASSERT_TRUE(fru.findings.empty()) << fru.findings[0].text;
        ASSERT_EQ(*Build(*Describe(fru)), fru.bytes);
        for (int count = 0; count < 3; ++count) {
            const EDIT edit = random.Edit(fru);
            const Result<PLAN> plan = Apply(fru, {&edit, 1}, {.deviceSize = random.OneIn(2) ? fru.bytes.size() : 0});
            if (!plan)
                continue;
            ++made;
            const FRU after = Parse(plan->bytes);
            ASSERT_EQ(Damages(after), std::vector<std::string>());
            ExpectOnlyNamed(fru, after, edit);
            ExpectGoodPlan(fru, *plan);
            ASSERT_EQ(*Build(*Describe(after)), after.bytes);
            if (testing::Test::HasFailure())
                return;
            fru = after;
        }
    }
    EXPECT_GT(made, 6000U);
}

} // namespace

} // namespace FruImage
