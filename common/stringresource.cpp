#include "common/stringresource.h"

#include "common/allocate.h"
#include "common/openfile.h"

#include <array>
#include <cwchar>
#include <new>

namespace Frudata_Private {

std::unique_ptr<CStringResource> g_pStringResource;

namespace {

using UNITS = std::array<UINT8, 4096>;

constexpr UINT32 HEADER_SIZE = 4;
constexpr UINT32 ENTRY_SIZE = 8;

constexpr UINT32 LittleEndian16(const UINT8* bytes) {
    return bytes[0] | static_cast<UINT32>(bytes[1]) << 8;
}

bool ReadNumbers(std::FILE* file, UINT32* numbers, UINT32 count) {
    for (UINT32 index = 0; index < count; ++index) {
        UINT8 bytes[4];
        if (std::fread(bytes, sizeof bytes, 1, file) != 1)
            return false;
        numbers[index] = LittleEndian16(bytes) | LittleEndian16(bytes + 2) << 16;
    }
    return true;
}

template <typename ELEMENT> bool Allocate(std::unique_ptr<ELEMENT[]>& array, std::uint64_t count) {
    array = AllocateArray<ELEMENT>(count);
    return array != nullptr;
}

} // namespace

UINT32 CStringResource::Initialize(const WCHAR* directory, const WCHAR* language, const WCHAR* fileName,
                                   UINT32 expected) {
    if (!directory || !language || !fileName)
        return STRING_RESOURCE_NULL_TEXT;
    const std::size_t size = std::wcslen(directory) + std::wcslen(language) + std::wcslen(fileName) + 2;
    std::unique_ptr<WCHAR[]> path;
    if (!Allocate(path, size))
        return STRING_RESOURCE_NO_MEMORY;
    if (std::swprintf(path.get(), size, L"%ls%ls/%ls", directory, language, fileName) < 0)
        return STRING_RESOURCE_BAD_PATH;
    return Initialize(path.get(), expected);
}

UINT32 CStringResource::Initialize(const WCHAR* path, UINT32 expected) {
    Clear();
    const UINT32 result = Load(path, expected);
    if (result != 0)
        Clear();
    return result;
}

UINT32 CStringResource::Load(const WCHAR* path, UINT32 expected) {
    if (!path)
        return STRING_RESOURCE_NULL_TEXT;
    if (!Allocate(m_path, std::wcslen(path) + 1))
        return STRING_RESOURCE_NO_MEMORY;
    std::wcscpy(m_path.get(), path);
    if (const std::unique_ptr<char[]> narrowPath = ToMultibyte(path))
        m_file = OpenFile(narrowPath.get(), 'r');
    if (!m_file)
        return STRING_RESOURCE_NOT_OPENED;
    if (const UINT32 result = CheckSum())
        return result;
    return ReadTable(expected);
}

UINT32 CStringResource::CheckSum() {
    if (std::fseek(m_file.get(), 0, SEEK_SET) != 0)
        return STRING_RESOURCE_READ_FAILED;
    UNITS buffer;
    UINT32 sum = 0;
    m_fileSize = 0;
    std::size_t count = 0;
    do {
        count = std::fread(buffer.data(), 1, buffer.size(), m_file.get());
        for (std::size_t index = 0; index + 1 < count; index += 2)
            sum += LittleEndian16(&buffer[index]);
        m_fileSize += count;
    } while (count == buffer.size());
    if (std::ferror(m_file.get()))
        return STRING_RESOURCE_READ_FAILED;
    if ((sum & 0xFFFF) != 0)
        return STRING_RESOURCE_BAD_CHECKSUM;
    return 0;
}

UINT32 CStringResource::ReadTable(UINT32 expected) {
    if (std::fseek(m_file.get(), 0, SEEK_SET) != 0 || !ReadNumbers(m_file.get(), &m_count, 1))
        return STRING_RESOURCE_READ_FAILED;
    if (expected != 0 && expected != m_count)
        return STRING_RESOURCE_WRONG_COUNT;
    if (m_count == 0)
        return STRING_RESOURCE_NO_STRINGS;
    // The count is the file's own claim: it must fit the file before anything is allocated for it.
    const std::uint64_t tableSize = HEADER_SIZE + static_cast<std::uint64_t>(m_count) * ENTRY_SIZE;
    if (tableSize > m_fileSize)
        return STRING_RESOURCE_READ_FAILED;
    if (!Allocate(m_offsets, m_count) || !Allocate(m_lengths, m_count) || !Allocate(m_strings, m_count))
        return STRING_RESOURCE_NO_MEMORY;
    if (!ReadNumbers(m_file.get(), m_offsets.get(), m_count))
        return STRING_RESOURCE_READ_FAILED;
    for (UINT32 id = 0; id < m_count; ++id) {
        if (m_offsets[id] % 2 != 0)
            return STRING_RESOURCE_BAD_OFFSETS;
    }
    if (!ReadNumbers(m_file.get(), m_lengths.get(), m_count))
        return STRING_RESOURCE_READ_FAILED;
    if (m_offsets[0] != tableSize)
        return STRING_RESOURCE_BAD_OFFSETS;
    // Gaps between texts are allowed; texts that are not in the file are not.
    if (!OffsetsFitFile())
        return STRING_RESOURCE_READ_FAILED;
    return 0;
}

bool CStringResource::OffsetsFitFile() const {
    for (UINT32 id = 0; id < m_count; ++id) {
        if (m_offsets[id] < m_offsets[0] || m_offsets[id] + 2 * static_cast<std::uint64_t>(m_lengths[id]) > m_fileSize)
            return false;
    }
    return true;
}

bool CStringResource::ReadUnits(UINT32 offset, UINT32 units, WCHAR* text) {
    if (std::fseek(m_file.get(), static_cast<long>(offset), SEEK_SET) != 0)
        return false;
    UNITS buffer;
    while (units > 0) {
        const std::size_t wanted = units < buffer.size() / 2 ? units : buffer.size() / 2;
        if (std::fread(buffer.data(), 2, wanted, m_file.get()) != wanted)
            return false;
        for (std::size_t index = 0; index < wanted; ++index)
            *text++ = static_cast<WCHAR>(LittleEndian16(&buffer[2 * index]));
        units -= static_cast<UINT32>(wanted);
    }
    return true;
}

const WCHAR* CStringResource::GetString(UINT32 id) {
    if (id >= m_count || !m_strings)
        return nullptr;
    if (m_cache)
        return &m_cache[(m_offsets[id] - m_offsets[0]) / 2];
    if (!m_strings[id]) {
        // One character more than the file claims, so that a text without its 0 still ends.
        std::unique_ptr<WCHAR[]> text;
        if (!Allocate(text, static_cast<std::uint64_t>(m_lengths[id]) + 1) ||
            !ReadUnits(m_offsets[id], m_lengths[id], text.get()))
            return nullptr;
        m_strings[id] = std::move(text);
    }
    return m_strings[id].get();
}

UINT32 CStringResource::ReleaseString(UINT32 id) {
    if (!m_strings)
        return STRING_RESOURCE_NOT_LOADED;
    if (id >= m_count)
        return STRING_RESOURCE_NO_SUCH_STRING;
    m_strings[id].reset();
    return 0;
}

UINT32 CStringResource::ReleaseAll() {
    if (!m_strings)
        return STRING_RESOURCE_NOT_LOADED;
    for (UINT32 id = 0; id < m_count; ++id)
        m_strings[id].reset();
    m_cache.reset();
    return 0;
}

UINT32 CStringResource::CacheAll() {
    if (m_cache)
        return 0;
    if (ReleaseAll() != 0)
        return STRING_RESOURCE_NOT_LOADED;
    // From the first text to the end of the last, gaps included: every text lies at its own offset.
    std::uint64_t end = m_offsets[0];
    for (UINT32 id = 0; id < m_count; ++id) {
        const std::uint64_t textEnd = m_offsets[id] + 2 * static_cast<std::uint64_t>(m_lengths[id]);
        end = end < textEnd ? textEnd : end;
    }
    const auto units = static_cast<UINT32>((end - m_offsets[0]) / 2);
    std::unique_ptr<WCHAR[]> cache;
    if (!Allocate(cache, static_cast<std::uint64_t>(units) + 1))
        return STRING_RESOURCE_NO_MEMORY;
    if (!ReadUnits(m_offsets[0], units, cache.get()))
        return STRING_RESOURCE_READ_FAILED;
    m_cache = std::move(cache);
    return 0;
}

void CStringResource::Clear() {
    ReleaseAll();
    m_strings.reset();
    m_lengths.reset();
    m_offsets.reset();
    m_count = 0;
    m_file.reset();
    m_path.reset();
}

const WCHAR* GetText(UINT32 id) {
    return g_pStringResource ? g_pStringResource->GetString(id) : nullptr;
}

} // namespace Frudata_Private
