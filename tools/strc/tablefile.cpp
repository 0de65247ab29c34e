#include "tools/strc/tablefile.h"

#include <cstdint>

namespace Frudata_Private {

namespace {

constexpr std::size_t ENTRY_LENGTH = 4;
constexpr std::size_t UNIT_LENGTH = 2;

void AppendUnit(std::string& bytes, unsigned int unit) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>((unit >> 8) & 0xFF);
}

void AppendEntry(std::string& bytes, std::size_t value) {
    AppendUnit(bytes, static_cast<unsigned int>(value & 0xFFFF));
    AppendUnit(bytes, static_cast<unsigned int>(value >> 16));
}

std::uint16_t UnitAt(const std::string& bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[offset]) |
                                      static_cast<unsigned char>(bytes[offset + 1]) << 8);
}

std::uint64_t EntryAt(const std::string& bytes, std::size_t offset) {
    return UnitAt(bytes, offset) | static_cast<std::uint64_t>(UnitAt(bytes, offset + UNIT_LENGTH)) << 16;
}

std::uint16_t SumOfWords(const std::string& bytes) {
    unsigned int sum = 0;
    for (std::size_t offset = 0; offset + UNIT_LENGTH <= bytes.size(); offset += UNIT_LENGTH)
        sum += UnitAt(bytes, offset);
    return static_cast<std::uint16_t>(sum);
}

/// Reads the text of `length` units, the terminating one included, at `offset`.
const char* ReadText(const std::string& bytes, std::uint64_t offset, std::uint64_t length, std::u16string& text) {
    if (offset % UNIT_LENGTH != 0)
        return "the offset of a text is odd";
    if (length == 0 || offset + length * UNIT_LENGTH > bytes.size())
        return "a text lies outside the file";
    for (std::uint64_t i = 0; i < length; ++i)
        text += static_cast<char16_t>(UnitAt(bytes, static_cast<std::size_t>(offset + i * UNIT_LENGTH)));
    if (text.find(u'\0') != text.size() - 1)
        return "a text does not end where its length says";
    text.pop_back();
    return nullptr;
}

} // namespace

std::string CompileTable(const TEXT_TABLE& table) {
    std::string bytes;
    AppendEntry(bytes, table.size());
    std::size_t offset = ENTRY_LENGTH + 2 * ENTRY_LENGTH * table.size();
    for (const std::u16string& text : table) {
        AppendEntry(bytes, offset);
        offset += (text.size() + 1) * UNIT_LENGTH;
    }
    for (const std::u16string& text : table)
        AppendEntry(bytes, text.size() + 1);
    for (const std::u16string& text : table) {
        for (const char16_t character : text)
            AppendUnit(bytes, character);
        AppendUnit(bytes, 0);
    }
    AppendUnit(bytes, 0x10000U - SumOfWords(bytes));
    return bytes;
}

const char* ReadCompiledTable(const std::string& bytes, TEXT_TABLE& table) {
    if (SumOfWords(bytes) != 0)
        return "the sum of the file is wrong";
    const std::uint64_t count = bytes.size() < ENTRY_LENGTH ? 0 : EntryAt(bytes, 0);
    if (count == 0)
        return "there are no texts";
    if (ENTRY_LENGTH + std::uint64_t{2} * ENTRY_LENGTH * count > bytes.size())
        return "the file is shorter than its list of texts";
    const std::size_t offsets = ENTRY_LENGTH;
    const std::size_t lengths = offsets + ENTRY_LENGTH * static_cast<std::size_t>(count);
    const std::size_t texts = lengths + ENTRY_LENGTH * static_cast<std::size_t>(count);
    std::uint64_t expected = texts;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t offset = EntryAt(bytes, offsets + i * ENTRY_LENGTH);
        const std::uint64_t length = EntryAt(bytes, lengths + i * ENTRY_LENGTH);
        if (offset != expected)
            return "the texts do not lie one after another";
        if (const char* fault = ReadText(bytes, offset, length, table.emplace_back()))
            return fault;
        expected += length * UNIT_LENGTH;
    }
    return nullptr;
}

} // namespace Frudata_Private
