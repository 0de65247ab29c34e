// The info areas as classes: which images they take, what they make of them, and the rules of setting.
#include "support.h"

#include "frudata/areas/boardinfoarea.h"
#include "frudata/areas/chassisinfoarea.h"
#include "frudata/areas/productinfoarea.h"

#include <ctime>

namespace Frudata_Tests {
namespace {

using namespace Frudata_Private;

struct KIND {
    const char* sourceFile;
    std::unique_ptr<CInfoArea> (*create)();
    BYTES header;
    UINT32 fixedFields; // those with a type/length byte
    UINT32 firstIndex;  // of them
    int customTitle;
    const char* tooLong; // debug log line of a refused custom field
    bool customsMarkModified;
};

template <typename AREA> std::unique_ptr<CInfoArea> Create() {
    return std::make_unique<AREA>();
}

const KIND g_kinds[] = {
    {"boardinfoarea",
     Create<CBoardInfoArea>,
     {1, 0, 25, 1, 2, 3},
     5,
     1,
     20,
     "CBoardInfoArea::SetCustomField - FRU Data too long\r\n",
     true},
    {"productinfoarea",
     Create<CProductInfoArea>,
     {1, 0, 25},
     7,
     0,
     28,
     "CProductInfoArea::SetCustomField - FRU Data Too Long\r\n",
     false},
    {"chassisinfoarea", Create<CChassisInfoArea>, {1, 0, 17}, 2, 1, 0, "", true},
};

BYTES Join(const KIND& kind, const std::vector<BYTES>& fields) {
    BYTES start = kind.header;
    for (const BYTES& field : fields)
        start = start + field;
    return start;
}

/// The fixed fields and two custom fields.
std::vector<BYTES> Fields(const KIND& kind) {
    std::vector<BYTES> fields;
    for (UINT32 i = 0; i < kind.fixedFields; ++i)
        fields.push_back(Field("f" + std::to_string(i), static_cast<UINT8>(i << 6)));
    fields.push_back(Field("cu"));
    fields.push_back(Field("cus", 0));
    return fields;
}

UINT32 Size(const BYTES& bytes) {
    return static_cast<UINT32>(bytes.size());
}

bool Accepts(const KIND& kind, const BYTES& image) {
    return kind.create()->SetData(image.data(), Size(image));
}

BYTES Image(const CInfoArea& area) {
    return BYTES(area.GetData(), area.GetData() + area.GetLength());
}

class CInfoAreaTest : public CLibraryTest {};

TEST_F(CInfoAreaTest, ImagesTakenAndRefused) {
    for (const KIND& kind : g_kinds) {
        const std::vector<BYTES> fields = Fields(kind);
        const BYTES start = Join(kind, fields);
        BYTES nonzeroPad = FullArea(start, 64);
        ++nonzeroPad[62];
        --nonzeroPad[63];
        BYTES noMarker = FullArea(start, 64);
        noMarker[start.size()] = 0xC0;
        BYTES markerAsField = start;
        markerAsField[kind.header.size()] = 0xC1; // a one-byte field; its second character starts the next one
        markerAsField[kind.header.size() + 2] = 0x00;
        const BYTES fills = start + Field(std::string((79 - start.size()) % 8 + 55, 'x'));
        const BYTES tight = start + Field(std::string((78 - start.size()) % 8 + 55, 'x'));
        BYTES fullDeclaredLess = FullArea(start, 64);
        fullDeclaredLess[1] = 7;
        const struct {
            const char* name;
            BYTES image;
            bool isAccepted;
        } rows[] = {
            {"whole", FullArea(start, 64), true},
            {"compact", CompactArea(start, 64), true},
            {"whole, largest", FullArea(start, 512), true},
            {"compact, largest", CompactArea(start, 512), true},
            {"declared too large", CompactArea(start, 520), false},
            {"supplied too large", FullArea(start, 512) + BYTES{0}, false},
            {"declared less than supplied", fullDeclaredLess, false},
            {"declared zero", CompactArea(start, 0), false},
            {"padding not zero", nonzeroPad, false},
            {"no end marker", noMarker, false},
            {"end marker in a fixed field", CompactArea(markerAsField, 64), true},
            {"no byte left for the checksum", CompactArea(fills, fills.size() + 1), false},
            {"checksum right behind the marker", FullArea(tight, tight.size() + 2), true},
        };
        for (const auto& row : rows)
            EXPECT_EQ(Accepts(kind, row.image), row.isAccepted) << kind.sourceFile << ": " << row.name;

        const BYTES whole = FullArea(start, 64);
        for (std::size_t size = 0; size <= whole.size(); ++size)
            EXPECT_EQ(Accepts(kind, BYTES(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))),
                      size == whole.size() || size == start.size() + 1)
                << kind.sourceFile << ": first " << size << " bytes";

        BYTES wrongChecksum = whole;
        ++wrongChecksum[63];
        EXPECT_ASSERTION(Accepts(kind, wrongChecksum), kind.sourceFile, "IsValid()");
        EXPECT_ASSERTION(kind.create()->GetData(), kind.sourceFile, "GetLength()");
    }
}

TEST_F(CInfoAreaTest, RoundTrips) {
    for (const KIND& kind : g_kinds)
        for (const std::size_t size : {64U, 72U, 512U}) {
            const BYTES whole = FullArea(Join(kind, Fields(kind)), size);
            for (const BYTES& image : {whole, CompactArea(Join(kind, Fields(kind)), size)}) {
                const std::unique_ptr<CInfoArea> area = kind.create();
                ASSERT_TRUE(area->SetData(image.data(), Size(image)));
                EXPECT_EQ(Image(*area), whole) << kind.sourceFile;
                EXPECT_EQ(area->GetChecksum(), whole.back());
                EXPECT_FALSE(area->IsModified());
            }
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
            const BYTES before = FullArea(Join(kind, fields), 64);
            ASSERT_TRUE(area->SetData(before.data(), Size(before)));
            const UINT32 pad = static_cast<UINT32>(area->GetPadLength());
            EXPECT_EQ(pad, 64 - Join(kind, fields).size() - 2);
            const UINT32 room = pad + Size(field) - 1;
            const UINT32 index = position + kind.firstIndex;
            const auto set = [&](const UINT8* data, UINT32 length) {
                return area->SetFieldData(index, data, length, FRU_FIELD_TYPE_TEXT);
            };
            SCOPED_TRACE(std::string(kind.sourceFile) + " field " + std::to_string(index));

            std::filesystem::remove("DBGLOG.txt");
            const std::wstring title = area->GetFieldTitleFromIndex(index);
            const std::wstring tooLong = kind.customTitle ? L"T137 " + title : L"";
            EXPECT_FALSE(set(value, room + 1));
            EXPECT_EQ(LastError(), tooLong);
            EXPECT_THAT(ReadFile("DBGLOG.txt"), testing::StartsWith(isCustom ? kind.tooLong : ""));
            EXPECT_FALSE(set(nullptr, 1));
            EXPECT_EQ(LastError(), kind.customTitle ? L"T125" : L"");
            EXPECT_EQ(Image(*area), before);
            EXPECT_FALSE(area->IsModified());

            ASSERT_TRUE(set(value, room));
            field = Field(std::string(reinterpret_cast<const char*>(value), room));
            EXPECT_EQ(Image(*area), FullArea(Join(kind, fields), 64));
            EXPECT_TRUE(area->IsValid());
            EXPECT_EQ(area->GetPadLength(), 0);
            EXPECT_EQ(area->IsModified(), !isCustom || kind.customsMarkModified);

            EXPECT_TRUE(area->SetLength(512));
            EXPECT_FALSE(area->SetLength(12));
            EXPECT_FALSE(set(value, 64)) << "63 bytes is what a length can say, whatever the padding";
            EXPECT_EQ(LastError(), tooLong);
            EXPECT_TRUE(set(value, 63));
            field = Field(std::string(reinterpret_cast<const char*>(value), 63));
            EXPECT_EQ(Image(*area), FullArea(Join(kind, fields), 512));
            EXPECT_TRUE(set(value, 0));
            field = {0xC0};
            EXPECT_EQ(Image(*area), FullArea(Join(kind, fields), 512));
        }
}

TEST_F(CInfoAreaTest, CustomFieldsAreAddedAndRemoved) {
    for (const KIND& kind : g_kinds) {
        SCOPED_TRACE(kind.sourceFile);
        std::vector<BYTES> fields = Fields(kind);
        const BYTES before = FullArea(Join(kind, fields), 64);
        const std::unique_ptr<CInfoArea> area = kind.create();
        ASSERT_TRUE(area->SetData(before.data(), Size(before)));
        const UINT32 pad = static_cast<UINT32>(area->GetPadLength());
        const std::string value(pad, 'a');
        const UINT8* data = reinterpret_cast<const UINT8*>(value.data());
        EXPECT_FALSE(area->AddCustomField(nullptr, 1, FRU_FIELD_TYPE_TEXT));
        EXPECT_FALSE(area->AddCustomField(data, pad + 1, FRU_FIELD_TYPE_TEXT));
        EXPECT_EQ(LastError(), L"");
        EXPECT_EQ(Image(*area), before);
        // The type/length byte is not counted: the field fits one byte less well than the check says.
        EXPECT_TRUE(area->AddCustomField(data, pad, FRU_FIELD_TYPE_BCD_PLUS));
        EXPECT_TRUE(area->SetLength(72));
        EXPECT_EQ(area->GetPadLength(), 7);
        fields.push_back(Field(value, 0x40));
        EXPECT_EQ(Image(*area), FullArea(Join(kind, fields), 72));

        EXPECT_TRUE(area->RemoveCustomField(1));
        EXPECT_FALSE(area->IsValid());
        area->UpdateChecksum();
        EXPECT_TRUE(area->IsValid());
        EXPECT_FALSE(area->IsModified());
        EXPECT_TRUE(area->RemoveCustomField(0));
        fields.erase(fields.end() - 3, fields.end() - 1);
        area->UpdateChecksum();
        EXPECT_EQ(Image(*area), FullArea(Join(kind, fields), 72));
        EXPECT_EQ(area->GetNumberOfCustomFields(), 1U);
        EXPECT_ASSERTION(area->RemoveCustomField(1), kind.sourceFile, "0");
        EXPECT_FALSE(area->SetCustomField(1, data, 1, FRU_FIELD_TYPE_TEXT));
        EXPECT_EQ(LastError(), kind.customTitle ? L"T135" : L"");
    }
}

TEST_F(CInfoAreaTest, WrongIndices) {
    for (const KIND& kind : g_kinds) {
        const BYTES image = FullArea(Join(kind, Fields(kind)), 64);
        const std::unique_ptr<CInfoArea> area = kind.create();
        ASSERT_TRUE(area->SetData(image.data(), Size(image)));
        const UINT32 count = area->GetNumberOfFields();
        const bool isChassis = kind.customTitle == 0, isProduct = kind.customTitle == 28;
        EXPECT_ASSERTION(area->SetFieldData(count, image.data(), 1, FRU_FIELD_TYPE_TEXT), kind.sourceFile,
                         "index <= GetNumberOfFields( ) - 1");
        // The index behind the last asks for the custom field before the first.
        EXPECT_ASSERTION(area->GetFieldValueFromIndex(count), kind.sourceFile,
                         isProduct ? "nIndexOfFieldToGet <= ( UINTN ) m_NumOfCustomFields"
                                   : "nIndexOfFieldToGet <= m_NumOfCustomFields");
        EXPECT_EQ(area->GetFieldValueFromIndex(count + 1), nullptr);
        EXPECT_EQ(LastError(), L"T135");
        const UINT8* data = image.data();
        UINTN length = 7;
        EXPECT_FALSE(area->GetFieldData(count, data, length));
        EXPECT_TRUE(data == nullptr && length == 0);
        if (isChassis)
            EXPECT_EQ(area->GetFieldTitleFromIndex(count), nullptr);
        else
            EXPECT_DEATH(area->GetFieldTitleFromIndex(count), kind.sourceFile);
    }
}

TEST_F(CInfoAreaTest, ABoardIsStampedOnce) {
    CBoardInfoArea board;
    const BYTES image = FullArea(BYTES{1, 0, 0, 0, 0, 0} + Fill(5, 0xC0), 16);
    ASSERT_TRUE(board.SetData(image.data(), Size(image)));
    EXPECT_FALSE(board.isMfgDateTimeSet());
    const long before = static_cast<long>((std::time(nullptr) - 820368000) / 60);
    board.updateMfgDateTime();
    const UINT8* stamp = board.GetMfgDateTime();
    const long minutes = stamp[0] | stamp[1] << 8 | stamp[2] << 16;
    EXPECT_GE(minutes, before & 0xFFFFFF);
    EXPECT_LE(minutes, (before & 0xFFFFFF) + 1);
    EXPECT_TRUE(board.IsValid());
    const UINT8 first[] = {1, 0, 0};
    EXPECT_TRUE(board.SetMfgDateTime(first, 3));
    board.updateMfgDateTime();
    EXPECT_EQ(board.GetMfgDateTime()[0], 1);
    EXPECT_TRUE(board.IsValid());
    EXPECT_FALSE(board.IsModified());
    EXPECT_FALSE(board.getCurTimeInMfgDateTimeFormat(nullptr));
}

TEST_F(CInfoAreaTest, ABoardWithoutRoomForItsFieldsIsMisuse) {
    CBoardInfoArea board;
    const BYTES image = FullArea(BYTES{1, 0, 0, 0, 0, 0} + Fill(5, 0xC0), 24);
    ASSERT_TRUE(board.SetData(image.data(), Size(image)));
    EXPECT_TRUE(board.SetLength(8));
    EXPECT_ASSERTION(board.GetPadLength(), "boardinfoarea", "padding >= 0");
}

} // namespace
} // namespace Frudata_Tests
