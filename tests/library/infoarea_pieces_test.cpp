// The info areas as classes: which images they take, what they make of them, and the rules of setting.
#include "support.h"

#include "frudata/areas/boardinfoarea.h"
#include "frudata/areas/chassisinfoarea.h"
#include "frudata/areas/productinfoarea.h"

#include <ctime>

namespace Frudata_Tests {
namespace {

using namespace Frudata_Private;

template <typename AREA> std::unique_ptr<CInfoArea> Create() {
    return std::make_unique<AREA>();
}

constexpr char BOARD_LOG[] = "CBoardInfoArea::SetCustomField - FRU Data too long\r\n";
constexpr char PRODUCT_LOG[] = "CProductInfoArea::SetCustomField - FRU Data Too Long\r\n";

const struct KIND {
    const char* sourceFile;
    std::unique_ptr<CInfoArea> (*create)();
    BYTES header;
    UINT32 fixedFields;  // those with a type/length byte
    UINT32 firstIndex;   // of them
    bool namesFields;    // in its messages
    const char* tooLong; // debug log line of a refused custom field
    bool customsMarkModified;
} g_kinds[] = {{"boardinfoarea", Create<CBoardInfoArea>, {1, 0, 25, 1, 2, 3}, 5, 1, true, BOARD_LOG, true},
               {"productinfoarea", Create<CProductInfoArea>, {1, 0, 25}, 7, 0, true, PRODUCT_LOG, false},
               {"chassisinfoarea", Create<CChassisInfoArea>, {1, 0, 17}, 2, 1, false, "", true}};

BYTES Join(BYTES start, const std::vector<BYTES>& fields) {
    for (const BYTES& field : fields)
        start = start + field;
    return start;
}

/// The fixed fields and two custom fields.
std::vector<BYTES> Fields(const KIND& kind) {
    std::vector<BYTES> fields;
    for (UINT32 i = 0; i < kind.fixedFields; ++i)
        fields.push_back(Field("f" + std::to_string(i), static_cast<UINT8>(i << 6)));
    fields.insert(fields.end(), {Field("cu"), Field("cus", 0)});
    return fields;
}

bool Takes(CInfoArea& area, const BYTES& image) {
    return area.SetData(image.data(), static_cast<UINTN>(image.size()));
}

BYTES Image(const CInfoArea& area) {
    return BYTES(area.GetData(), area.GetData() + area.GetLength());
}

using CInfoAreaTest = CLibraryTest;

TEST_F(CInfoAreaTest, ImagesTakenAndRefused) {
    for (const KIND& kind : g_kinds) {
        const BYTES start = Join(kind.header, Fields(kind)), whole = FullArea(start, 64);
        BYTES nonzeroPad = whole, noMarker = whole, declaredLess = whole, wrongChecksum = whole, markerAsField = start;
        ++nonzeroPad[62];
        --nonzeroPad[63];
        noMarker[start.size()] = 0xC0;
        declaredLess[1] = 7;
        ++wrongChecksum[63];
        markerAsField[kind.header.size()] = 0xC1; // a one-byte field; its second character starts the next one
        markerAsField[kind.header.size() + 2] = 0x00;
        const BYTES fills = start + Field(std::string((79 - start.size()) % 8 + 55, 'x'));
        const BYTES tight = start + Field(std::string((78 - start.size()) % 8 + 55, 'x'));
        const std::tuple<const char*, BYTES, BYTES> rows[] = {
            // image and result, which is empty where it is refused
            {"whole", whole, whole},
            {"compact", CompactArea(start, 64), whole},
            {"compact, to be padded more", CompactArea(start, 72), FullArea(start, 72)},
            {"whole, largest", FullArea(start, 512), FullArea(start, 512)},
            {"compact, largest", CompactArea(start, 512), FullArea(start, 512)},
            {"declared too large", CompactArea(start, 520), {}},
            {"supplied too large", FullArea(start, 512) + BYTES{0}, {}},
            {"declared less than supplied", declaredLess, {}},
            {"declared zero", CompactArea(start, 0), {}},
            {"padding not zero", nonzeroPad, {}},
            {"no end marker", noMarker, {}},
            {"end marker in a fixed field", CompactArea(markerAsField, 64), FullArea(markerAsField, 64)},
            {"no byte left for the checksum", CompactArea(fills, fills.size() + 1), {}},
            {"checksum right behind the marker", FullArea(tight, tight.size() + 2), FullArea(tight, tight.size() + 2)},
        };
        for (const auto& [name, image, result] : rows) {
            const std::unique_ptr<CInfoArea> area = kind.create();
            const bool isTaken = Takes(*area, image);
            EXPECT_EQ(isTaken, !result.empty()) << kind.sourceFile << ": " << name;
            EXPECT_EQ(isTaken ? Image(*area) : BYTES{}, result) << kind.sourceFile << ": " << name;
            EXPECT_FALSE(isTaken && area->IsModified());
        }
        for (std::size_t size = 0; size <= whole.size(); ++size)
            EXPECT_EQ(Takes(*kind.create(), BYTES(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))),
                      size == whole.size() || size == start.size() + 1)
                << kind.sourceFile << ": first " << size << " bytes";
        EXPECT_ASSERTION(Takes(*kind.create(), wrongChecksum), kind.sourceFile, "IsValid()");
        EXPECT_ASSERTION(kind.create()->GetData(), kind.sourceFile, "GetLength()");
    }
}

TEST_F(CInfoAreaTest, SettingAFieldKeepsTheImageValidOrUntouched) {
    const UINT8 value[64] = {'v', 0, 0xC1, 0xFF};
    for (const KIND& kind : g_kinds)
        for (UINT32 position = 0; position < kind.fixedFields + 2; ++position) {
            std::vector<BYTES> fields = Fields(kind);
            const bool isCustom = position >= kind.fixedFields;
            // The first custom index stands for the last custom field.
            BYTES& field = fields[isCustom ? 2 * kind.fixedFields + 1 - position : position];
            const std::unique_ptr<CInfoArea> area = kind.create();
            const BYTES before = FullArea(Join(kind.header, fields), 64);
            ASSERT_TRUE(Takes(*area, before));
            const UINT32 pad = static_cast<UINT32>(area->GetPadLength()), index = position + kind.firstIndex;
            EXPECT_EQ(pad, 64 - Join(kind.header, fields).size() - 2);
            const UINT32 room = pad + static_cast<UINT32>(field.size()) - 1;
            const auto set = [&](const UINT8* data, UINT32 length) {
                field = Field(std::string(reinterpret_cast<const char*>(value), length));
                return area->SetFieldData(index, data, length, FRU_FIELD_TYPE_TEXT);
            };
            SCOPED_TRACE(std::string(kind.sourceFile) + " field " + std::to_string(index));

            TakeLog();
            const std::wstring tooLong =
                kind.namesFields ? std::wstring(L"T137 ") + area->GetFieldTitleFromIndex(index) : L"";
            EXPECT_FALSE(set(value, room + 1));
            EXPECT_EQ(LastError(), tooLong);
            EXPECT_THAT(TakeLog(), testing::StartsWith(isCustom ? kind.tooLong : ""));
            EXPECT_FALSE(set(nullptr, 1));
            EXPECT_EQ(LastError(), kind.namesFields ? L"T125" : L"");
            EXPECT_EQ(Image(*area), before);
            EXPECT_FALSE(area->IsModified());

            ASSERT_TRUE(set(value, room));
            EXPECT_EQ(Image(*area), FullArea(Join(kind.header, fields), 64));
            EXPECT_EQ(area->IsModified(), !isCustom || kind.customsMarkModified);
            EXPECT_TRUE(area->SetLength(512));
            EXPECT_FALSE(area->SetLength(12));
            EXPECT_FALSE(set(value, 64)) << "63 bytes is what a length can say, whatever the padding";
            EXPECT_EQ(LastError(), tooLong);
            for (const UINT32 length : {63U, 0U}) {
                EXPECT_TRUE(set(value, length));
                EXPECT_EQ(Image(*area), FullArea(Join(kind.header, fields), 512));
            }
        }
}

TEST_F(CInfoAreaTest, CustomFieldsAreAddedAndRemovedAndWrongIndicesRefused) {
    for (const KIND& kind : g_kinds) {
        SCOPED_TRACE(kind.sourceFile);
        std::vector<BYTES> fields = Fields(kind);
        const BYTES before = FullArea(Join(kind.header, fields), 64);
        const std::unique_ptr<CInfoArea> area = kind.create();
        ASSERT_TRUE(Takes(*area, before));
        const UINT32 count = area->GetNumberOfFields(), pad = static_cast<UINT32>(area->GetPadLength());
        const UINT8* data = before.data();
        EXPECT_ASSERTION(area->SetFieldData(count, data, 1, FRU_FIELD_TYPE_TEXT), kind.sourceFile,
                         "index <= GetNumberOfFields( ) - 1");
        // The index behind the last asks for the custom field before the first.
        EXPECT_ASSERTION(area->GetFieldValueFromIndex(count), kind.sourceFile,
                         kind.fixedFields == 7 ? "nIndexOfFieldToGet <= ( UINTN ) m_NumOfCustomFields"
                                               : "nIndexOfFieldToGet <= m_NumOfCustomFields");
        EXPECT_EQ(area->GetFieldValueFromIndex(count + 1), nullptr);
        EXPECT_EQ(LastError(), L"T135");
        UINTN length = 7;
        EXPECT_TRUE(!area->GetFieldData(count, data, length) && !data && length == 0);
        if (kind.namesFields)
            EXPECT_DEATH(area->GetFieldTitleFromIndex(count), kind.sourceFile);
        else
            EXPECT_EQ(area->GetFieldTitleFromIndex(count), nullptr);

        const std::string value(pad, 'a');
        data = reinterpret_cast<const UINT8*>(value.data());
        LastError();
        EXPECT_FALSE(area->AddCustomField(nullptr, 1, FRU_FIELD_TYPE_TEXT) ||
                     area->AddCustomField(data, pad + 1, FRU_FIELD_TYPE_TEXT));
        EXPECT_EQ(LastError(), L"");
        EXPECT_EQ(Image(*area), before);
        // The type/length byte is not counted: the field fits one byte less well than the check says.
        EXPECT_TRUE(area->AddCustomField(data, pad, FRU_FIELD_TYPE_BCD_PLUS) && area->SetLength(72));
        fields.push_back(Field(value, 0x40));
        EXPECT_EQ(Image(*area), FullArea(Join(kind.header, fields), 72));

        EXPECT_TRUE(area->RemoveCustomField(1) && !area->IsValid());
        EXPECT_TRUE(area->RemoveCustomField(0) && !area->IsModified());
        fields.erase(fields.end() - 3, fields.end() - 1);
        area->UpdateChecksum();
        EXPECT_EQ(Image(*area), FullArea(Join(kind.header, fields), 72));
        EXPECT_EQ(area->GetNumberOfCustomFields(), 1U);
        EXPECT_ASSERTION(area->RemoveCustomField(1), kind.sourceFile, "0");
        EXPECT_FALSE(area->SetCustomField(1, data, 1, FRU_FIELD_TYPE_TEXT));
        EXPECT_EQ(LastError(), kind.namesFields ? L"T135" : L"");
    }
}

template <typename AREA> struct ACCESSORS {
    const UINT8* (AREA::*data)() const;
    UINT8 (AREA::*typeLength)() const;
    bool (AREA::*set)(const UINT8* data, UINTN length, FRU_FIELD_TYPE type);
};

/// Each accessor reaches the field at its place in `rows`, behind `header`.
template <typename AREA> void CheckAccessors(const BYTES& header, const std::vector<ACCESSORS<AREA>>& rows) {
    AREA area;
    std::vector<BYTES> fields(rows.size(), Field("old", 0x40));
    ASSERT_TRUE(Takes(area, FullArea(Join(header, fields), 64)));
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const std::string value = "n" + std::to_string(row);
        EXPECT_EQ((area.*rows[row].typeLength)(), 0x43) << row;
        EXPECT_TRUE((area.*rows[row].set)(reinterpret_cast<const UINT8*>(value.data()), 2, FRU_FIELD_TYPE_TEXT));
        EXPECT_STREQ(reinterpret_cast<const char*>((area.*rows[row].data)()), value.c_str()) << row;
        EXPECT_EQ((area.*rows[row].typeLength)(), 0xC2) << row;
        fields[row] = Field(value);
        EXPECT_EQ(Image(area), FullArea(Join(header, fields), 64)) << row;
    }
    EXPECT_TRUE(area.SetFormatVersion(7) && area.IsValid());
    EXPECT_TRUE(area.GetFormatVersion() == 7 && !area.IsModified());
    area.SetChecksum(static_cast<UINT8>(area.GetChecksum() + 1));
    EXPECT_FALSE(area.IsValid());
}

