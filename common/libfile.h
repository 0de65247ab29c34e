// A text file in memory, cut into lines that can be edited in place.
#pragma once

#include "common/assertion.h"
#include "common/scopedfile.h"
#include "frudata/types.h"

#include <memory>
#include <string_view>

namespace Frudata_Private {

/// Loads a whole file and gives access to its lines. A line ends at CR, LF, CR LF or LF CR. A zero
/// byte follows each line, and editing keeps it. A line index out of range, or a query of a file that is not loaded, is
/// a fatal assertion.
class CFile {
  public:
    CFile() = default;
    /// As Open; a failure leaves an empty object.
    explicit CFile(const char* path) { Open(path); }
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;
    virtual ~CFile() = default;

    /// Replaces the loaded file by the one at `path`. @return false, with nothing open, when it cannot be opened, is
    /// empty, or memory runs out
    bool Open(const char* path);
    bool IsOpen() const { return m_File != nullptr; }
    /// Closes the file; its lines stay.
    void Close() { m_File.reset(); }

    UINT32 LineCount() const;
    /// The text of line `line`, valid while the file is loaded.
    const char* GetLine(UINT32 line) const { return LineText(line); }
    UINT32 GetLineLength(UINT32 line) const;
    /// Whether `text` occurs in the line.
    bool LineContains(UINT32 line, std::string_view text) const;
    /// The first line from `line` on in which `text` occurs, or LineCount(). One search covers all lines: on
    /// lines this short, strstr's set-up costs more than the search.
    UINT32 FindLine(UINT32 line, std::string_view text) const;
    /// The text between the first two delimiters of the line. @return false without them
    bool FindDelimitedString(UINT32 line, char delimiter, std::string_view& found) const;
    /// The same as a copy, valid until the next call; null without delimiters or without memory.
    const char* GetDelimitedString(UINT32 line, char delimiter);

    // The reader strips whole files and looks into single lines; the rest completes the interface.

    /// Remove leading, trailing, or both kinds of blanks and tabs, of one line or of all.
    void StripLeft(UINT32 line);
    void StripRight(UINT32 line);
    void Strip(UINT32 line);
    void StripLeft();
    void StripRight();
    void Strip();
    /// Removes every blank and tab of the line.
    void SquishLine(UINT32 line);
    /// Cuts the line, or all lines, at the first occurrence of `sequence`.
    void StripRightFromSequence(const char* sequence, UINT32 line);
    void StripRightFromSequence(const char* sequence);

  private:
    /// The name in assertions.
    static constexpr char SOURCE_FILE[] = "libfile.cpp";

    void Clear();
    bool LoadCache();
    bool CutIntoLines();
    char* LineText(UINT32 line) const {
        Assert(m_Cache && m_Offset && m_Length && line < m_NumLines, SOURCE_FILE, "ptr");
        return &m_Cache[m_Offset[line]];
    }

    SCOPED_FILE m_File;
    UINT32 m_NumLines = 0;
    std::unique_ptr<UINT32[]> m_Offset;
    std::unique_ptr<UINT32[]> m_Length;
    UINT32 m_CacheSize = 0;
    std::unique_ptr<char[]> m_Cache;
    std::unique_ptr<char[]> m_Delimited;
};

} // namespace Frudata_Private
