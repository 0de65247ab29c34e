#include "common/libfile.h"

#include <cstring>
#include <new>

namespace Frudata_Private {

namespace {

constexpr bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}
constexpr bool IsLineEnd(char character) {
    return character == '\r' || character == '\n';
}

// The first occurrence of `wanted`, or null. The texts are too short for the C library's search to pay.
const char* Find(const char* text, const char* wanted) {
    for (;; ++text) {
        std::size_t same = 0;
        while (wanted[same] != 0 && text[same] == wanted[same])
            ++same;
        if (wanted[same] == 0)
            return text;
        if (*text == 0)
            return nullptr;
    }
}

// The first line end, or `end`. A zero byte at `end` stops the search, so that most bytes take one comparison.
char* FindLineEnd(char* text, const char* end) {
    while (static_cast<UINT8>(*text) > '\r' || (!IsLineEnd(*text) && text < end))
        ++text;
    return text;
}

// @return what follows the line end
char* RemoveLineEnd(char* lineEnd) {
    const bool isPair = IsLineEnd(lineEnd[1]) && lineEnd[1] != lineEnd[0];
    *lineEnd++ = 0;
    if (isPair)
        *lineEnd++ = 0;
    return lineEnd;
}

} // namespace

bool CFile::Open(const char* path) {
    Close();
    m_Cache.reset();
    m_Offset.reset();
    m_Length.reset();
    m_File.reset(std::fopen(path, "rb"));
    return m_File && LoadCache() && CutIntoLines();
}

bool CFile::LoadCache() {
    Assert(std::fseek(m_File.get(), 0, SEEK_END) == 0, SOURCE_FILE, "seek");
    const long size = std::ftell(m_File.get());
    Assert(std::fseek(m_File.get(), 0, SEEK_SET) == 0, SOURCE_FILE, "seek");
    // A directory opens for reading and reports an absurd size; no FRU text comes near the limit.
    if (size <= 0 || size > INT32_MAX - 1)
        return false;
    m_CacheSize = static_cast<UINT32>(size);
    m_Cache.reset(new (std::nothrow) char[m_CacheSize + 1]);
    Assert(m_Cache != nullptr, SOURCE_FILE, "m_Cache");
    Assert(std::fread(m_Cache.get(), 1, m_CacheSize, m_File.get()) == m_CacheSize, SOURCE_FILE, "read");
    m_Cache[m_CacheSize] = 0;
    return true;
}

