// Reading a FRU text file: its lines, its keys in their order, its area blocks.
#include "tools/fructl/text/frutext.h"
#include "tools/fructl/text/textkeys.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace Fructl {

namespace {

using namespace FruImage;

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// The text between the first two quotes.
std::optional<std::string_view> Quoted(std::string_view code) {
    const std::size_t open = code.find(QUOTE);
    const std::size_t close = open == std::string_view::npos ? open : code.find(QUOTE, open + 1);
    if (close == std::string_view::npos)
        return std::nullopt;
    return code.substr(open + 1, close - open - 1);
}

TEXT_LINE MakeLine(std::string_view text, std::string_view end) {
    TEXT_LINE line{std::string(text), std::string(end)};
    const std::string_view code = text.substr(0, text.find(COMMENT));
    const std::size_t last = code.find_last_not_of(BLANKS);
    if (last != std::string_view::npos) {
        line.codeBegin = code.find_first_not_of(BLANKS);
        line.codeEnd = last + 1;
    }
    return line;
}

/// A line ends at LF, CR, CR LF or LF CR.
std::vector<TEXT_LINE> Lines(std::string_view text) {
    std::vector<TEXT_LINE> lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find_first_of("\r\n"), text.size());
        std::size_t end = length == text.size() ? 0 : 1;
        if (length + 1 < text.size() && text[length] != text[length + 1] &&
            Contains("\r\n", text.substr(length + 1, 1)))
            end = 2;
        lines.push_back(MakeLine(text.substr(0, length), text.substr(length, end)));
        text.remove_prefix(length + end);
    }
    return lines;
}

enum class VALUE {
    QUOTED,
    TITLE,
    OPEN,
    IGNORED,
    LENGTH,
    TYPE,
    NUMBER
};

struct STEP {
    std::string_view key;
    VALUE value;
    unsigned limit = 0;
    bool isOptional = false; ///< a line without the key may hold the next one
};

constexpr STEP STEPS[] = {
    {"_LF_NAME", VALUE::QUOTED},
    {"_LF_VERSION", VALUE::QUOTED},
    {"_LF_FMT_VER", VALUE::QUOTED},
    {"_IPMI_VERSION", VALUE::QUOTED},
    {"_FRU", VALUE::OPEN},
    {"_FRU_TITLE", VALUE::TITLE, 0, true},
    {"_START_ADDR", VALUE::IGNORED},
    {"_DATA_LEN", VALUE::LENGTH, 0xFFFF},
    {"_NVS_TYPE", VALUE::TYPE, 0, true},
    {"_DEV_ID", VALUE::NUMBER, 0xFF},
    {"_DEV_CNTR", VALUE::NUMBER, 0xFF},
    {"_NVS_LUN", VALUE::NUMBER, 0xFF},
    {"_DEV_BUS", VALUE::NUMBER, 0xFF},
    {"_DEV_ADDRESS", VALUE::NUMBER, 0xFF},
};
/// The keys of a FRU behind a mini-BMC, in place of device id, controller and LUN.
constexpr STEP MINI_BMC_STEPS[] = {{"_MBMC_SIZE_ADRS", VALUE::NUMBER, 0xFF},
                                   {"_MBMC_SIZE_DATA", VALUE::NUMBER, 0xFFFFFFFF}};
constexpr std::size_t TYPE_STEP = 8;
constexpr std::size_t BUS_STEP = 12;
static_assert(STEPS[TYPE_STEP].value == VALUE::TYPE && STEPS[BUS_STEP].key == "_DEV_BUS");

class CReader {
  public:
    CReader(FRU_TEXT& text, bool acceptsMiniBmc) : m_text(text), m_acceptsMiniBmc(acceptsMiniBmc) {}

    void Read() {
        if (ReadKeys() && ReadBlock(AREA_ID::HEADER, HEADER_SIZE))
            for (const AREA_ROW& row : Areas())
                if (m_text.blocks[0].bytes[static_cast<std::size_t>(row.id)] != 0 && !ReadBlock(row.id, 0))
                    return;
    }

