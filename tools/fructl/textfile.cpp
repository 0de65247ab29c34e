#include "tools/fructl/textfile.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace Fructl {

namespace {

constexpr const char* AREA_TAG = "_SEE_";

bool Contains(const std::string& line, const char* key) {
    return line.find(key) != std::string::npos;
}

/// What stands between the first two quotes.
std::optional<std::string> Quoted(const std::string& line) {
    const std::size_t open = line.find('\'');
    const std::size_t close = open == std::string::npos ? open : line.find('\'', open + 1);
    if (close == std::string::npos)
        return std::nullopt;
    return line.substr(open + 1, close - open - 1);
}

/// The lines without comments and without blanks at their ends.
std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines(1);
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char character = text[position];
        if (character != '\n' && character != '\r') {
            lines.back() += character;
            continue;
        }
        const char next = position + 1 < text.size() ? text[position + 1] : '\0';
        if ((next == '\n' || next == '\r') && next != character)
            ++position;
        lines.emplace_back();
    }
    for (std::string& line : lines) {
        line.erase(std::min(line.find("//"), line.size()));
        line.erase(line.find_last_not_of(" \t") + 1);
        line.erase(0, line.find_first_not_of(" \t"));
    }
    return lines;
}

class CBlockReader {
  public:
    explicit CBlockReader(const std::string& text) : m_lines(Lines(text)) {}

    /// Moves behind the next line with both texts. @return false at the end of the file
    bool Find(const char* first, const char* second = "") {
        while (m_next < m_lines.size()) {
            const std::string& line = m_lines[m_next++];
            if (Contains(line, first) && Contains(line, second))
                return true;
        }
        return false;
    }

    /// The next line, without moving on.
    std::string Peek() const { return m_next < m_lines.size() ? m_lines[m_next] : std::string(); }

    /// The bytes of the area block `tag`.
    BYTES Block(const std::string& tag) {
        BYTES bytes;
        if (!Find(tag.c_str()))
            return bytes;
        for (; m_next < m_lines.size(); ++m_next) {
            const std::string& line = m_lines[m_next];
            const auto quoted = Quoted(line);
            if (!quoted && (Contains(line, ")") || Contains(line, AREA_TAG)))
                break;
            std::string digits = line;
            std::erase(digits, '#');
            const BYTES part = quoted ? BYTES(quoted->begin(), quoted->end()) : FromHex(digits).value_or(BYTES());
            bytes.insert(bytes.end(), part.begin(), part.end());
        }
        return bytes;
    }

  private:
    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
};

/// A block ends with the end marker: the zero bytes and the checksum up to its length are implied.
void PadInfoArea(BYTES& bytes) {
    const std::size_t length = bytes.size() < 2 ? 0 : bytes[1] * OFFSET_UNIT;
    if (bytes.size() >= length)
        return;
    bytes.resize(length - 1);
    bytes.push_back(ZeroChecksum(bytes));
}

std::string Upper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
    return upper;
}

/// The area's word in its tag: "_SEE_MULTIREC", and the area names otherwise.
std::string Tag(const AREA_ROW& row) {
    return row.area == FRU_AREA_MULTIRECORD ? "_SEE_MULTIREC" : AREA_TAG + Upper(row.name);
}

void AddArea(const AREA_ROW& row, std::size_t offset, BYTES bytes, FRU& fru) {
    if (row.headerLength != 0) {
        PadInfoArea(bytes);
        if (bytes.size() >= OFFSET_UNIT)
            fru.areas.push_back(ParseInfoArea(row, offset, bytes, fru));
    } else if (row.area == FRU_AREA_MULTIRECORD) {
        fru.areas.push_back(ParseMultiRecordArea(offset, bytes, true, fru));
    } else {
        AREA area{row.area, offset, std::move(bytes), {}};
        area.used = area.bytes.size();
        fru.areas.push_back(std::move(area));
    }
}

} // namespace

bool LooksLikeImage(BYTE_VIEW bytes) {
    return !bytes.empty() && !std::isprint(bytes[0]) && !std::isspace(bytes[0]);
}

TEXT_FRU ParseTextFile(const std::string& text) {
    TEXT_FRU result;
    CBlockReader reader(text);
    reader.Find("_FRU", "(");
    if (Contains(reader.Peek(), "_FRU_TITLE"))
        result.title = Quoted(reader.Peek()).value_or("");
    FRU& fru = result.fru;
    if (!CheckHeader(reader.Block("_SEE_COMMON"), fru) && fru.header.size() < HEADER_SIZE)
        return result;
    for (const AREA_ROW& row : Areas())
        if (const std::size_t offset = fru.header[row.headerByte] * OFFSET_UNIT; offset != 0)
            AddArea(row, offset, reader.Block(Tag(row)), fru);
    fru.size = HEADER_SIZE;
    for (const AREA& area : fru.areas)
        fru.size = std::max(fru.size, area.offset + area.bytes.size());
    return result;
}

} // namespace Fructl
