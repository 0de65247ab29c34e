#include "common/libfile.h"

#include "common/allocate.h"
#include "common/openfile.h"

#include <algorithm>
#include <cstring>

namespace Frudata_Private {

namespace {

constexpr bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}
constexpr bool IsLineEnd(char character) {
    return character == '\r' || character == '\n';
}

/// The first `character` from `text` on, or `end`.
char* Find(char* text, char* end, char character) {
    char* const found = static_cast<char*>(std::memchr(text, character, static_cast<std::size_t>(end - text)));
    return found ? found : end;
}

/// Calls `visit(line, lineEnd, next)` for every line: its text, the CR or LF that ends it or the end of the text, and
/// where the next line starts. The text is followed by a zero byte.
template <typename VISITOR> void ForEachLine(char* line, char* end, VISITOR visit) {
    // Most files have no CR: one search tells.
    char* nextLF = Find(line, end, '\n');
    char* nextCR = Find(line, end, '\r');
    while (line < end) {
        char* const lineEnd = std::min(nextLF, nextCR);
        char* next = lineEnd;
        if (next < end)
            next += IsLineEnd(next[1]) && next[1] != next[0] ? 2 : 1;
        visit(line, lineEnd, next);
        line = next;
        if (nextLF < line)
            nextLF = Find(line, end, '\n');
        if (nextCR < line)
            nextCR = Find(line, end, '\r');
    }
}

} // namespace

bool CFile::Open(const char* path) {
    Clear();
    m_File = OpenFile(path, 'r');
    if (m_File && LoadCache() && CutIntoLines())
        return true;
    Clear();
    return false;
}

void CFile::Clear() {
    Close();
    m_Delimited.reset();
    m_Cache.reset();
    m_Offset.reset();
    m_Length.reset();
}

bool CFile::LoadCache() {
    Assert(std::fseek(m_File.get(), 0, SEEK_END) == 0, SOURCE_FILE, "seek");
    const long size = std::ftell(m_File.get());
    Assert(std::fseek(m_File.get(), 0, SEEK_SET) == 0, SOURCE_FILE, "seek");
    // No FRU text comes near the limit.
    if (size <= 0 || size > INT32_MAX - 1)
        return false;
    m_CacheSize = static_cast<UINT32>(size);
    m_Cache = AllocateArray<char>(std::uint64_t{m_CacheSize} + 1);
    Assert(m_Cache != nullptr, SOURCE_FILE, "m_Cache");
    Assert(std::fread(m_Cache.get(), 1, m_CacheSize, m_File.get()) == m_CacheSize, SOURCE_FILE, "read");
    return true;
}

bool CFile::CutIntoLines() {
    Assert(m_Cache && m_CacheSize > 0, SOURCE_FILE, "m_Cache");
    char* const cache = m_Cache.get();
    char* const end = cache + m_CacheSize;
    m_NumLines = 0;
    ForEachLine(cache, end, [this](const char*, const char*, const char*) { ++m_NumLines; });
    Assert(m_NumLines > 0, SOURCE_FILE, "m_NumLines");
    m_Offset = AllocateArray<UINT32>(m_NumLines);
    m_Length = AllocateArray<UINT32>(m_NumLines);
    if (!m_Offset || !m_Length)
        return false;
    UINT32 line = 0;
    ForEachLine(cache, end, [&](const char* start, char* lineEnd, const char* next) {
        m_Offset[line] = static_cast<UINT32>(start - cache);
        m_Length[line] = static_cast<UINT32>(lineEnd - start);
        std::memset(lineEnd, 0, static_cast<std::size_t>(next - lineEnd));
        ++line;
    });
    return true;
}

UINT32 CFile::LineCount() const {
    Assert(m_Cache != nullptr, SOURCE_FILE, "m_Cache");
    Assert(m_Offset != nullptr, SOURCE_FILE, "m_Offset");
    Assert(m_Length != nullptr, SOURCE_FILE, "m_Length");
    return m_NumLines;
}

UINT32 CFile::GetLineLength(UINT32 line) const {
    LineText(line);
    return m_Length[line];
}

bool CFile::LineContains(UINT32 line, std::string_view text) const {
    return std::string_view(LineText(line)).find(text) != std::string_view::npos;
}

