#include "common/libfile.h"

#include "common/assertion.h"

#include <cstring>
#include <new>

namespace Frudata_Private {

namespace {

constexpr char SOURCE_FILE[] = "libfile.cpp";

constexpr bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}
constexpr bool IsLineEnd(char character) {
    return character == '\r' || character == '\n';
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

UINT32 CFile::LineEndSize(UINT32 position) const {
    const char first = m_Cache[position];
    if (!IsLineEnd(first))
        return 0;
    const char second = m_Cache[position + 1];
    return IsLineEnd(second) && second != first ? 2 : 1;
}

UINT32 CFile::CountLines() const {
    UINT32 lines = 0;
    UINT32 position = 0;
    while (position < m_CacheSize) {
        const UINT32 end = LineEndSize(position);
        lines += end > 0;
        position += end > 0 ? end : 1;
    }
    return lines + !IsLineEnd(m_Cache[m_CacheSize - 1]);
}

bool CFile::CutIntoLines() {
    Assert(m_Cache && m_CacheSize > 0, SOURCE_FILE, "m_Cache");
    m_NumLines = CountLines();
    Assert(m_NumLines > 0, SOURCE_FILE, "m_NumLines");
    m_Offset.reset(new (std::nothrow) UINT32[m_NumLines]);
    m_Length.reset(new (std::nothrow) UINT32[m_NumLines]);
    if (!m_Offset || !m_Length)
        return false;
    UINT32 line = 0;
    UINT32 start = 0;
    for (UINT32 position = 0; position < m_CacheSize;) {
        const UINT32 end = LineEndSize(position);
        if (end == 0) {
            ++position;
            continue;
        }
        m_Offset[line] = start;
        m_Length[line++] = position - start;
        std::memset(&m_Cache[position], 0, end);
        position += end;
        start = position;
    }
    if (line < m_NumLines) {
        m_Offset[line] = start;
        m_Length[line] = m_CacheSize - start;
    }
    return true;
}

char* CFile::LineText(UINT32 line) const {
    Assert(m_Cache && m_Offset && m_Length && line < m_NumLines, SOURCE_FILE, "ptr");
    return &m_Cache[m_Offset[line]];
}

UINT32 CFile::LineCount() const {
    Assert(m_Cache != nullptr, SOURCE_FILE, "m_Cache");
    Assert(m_Offset != nullptr, SOURCE_FILE, "m_Offset");
    Assert(m_Length != nullptr, SOURCE_FILE, "m_Length");
    return m_NumLines;
}

const char* CFile::GetLine(UINT32 line) const {
    return LineText(line);
}

UINT32 CFile::GetLineLength(UINT32 line) const {
    LineText(line);
    return m_Length[line];
}

bool CFile::LineContains(UINT32 line, const char* text) const {
    return std::strstr(LineText(line), text) != nullptr;
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

void CFile::StripLeft(UINT32 line) {
    char* text = LineText(line);
    UINT32 blanks = 0;
    while (blanks < m_Length[line] && IsBlank(text[blanks])) {
        Assert(m_Offset[line] + blanks < m_CacheSize, SOURCE_FILE, "index < m_CacheSize");
        text[blanks++] = 0;
    }
    m_Offset[line] += blanks;
    m_Length[line] -= blanks;
}

void CFile::StripRight(UINT32 line) {
    char* text = LineText(line);
    UINT32 length = m_Length[line];
    while (length > 0 && (IsBlank(text[length - 1]) || text[length - 1] == 0)) {
        Assert(m_Offset[line] + length - 1 < m_CacheSize, SOURCE_FILE, "index < m_CacheSize");
        text[--length] = 0;
    }
    m_Length[line] = length;
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
    for (UINT32 line = 0; line < LineCount(); ++line)
        StripRightFromSequence(sequence, line);
}

void CFile::ForAllLines(void (CFile::*edit)(UINT32)) {
    for (UINT32 line = 0; line < LineCount(); ++line)
        (this->*edit)(line);
}

} // namespace Frudata_Private
