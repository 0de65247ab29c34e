// Localised texts by number, from a string table file.
//
// String table file, all integers little-endian:
//   u32 count; u32 offset[count] (bytes from the start of the file, even); u32 length[count] (UTF-16 units,
//   terminating 0 included); then the texts in UTF-16LE, one after another in id order. All 16-bit words of
//   the file sum to 0 modulo 65536.
#pragma once

#include "common/scopedfile.h"
#include "common/stringid.h"
#include "frudata/types.h"

#include <cstdint>
#include <memory>

namespace Frudata_Private {

/// Results of CStringResource's operations; 0 is success.
enum : UINT32 {
    STRING_RESOURCE_NULL_TEXT = 1,
    STRING_RESOURCE_NO_MEMORY = 2,
    STRING_RESOURCE_BAD_PATH = 3,
    STRING_RESOURCE_NOT_OPENED = 4,
    STRING_RESOURCE_READ_FAILED = 5,
    STRING_RESOURCE_BAD_CHECKSUM = 6,
    STRING_RESOURCE_NO_STRINGS = 7,
    STRING_RESOURCE_BAD_OFFSETS = 8,
    STRING_RESOURCE_NO_SUCH_STRING = 9,
    STRING_RESOURCE_NOT_LOADED = 10,
    STRING_RESOURCE_WRONG_COUNT = 11
};

/// One string table. Texts are loaded one by one when asked for, or all at once by CacheAll.
class CStringResource {
  public:
    CStringResource() = default;
    CStringResource(const CStringResource&) = delete;
    CStringResource& operator=(const CStringResource&) = delete;
    ~CStringResource() { Clear(); }

    /// Opens and checks the table at `path`; `expected` is the count wanted, 0 for any. Releases what was
    /// loaded before. @return 0 or a STRING_RESOURCE_ code (1 to 8, 11); on failure the object is empty
    UINT32 Initialize(const WCHAR* path, UINT32 expected);
    /// The same for the path directory + language + "/" + fileName.
    UINT32 Initialize(const WCHAR* directory, const WCHAR* language, const WCHAR* fileName, UINT32 expected);

    /// The text of `id`, owned by this object until released, or null.
    const WCHAR* GetString(UINT32 id);
    /// Drops one loaded text; no effect while all are cached. @return 0, 9, 10
    UINT32 ReleaseString(UINT32 id);
    /// Drops all texts. @return 0, 10
    UINT32 ReleaseAll();
    /// Loads all texts in one read. @return 0, 2, 5, 10
    UINT32 CacheAll();

  private:
    UINT32 Load(const WCHAR* path, UINT32 expected);
    UINT32 CheckSum();
    UINT32 ReadTable(UINT32 expected);
    bool OffsetsFitFile() const;
    void Clear();
    bool ReadUnits(UINT32 offset, UINT32 units, WCHAR* text);

    std::unique_ptr<WCHAR[]> m_path;
    SCOPED_FILE m_file;
    std::uint64_t m_fileSize = 0;
    UINT32 m_count = 0;
    std::unique_ptr<UINT32[]> m_offsets;
    std::unique_ptr<UINT32[]> m_lengths;
    /// The texts loaded one by one, per id; null until loaded, and while all are cached.
    std::unique_ptr<std::unique_ptr<WCHAR[]>[]> m_strings;
    /// All texts, each as far from the first as in the file.
    std::unique_ptr<WCHAR[]> m_cache;
};

/// The current string table; null before one was loaded.
extern std::unique_ptr<CStringResource> g_pStringResource;

/// The text of `id` in the current string table, or null.
const WCHAR* GetText(UINT32 id);

} // namespace Frudata_Private
