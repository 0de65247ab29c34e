// Shared by the library's tests: a fresh directory with texts of its own, areas and FRU text files put
// together from bytes.
#pragma once

#include "frudata/debug.h"
#include "frudata/frudata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Frudata_Tests {

using BYTES = std::vector<UINT8>;

BYTES operator+(BYTES left, const BYTES& right);
BYTES Fill(std::size_t count, UINT8 value);
BYTES Bytes(const std::string& text);
/// A type/length byte with its data.
BYTES Field(const std::string& data, UINT8 type = 0xC0);
UINT8 ZeroChecksum(const BYTES& bytes);
/// `start` (header and fields) with its length byte set to `size` and the end-of-fields marker.
BYTES CompactArea(BYTES start, std::size_t size);
/// The same with padding and checksum.
BYTES FullArea(const BYTES& start, std::size_t size);

/// The areas of one FRU; an empty one is absent.
struct FRU_BYTES {
    BYTES internalUse, chassis, board, product, multiRecord;
};
/// All five areas, every fixed field distinct, three custom fields in the board area.
FRU_BYTES RichFru();
/// A board area alone.
FRU_BYTES BoardFru();
std::string Hex(const BYTES& bytes);
std::string FruText(const FRU_BYTES& fru);
/// `text` with the first line that starts with `key` replaced by `line`.
std::string WithLine(const std::string& text, const std::string& key, const std::string& line);

void WriteFile(const std::string& name, const std::string& content);
std::string ReadFile(const std::string& name);
/// Writes DIRECTORY/frudata/str/frudata.str, in which text n reads PREFIX n and its arguments.
void WriteTexts(const std::string& directory, const std::wstring& prefix);
/// The texts of a compiled table, read without the library.
std::vector<std::wstring> ReadTexts(const std::string& fileName);

/// Makes a fresh directory the current one and removes it at the end.
class CScratchDirectory {
  public:
    CScratchDirectory();
    ~CScratchDirectory();

  private:
    std::filesystem::path m_before;
    std::filesystem::path m_path;
};

/// A started library in a fresh directory, with texts "T1", "T2 ARGUMENTS" and so on.
class CLibraryTest : public testing::Test {
  protected:
    CLibraryTest();
    ~CLibraryTest() override;

    EFI_STATUS Load(const std::string& content);
    void LoadAndSelect(const FRU_BYTES& fru, FRU_AREA area);
    EFI_STATUS Set(unsigned int field, const std::string& value);
    std::wstring Value(unsigned int field);
    BYTES Data(unsigned int field);
    unsigned int MaxFieldSize();
    /// The last error, "" where there is none.
    std::wstring LastError();

    CScratchDirectory m_directory;
    _EFI_FRU_INTERFACE* m_table = GetFruDataInterface();
};

/// The process ends with this line on standard error.
#define EXPECT_ASSERTION(action, file, condition)                                                                      \
    EXPECT_DEATH(action, testing::HasSubstr(std::string("frudata: ") + (file) +                                        \
                                            ".cpp: assertion failed: " + (condition) + "\n"))

} // namespace Frudata_Tests
