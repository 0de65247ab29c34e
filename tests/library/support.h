// Shared by the library's tests: a fresh directory with texts of its own, areas and FRU text files put
// together from bytes.
#pragma once

#include "frudata/debug.h"
#include "tests/support/tablehost.h"

#include <gmock/gmock.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace Frudata_Tests {

using BYTES = std::vector<UINT8>;

BYTES operator+(BYTES left, const BYTES& right);
/// A type/length byte with its data.
BYTES Field(const std::string& data, UINT8 type = 0xC0);
/// `start` (header and fields) with its length byte set to `size` and the end-of-fields marker.
BYTES CompactArea(BYTES start, std::size_t size);
/// The same with padding and checksum.
BYTES FullArea(const BYTES& start, std::size_t size);

/// The areas of one FRU; an empty one is absent.
struct FRU_BYTES {
    BYTES internalUse = {}, chassis = {}, board = {}, product = {}, multiRecord = {};
};
/// All five areas, every fixed field distinct, three custom fields in the board area.
FRU_BYTES RichFru();
/// A board area alone.
inline FRU_BYTES BoardFru() {
    return {.board = RichFru().board};
}
std::string Hex(const BYTES& bytes);
std::string FruText(const FRU_BYTES& fru);
/// `text` with the first line that starts with `key` replaced by `line`.
std::string WithLine(const std::string& text, const std::string& key, const std::string& line);

/// A table of texts: `words` (count, offsets, lengths), `units` (the texts), and what makes the word sum `sum`.
std::string TextTable(const std::vector<UINT32>& words, const std::u16string& units, int sum = 0);
/// Writes DIRECTORY/frudata/str/frudata.str, in which text n reads PREFIX n and its arguments, except `others`.
void WriteTexts(const std::string& directory, const std::wstring& prefix,
                const std::map<UINT32, std::wstring>& others = {});

/// A started library in a fresh current directory, with texts "T1", "T2 ARGUMENTS" and so on.
class CLibraryTest : public CTableHost {
  protected:
    CLibraryTest();

    void Restart(int platform);
    EFI_STATUS Load(const std::string& content);
    void LoadAndSelect(const FRU_BYTES& fru, FRU_AREA area);
    /// Saves the selected FRU as out.fru and returns what that holds.
    std::string Saved();
    std::wstring Value(unsigned int field);
    BYTES Data(unsigned int field);
    /// The value that `operation` tells, which must succeed, and write it whatever was there.
    template <typename VALUE> VALUE Told(EFI_STATUS (*operation)(_EFI_FRU_INTERFACE*, VALUE&)) {
        VALUE value{};
        for (const int poison : {0xA5, 0x00, 0x01}) {
            const VALUE before = value;
            if constexpr (std::is_pointer_v<VALUE>)
                value = reinterpret_cast<VALUE>(&m_directory); // none that it could tell
            else
                value = static_cast<VALUE>(poison);
            EXPECT_EQ(operation(m_table, value), 0U);
            if constexpr (std::is_pointer_v<VALUE>)
                EXPECT_NE(static_cast<const void*>(value), static_cast<const void*>(&m_directory));
            else
                EXPECT_TRUE(poison == 0xA5 || value == before) << "nothing was told";
        }
        return value;
    }
};

/// The process ends with this line on standard error.
#define EXPECT_ASSERTION(action, file, condition)                                                                      \
    EXPECT_DEATH(action, testing::HasSubstr(std::string("frudata: ") + (file) +                                        \
                                            ".cpp: assertion failed: " + (condition) + "\n"))

} // namespace Frudata_Tests