TEST_F(CInfoAreaTest, AccessorsReachTheirFields) {
#define ACCESSOR(AREA, NAME)                                                                                           \
    { &AREA::Get##NAME, &AREA::Get##NAME##TL, &AREA::Set##NAME }
    using BOARD = CBoardInfoArea;
    using PRODUCT = CProductInfoArea;
    using CHASSIS = CChassisInfoArea;
    CheckAccessors<BOARD>({1, 0, 25, 1, 2, 3},
                          {ACCESSOR(BOARD, Manufacturer), ACCESSOR(BOARD, ProductName), ACCESSOR(BOARD, SerialNumber),
                           ACCESSOR(BOARD, PartNumber), ACCESSOR(BOARD, FileId)});
    CheckAccessors<PRODUCT>({1, 0, 25},
                            {ACCESSOR(PRODUCT, ManufacturerName), ACCESSOR(PRODUCT, ProductName),
                             ACCESSOR(PRODUCT, PartNumber), ACCESSOR(PRODUCT, Version), ACCESSOR(PRODUCT, SerialNumber),
                             ACCESSOR(PRODUCT, AssetTag), ACCESSOR(PRODUCT, FileId)});
    CheckAccessors<CHASSIS>({1, 0, 17}, {ACCESSOR(CHASSIS, PartNumber), ACCESSOR(CHASSIS, SerialNumber)});
#undef ACCESSOR
    PRODUCT product;
    EXPECT_TRUE(product.SetLanguageCode(25) && product.GetLanguageCode() == 25 && product.IsValid());
    BOARD board;
    EXPECT_TRUE(board.SetLanguageCode(25) && board.GetLanguageCode() == 25 && board.IsValid());
    EXPECT_FALSE(board.getCurTimeInMfgDateTimeFormat(nullptr) || board.SetMfgDateTime(nullptr, 3));
    CHASSIS chassis;
    EXPECT_TRUE(chassis.SetType(23) && chassis.GetType() == 23 && !chassis.SetType(24) && chassis.IsValid());
}

TEST_F(CInfoAreaTest, ABoardIsStampedOnce) {
    CBoardInfoArea board;
    ASSERT_TRUE(Takes(board, FullArea(BYTES{1, 0, 0, 0, 0, 0} + BYTES(5, 0xC0), 16)));
    const long before = static_cast<long>((std::time(nullptr) - 820368000) / 60) & 0xFFFFFF;
    board.updateMfgDateTime();
    const BYTES stamp(board.GetMfgDateTime(), board.GetMfgDateTime() + 3);
    const long minutes = stamp[0] | stamp[1] << 8 | stamp[2] << 16;
    EXPECT_TRUE(board.IsValid() && minutes >= before && minutes <= before + 1) << minutes;
    EXPECT_TRUE(board.SetMfgDateTime(BYTES{1, 0, 0}.data(), 3));
    board.updateMfgDateTime();
    EXPECT_TRUE(board.GetMfgDateTime()[0] == 1 && board.IsValid() && !board.IsModified());
    EXPECT_TRUE(board.SetLength(8)) << "too short for its fields";
    EXPECT_ASSERTION(board.GetPadLength(), "boardinfoarea", "padding >= 0");
}

} // namespace
} // namespace Frudata_Tests