bool CFile::CutIntoLines() {
    Assert(m_Cache && m_CacheSize > 0, SOURCE_FILE, "m_Cache");
    // Room for a file of line ends alone: what is not used costs less than counting the lines first.
    m_Offset.reset(new (std::nothrow) UINT32[m_CacheSize]);
    m_Length.reset(new (std::nothrow) UINT32[m_CacheSize]);
    if (!m_Offset || !m_Length)
        return false;
    char* const cache = m_Cache.get();
    char* const end = cache + m_CacheSize;
    UINT32 line = 0;
    for (char* start = cache; start < end; ++line) {
        char* const lineEnd = FindLineEnd(start, end);
        m_Offset[line] = static_cast<UINT32>(start - cache);
        m_Length[line] = static_cast<UINT32>(lineEnd - start);
        start = lineEnd < end ? RemoveLineEnd(lineEnd) : end;
    }
    m_NumLines = line;
    Assert(m_NumLines > 0, SOURCE_FILE, "m_NumLines");
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

UINT32 CFile::FindLine(UINT32 line, char character) const {
    const UINT32 lines = LineCount();
    if (line >= lines)
        return lines;
    const char* start = &m_Cache[m_Offset[line]];
    const char* end = &m_Cache[m_CacheSize] + 1;
    const auto* found = static_cast<const char*>(std::memchr(start, character, static_cast<std::size_t>(end - start)));
    if (!found)
        return lines;
    const auto position = static_cast<UINT32>(found - m_Cache.get());
    while (line + 1 < lines && m_Offset[line + 1] <= position)
        ++line;
    return line;
}

bool CFile::LineContains(UINT32 line, const char* text) const {
    return Find(LineText(line), text) != nullptr;
}

const char* CFile::GetDelimitedString(UINT32 line, char delimiter) {
    m_Delimited.reset();
    if (!m_Cache || !m_Offset || line >= m_NumLines || delimiter == 0)
        return nullptr;
    const char* first = std::strchr(LineText(line), delimiter);
    const char* second = first ? std::strchr(first + 1, delimiter) : nullptr;
    if (!second)
        return nullptr;
    const auto length = static_cast<std::size_t>(second - first - 1);
    m_Delimited.reset(new (std::nothrow) char[length + 1]);
    if (m_Delimited) {
        std::memcpy(m_Delimited.get(), first + 1, length);
        m_Delimited[length] = 0;
    }
    return m_Delimited.get();
}

void CFile::CutLeft(UINT32 line) {
    UINT32 offset = m_Offset[line];
    const UINT32 end = offset + m_Length[line];
    if (!IsBlank(m_Cache[offset]))
        return;
    for (; offset < end && IsBlank(m_Cache[offset]); ++offset) {
        Assert(offset < m_CacheSize, SOURCE_FILE, "index < m_CacheSize");
        m_Cache[offset] = 0;
    }
    m_Offset[line] = offset;
    m_Length[line] = end - offset;
}

void CFile::CutRight(UINT32 line) {
    const UINT32 start = m_Offset[line];
    UINT32 end = start + m_Length[line];
    while (end > start && (IsBlank(m_Cache[end - 1]) || m_Cache[end - 1] == 0)) {
        Assert(end <= m_CacheSize, SOURCE_FILE, "index < m_CacheSize");
        m_Cache[--end] = 0;
    }
    m_Length[line] = end - start;
}

void CFile::StripLeft(UINT32 line) {
    LineText(line);
    CutLeft(line);
}

void CFile::StripRight(UINT32 line) {
    LineText(line);
    CutRight(line);
}

void CFile::Strip(UINT32 line) {
    StripLeft(line);
    StripRight(line);
}

void CFile::SquishLine(UINT32 line) {
    char* text = LineText(line);
    UINT32 kept = 0;
    for (UINT32 index = 0; index < m_Length[line]; ++index) {
        if (!IsBlank(text[index]))
            text[kept++] = text[index];
    }
    std::memset(text + kept, 0, m_Length[line] - kept);
    m_Length[line] = kept;
}

void CFile::StripRightFromSequence(const char* sequence, UINT32 line) {
    Assert(sequence != nullptr, SOURCE_FILE, "sequence");
    char* text = LineText(line);
    char* front = std::strstr(text, sequence);
    if (!front)
        return;
    const long stripped = static_cast<long>(m_Length[line]) - static_cast<long>(front - text);
    // A zero byte inside the comment: this is no text file.
    Assert(static_cast<long>(std::strlen(front)) == stripped, SOURCE_FILE, "(long)strlen( front ) == stripped");
    std::memset(front, 0, static_cast<std::size_t>(stripped));
    m_Length[line] -= static_cast<UINT32>(stripped);
}

void CFile::StripRightFromSequence(const char* sequence) {
    const UINT32 lines = LineCount();
    Assert(sequence != nullptr, SOURCE_FILE, "sequence");
    for (UINT32 line = FindLine(0, *sequence); line < lines; line = FindLine(line + 1, *sequence))
        StripRightFromSequence(sequence, line);
}

void CFile::StripLeft() {
    for (UINT32 line = 0, lines = LineCount(); line < lines; ++line)
        CutLeft(line);
}

void CFile::StripRight() {
    for (UINT32 line = 0, lines = LineCount(); line < lines; ++line)
        CutRight(line);
}

void CFile::Strip() {
    const UINT32 lines = LineCount();
    const char* const cache = m_Cache.get();
    for (UINT32 line = 0; line < lines; ++line) {
        const UINT32 length = m_Length[line];
        const char* const text = cache + m_Offset[line];
        // Most lines neither start nor end with anything that can be stripped.
        if (length > 0 && (text[0] <= ' ' || text[length - 1] <= ' ')) {
            CutLeft(line);
            CutRight(line);
        }
    }
}

} // namespace Frudata_Private