UINT32 CFile::FindLine(UINT32 line, std::string_view text) const {
    const std::string_view all(m_Cache.get(), m_CacheSize);
    for (const UINT32 lines = LineCount(); line < lines; ++line) {
        const std::size_t place = all.find(text, m_Offset[line]);
        if (place == std::string_view::npos)
            break;
        while (line + 1 < lines && m_Offset[line + 1] <= place)
            ++line;
        // The text of a line ends at its first zero byte; the line in the file may go on.
        if (place == m_Offset[line] || LineContains(line, text))
            return line;
    }
    return m_NumLines;
}

bool CFile::FindDelimitedString(UINT32 line, char delimiter, std::string_view& found) const {
    if (!m_Cache || !m_Offset || line >= m_NumLines || delimiter == 0)
        return false;
    const char* first = std::strchr(LineText(line), delimiter);
    const char* second = first ? std::strchr(first + 1, delimiter) : nullptr;
    if (!second)
        return false;
    found = std::string_view(first + 1, static_cast<std::size_t>(second - first - 1));
    return true;
}

const char* CFile::GetDelimitedString(UINT32 line, char delimiter) {
    std::string_view found;
    m_Delimited.reset();
    if (!FindDelimitedString(line, delimiter, found))
        return nullptr;
    m_Delimited = AllocateArray<char>(std::uint64_t{found.size()} + 1);
    if (m_Delimited)
        found.copy(m_Delimited.get(), found.size());
    return m_Delimited.get();
}

void CFile::StripLeft(UINT32 line) {
    char* text = LineText(line);
    UINT32& length = m_Length[line];
    while (length > 0 && IsBlank(*text)) {
        Assert(m_Offset[line] < m_CacheSize, SOURCE_FILE, "index < m_CacheSize");
        *text++ = 0;
        ++m_Offset[line];
        --length;
    }
}

void CFile::StripRight(UINT32 line) {
    const char* text = LineText(line);
    UINT32& length = m_Length[line];
    while (length > 0 && (IsBlank(text[length - 1]) || text[length - 1] == 0)) {
        Assert(m_Offset[line] + length <= m_CacheSize, SOURCE_FILE, "index < m_CacheSize");
        m_Cache[m_Offset[line] + --length] = 0;
    }
}

void CFile::Strip(UINT32 line) {
    StripLeft(line);
    StripRight(line);
}

void CFile::SquishLine(UINT32 line) {
    char* text = LineText(line);
    char* const end = text + m_Length[line];
    char* const kept = std::remove_if(text, end, IsBlank);
    std::fill(kept, end, '\0');
    m_Length[line] = static_cast<UINT32>(kept - text);
}

void CFile::StripRightFromSequence(const char* sequence, UINT32 line) {
    Assert(sequence != nullptr, SOURCE_FILE, "sequence");
    char* text = LineText(line);
    const std::size_t position = std::string_view(text).find(sequence);
    if (position == std::string_view::npos)
        return;
    char* front = text + position;
    const long stripped = static_cast<long>(m_Length[line]) - static_cast<long>(position);
    // A zero byte inside the comment: this is no text file.
    Assert(static_cast<long>(std::strlen(front)) == stripped, SOURCE_FILE, "(long)strlen( front ) == stripped");
    std::memset(front, 0, static_cast<std::size_t>(stripped));
    m_Length[line] -= static_cast<UINT32>(stripped);
}

void CFile::StripRightFromSequence(const char* sequence) {
    const UINT32 lines = LineCount();
    Assert(sequence != nullptr, SOURCE_FILE, "sequence");
    // Most files have no comment: one search of the whole replaces one of each line.
    if (!std::memchr(m_Cache.get(), *sequence, m_CacheSize))
        return;
    for (UINT32 line = 0; line < lines; ++line)
        StripRightFromSequence(sequence, line);
}

void CFile::StripLeft() {
    for (UINT32 line = 0, lines = LineCount(); line < lines; ++line)
        StripLeft(line);
}

void CFile::StripRight() {
    for (UINT32 line = 0, lines = LineCount(); line < lines; ++line)
        StripRight(line);
}

void CFile::Strip() {
    for (UINT32 line = 0, lines = LineCount(); line < lines; ++line) {
        const char* const text = &m_Cache[m_Offset[line]];
        const UINT32 length = m_Length[line];
        // Most lines neither start nor end with anything that could be stripped.
        if (length > 0 && (text[0] <= ' ' || text[length - 1] <= ' '))
            Strip(line);
    }
}

} // namespace Frudata_Private