  private:
    bool Fault(std::size_t line, std::string text) {
        m_text.faults.push_back({line, std::move(text)});
        return false;
    }
    bool FaultHere(std::string text) { return Fault(m_line + 1, std::move(text)); }
    std::string_view Code() const { return m_text.lines[m_line].Code(); }

    /// Moves to the next line with `key` or, if `step` is optional, with that of the following step.
    bool Find(std::string_view key, std::string_view other = {}) {
        while (m_line < m_text.lines.size() && !Contains(Code(), key) && (other.empty() || !Contains(Code(), other)))
            ++m_line;
        return m_line < m_text.lines.size() || Fault(0, fmt::format("it ends before {}", key));
    }

    bool ReadKeys() {
        for (std::size_t index = 0; index < std::size(STEPS); ++index) {
            const STEP* step = &STEPS[index];
            if (!Find(step->key, step->isOptional ? STEPS[index + 1].key : std::string_view()))
                return false;
            if (step->isOptional && !Contains(Code(), step->key))
                continue; // the next step reads this line
            if (!ReadValue(*step))
                return false;
            ++m_line;
            if (index == TYPE_STEP && m_isMiniBmc) {
                if (!ReadMiniBmc())
                    return false;
                index = BUS_STEP - 1;
            }
        }
        return true;
    }

    bool ReadMiniBmc() {
        for (const STEP& step : MINI_BMC_STEPS) {
            if (!Find(step.key) || !ReadValue(step))
                return false;
            ++m_line;
        }
        return true;
    }

    bool ReadValue(const STEP& step) {
        switch (step.value) {
        case VALUE::OPEN:
            return FindOpening(step.key);
        case VALUE::IGNORED:
            return true;
        case VALUE::LENGTH:
            m_text.lengthLine = m_line;
            return ReadNumber(step);
        case VALUE::NUMBER:
            return ReadNumber(step);
        default:
            return ReadText(step);
        }
    }

    /// Without its parenthesis the line opens nothing.
    bool FindOpening(std::string_view key) {
        while (Find(key)) {
            if (Contains(Code(), "("))
                return true;
            ++m_line;
        }
        return false;
    }

    bool ReadText(const STEP& step) {
        const auto quoted = Quoted(Code());
        if (!quoted)
            return FaultHere(fmt::format("{} has no value in single quotes", step.key));
        if (step.value == VALUE::TITLE)
            m_text.title = *quoted;
        if (step.value != VALUE::TYPE || *quoted == "AT24CO2" || *quoted == "DS1624S" || *quoted == "IMBDEVICE")
            return true;
        m_isMiniBmc = *quoted == "MBMC_FRU";
        if (m_isMiniBmc && !m_acceptsMiniBmc)
            return FaultHere("a FRU of the type MBMC_FRU is taken with the platform code 3 only");
        return m_isMiniBmc ||
               FaultHere(fmt::format("{} is '{}', which is none of AT24CO2, DS1624S, IMBDEVICE, MBMC_FRU", step.key,
                                     *quoted));
    }

    bool ReadNumber(const STEP& step) {
        std::string_view digits = Code();
        if (!digits.starts_with(step.key))
            return FaultHere(fmt::format("{} does not begin its line", step.key));
        digits.remove_prefix(step.key.size());
        digits.remove_prefix(std::min(digits.find_first_not_of(BLANKS), digits.size()));
        if (digits.starts_with("0x") || digits.starts_with("0X"))
            digits.remove_prefix(2);
        unsigned long long number = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
        if (result.ptr == digits.data())
            return FaultHere(fmt::format("{} has no hexadecimal number", step.key));
        return (result.ec == std::errc() && number <= step.limit) ||
               FaultHere(fmt::format("{} is {} and may be at most {:X}", step.key, digits, step.limit));
    }

    /// @param size bytes that the block must have; 0: any number that fits
    bool ReadBlock(AREA_ID area, std::size_t size) {
        if (!Find(AreaTag(area)))
            return false;
        TEXT_BLOCK block{area, m_line, 0, {}};
        for (++m_line; m_line < m_text.lines.size() && !EndsBlock(); ++m_line) {
            TEXT_LINE& line = m_text.lines[m_line];
            if (!ReadData(line))
                return false;
            block.bytes.insert(block.bytes.end(), line.bytes.begin(), line.bytes.end());
            if (block.bytes.size() > MAXIMUM_BLOCK)
                return FaultHere(fmt::format("the block {} has more than {} bytes", AreaTag(area), MAXIMUM_BLOCK));
        }
        block.end = m_line;
        m_text.blocks.push_back(std::move(block));
        const std::size_t length = m_text.blocks.back().bytes.size();
        if (size != 0 && length != size)
            return Fault(m_text.blocks.back().tag + 1,
                         fmt::format("the block {} has {} bytes and must have {}", AreaTag(area), length, size));
        if (area == AREA_ID::MULTIRECORD && length < RECORD_HEADER_SIZE)
            return Fault(m_text.blocks.back().tag + 1, fmt::format("the block {} has {} bytes, fewer than the {} of a "
                                                                   "record's header",
                                                                   AreaTag(area), length, RECORD_HEADER_SIZE));
        return true;
    }

    bool EndsBlock() const { return !Quoted(Code()) && (Contains(Code(), ")") || Contains(Code(), TAG)); }

    bool ReadData(TEXT_LINE& line) {
        if (const auto quoted = Quoted(line.Code())) {
            line.bytes.assign(quoted->begin(), quoted->end());
            return true;
        }
        std::string digits(line.Code());
        std::erase_if(digits, [](char character) { return character == '#' || Contains(BLANKS, {&character, 1}); });
        const std::size_t wrong = digits.find_first_not_of("0123456789ABCDEFabcdef");
        if (wrong != std::string::npos)
            return FaultHere(fmt::format("'{}' is no hexadecimal digit", digits[wrong]));
        if (digits.size() % 2 != 0)
            return FaultHere("it has an odd number of hexadecimal digits");
        for (std::size_t index = 0; index < digits.size(); index += 2) {
            BYTE byte = 0;
            std::from_chars(&digits[index], &digits[index] + 2, byte, 16);
            line.bytes.push_back(byte);
        }
        return true;
    }

    FRU_TEXT& m_text;
    bool m_acceptsMiniBmc;
    bool m_isMiniBmc = false;
    std::size_t m_line = 0;
};

/// The bytes of a block on the device: the zeroes and the checksum up to an info area's length are implied.
BYTES AreaBytes(const TEXT_BLOCK& block) {
    BYTES bytes = block.bytes;
    const std::size_t length = AreaRow(block.area).IsInfo() && bytes.size() > 1 ? bytes[1] * UNIT : 0;
    if (bytes.size() < length) {
        bytes.resize(length - 1);
        bytes.push_back(ZeroChecksum(bytes));
    }
    return bytes;
}

/// Puts the areas at the offsets of the header.
void PlaceAreas(FRU_TEXT& text) {
    std::vector<std::pair<RANGE, const TEXT_BLOCK*>> placed;
    for (const TEXT_BLOCK& block : text.blocks) {
        const BYTES bytes = AreaBytes(block);
        const std::size_t place =
            block.area == AREA_ID::HEADER ? 0 : text.blocks[0].bytes[static_cast<std::size_t>(block.area)] * UNIT;
        const RANGE range{place, bytes.size()};
        for (const auto& [other, holder] : placed)
            if (range.Overlaps(other))
                text.faults.push_back(
                    {block.tag + 1,
                     fmt::format("its {} bytes at {:03X}h overlap the {} bytes of {} at {:03X}h", range.length,
                                 range.offset, other.length, AreaTag(holder->area), other.offset)});
        placed.emplace_back(range, &block);
        text.image.resize(std::max(text.image.size(), range.End()));
        std::copy(bytes.begin(), bytes.end(), text.image.begin() + static_cast<std::ptrdiff_t>(place));
    }
}

} // namespace

FRU_TEXT ReadFruText(std::string_view text, bool acceptsMiniBmc) {
    FRU_TEXT result;
    result.lines = Lines(text);
    CReader(result, acceptsMiniBmc).Read();
    PlaceAreas(result);
    return result;
}

} // namespace Fructl
