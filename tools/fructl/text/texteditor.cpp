// Editing a FRU text file line by line: lines of unchanged bytes stay, and so does every comment.
#include "tools/fructl/text/frutext.h"
#include "tools/fructl/text/textblock.h"
#include "tools/fructl/text/textkeys.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace Fructl {

namespace {

using namespace FruImage;

using ITEMS = std::vector<BLOCK_ITEM>;

BYTES Join(const ITEMS& items) {
    BYTES bytes;
    for (const BLOCK_ITEM& item : items)
        bytes.insert(bytes.end(), item.bytes.begin(), item.bytes.end());
    return bytes;
}

/// The part [begin, end) of the bytes that `items` stand for; an item that is cut has no quoted form.
ITEMS Part(const ITEMS& items, std::size_t begin, std::size_t end) {
    ITEMS part;
    std::size_t offset = 0;
    for (const BLOCK_ITEM& item : items) {
        const std::size_t from = std::max(begin, offset);
        const std::size_t to = std::min(end, offset + item.bytes.size());
        if (from < to && to - from == item.bytes.size()) {
            part.push_back(item);
        } else if (from < to) {
            const BYTE_VIEW bytes = Slice(item.bytes, from - offset, to - from);
            part.push_back({BYTES(bytes.begin(), bytes.end()), false, {}});
        }
        offset += item.bytes.size();
    }
    return part;
}

/// The places of the old lines' bytes in the new ones that keep most bytes on their lines.
class CMatch {
  public:
    CMatch(std::span<const TEXT_LINE> lines, const ITEMS& items) : m_lines(lines), m_bytes(Join(items)) {
        m_boundary.resize(m_bytes.size() + 1);
        std::size_t offset = 0;
        for (const BLOCK_ITEM& item : items) {
            m_boundary[offset] = true;
            offset += item.bytes.size();
        }
        m_kept.assign((lines.size() + 1) * Width(), 0);
        for (std::size_t line = lines.size(); line-- > 0;)
            for (std::size_t offset2 = m_bytes.size() + 1; offset2-- > 0;)
                At(line, offset2) = std::max({At(line + 1, offset2), Keep(line, offset2),
                                              offset2 < m_bytes.size() ? At(line, offset2 + 1) : 0U});
    }

    /// For each line the offset of its bytes; none if they are gone or the line has none.
    std::vector<std::optional<std::size_t>> Places() const {
        std::vector<std::optional<std::size_t>> places(m_lines.size());
        std::size_t offset = 0;
        for (std::size_t line = 0; line < m_lines.size(); ++line) {
            if (At(line, offset) == At(line + 1, offset))
                continue;
            while (At(line, offset) != Keep(line, offset))
                ++offset;
            places[line] = offset;
            offset += m_lines[line].bytes.size();
        }
        return places;
    }

  private:
    std::size_t Width() const { return m_bytes.size() + 1; }
    unsigned& At(std::size_t line, std::size_t offset) { return m_kept[line * Width() + offset]; }
    unsigned At(std::size_t line, std::size_t offset) const { return m_kept[line * Width() + offset]; }

    /// The bytes kept from here on if this line's are at `offset`; 0 if they are not. Of two places the one
    /// where a value begins is better.
    unsigned Keep(std::size_t line, std::size_t offset) const {
        const BYTES& bytes = m_lines[line].bytes;
        const BYTE_VIEW there = Slice(m_bytes, offset, bytes.size());
        if (bytes.empty() || !std::equal(bytes.begin(), bytes.end(), there.begin(), there.end()))
            return 0;
        return At(line + 1, offset + bytes.size()) + static_cast<unsigned>(bytes.size()) * 4 +
               (m_boundary[offset] ? 2 : 1);
    }

    std::span<const TEXT_LINE> m_lines;
    BYTES m_bytes;
    std::vector<bool> m_boundary;
    std::vector<unsigned> m_kept;
};

std::string Whole(const TEXT_LINE& line) {
    return line.text + line.end;
}

/// The line with other bytes and its own comment.
std::string Replaced(const TEXT_LINE& line, const BLOCK_ITEM& item) {
    std::string comment = line.text.substr(line.codeEnd);
    if (comment.empty() && !item.comment.empty())
        comment = fmt::format("  {} {}", COMMENT, item.comment);
    return line.text.substr(0, line.codeBegin) + ItemCode(item.bytes, item.quoted) + comment + line.end;
}

class CEditor {
  public:
    CEditor(const FRU_TEXT& before, const FRU& image) : m_before(before), m_old(Parse(before.image)), m_image(image) {
        for (const TEXT_LINE& line : before.lines)
            if (!line.end.empty()) {
                m_lineEnd = line.end;
                break;
            }
    }

    std::string Edit() {
        for (const TEXT_BLOCK& block : m_before.blocks) {
            AddMissing(block.area, block.tag);
            KeepTo(block.tag);
            EditBlock(block);
        }
        AddMissing(AREA_ID(0xFF), m_line);
        KeepTo(m_before.lines.size());
        return std::move(m_text);
    }

  private:
    /// The file's last line may have no end.
    void Add(const std::string& line) {
        if (!m_text.empty() && m_text.back() != '\n' && m_text.back() != '\r')
            m_text += m_lineEnd;
        m_text += line;
    }

    void KeepTo(std::size_t end) {
        for (; m_line < end; ++m_line)
            Add(m_line == m_before.lengthLine ? LengthLine() : Whole(m_before.lines[m_line]));
    }

    /// Updates _DATA_LEN, the bytes of the whole image, after areas came, went or moved.
    std::string LengthLine() const {
        const TEXT_LINE& line = m_before.lines[m_line];
        if (m_image.bytes.size() == m_before.image.size())
            return Whole(line);
        const std::size_t digits = line.Code().find_last_of(BLANKS) + 1;
        return fmt::format("{}{:04X}{}{}", line.text.substr(0, line.codeBegin + digits), m_image.bytes.size(),
                           line.text.substr(line.codeEnd), line.end);
    }

    /// Blocks of areas that the file lacks, before that of `next`, in the order of the header.
    void AddMissing(AREA_ID next, std::size_t line) {
        for (const AREA& area : m_image.areas) {
            const bool isNew = std::none_of(m_before.blocks.begin(), m_before.blocks.end(),
                                            [&](const TEXT_BLOCK& block) { return block.area == area.id; });
            if (!isNew || area.id <= m_last || area.id >= next)
                continue;
            KeepTo(line);
            Add(std::string(AreaTag(area.id)) + m_lineEnd);
            AddItems(BlockItems(m_image, area));
            m_text += m_lineEnd;
        }
        m_last = next;
    }

    void AddItems(std::span<const BLOCK_ITEM> items) {
        for (const BLOCK_ITEM& item : items)
            Add(Replaced({{}, m_lineEnd}, item));
    }

    void EditBlock(const TEXT_BLOCK& block) {
        const AREA* area = m_image.Find(block.area);
        if (block.area != AREA_ID::HEADER && !area) {
            m_line = block.end; // the area is gone, and its lines with it
            return;
        }
        if (IsSame(block.area, area))
            return KeepTo(block.end);
        KeepTo(block.tag + 1);
        const ITEMS items = area ? BlockItems(m_image, *area) : HeaderItems(m_image);
        EditLines(std::span(m_before.lines).subspan(block.tag + 1, block.end - block.tag - 1), items);
        m_line = block.end;
    }

    bool IsSame(AREA_ID id, const AREA* area) const {
        if (!area)
            return m_old.header == m_image.header;
        const AREA* old = m_old.Find(id);
        const BYTE_VIEW before = old ? m_old.View({old->offset, old->length}) : BYTE_VIEW();
        const BYTE_VIEW after = m_image.View({area->offset, area->length});
        return old && std::equal(before.begin(), before.end(), after.begin(), after.end());
    }

    /// Keeps the lines whose bytes are still there; between two of them the new bytes take the lines of the old ones.
    void EditLines(std::span<const TEXT_LINE> lines, const ITEMS& items) {
        const auto places = CMatch(lines, items).Places();
        std::size_t offset = 0;
        std::size_t first = 0;
        for (std::size_t line = 0; line < lines.size(); ++line) {
            if (!places[line])
                continue;
            ReplaceLines(lines.subspan(first, line - first), Part(items, offset, *places[line]));
            Add(Whole(lines[line]));
            offset = *places[line] + lines[line].bytes.size();
            first = line + 1;
        }
        ReplaceLines(lines.subspan(first), Part(items, offset, Join(items).size()));
    }

    /// New values take the lines of old ones, in their order; lines without bytes stay.
    void ReplaceLines(std::span<const TEXT_LINE> lines, std::span<const BLOCK_ITEM> items) {
        const std::size_t last = LastData(lines);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            if (lines[index].bytes.empty()) {
                Add(Whole(lines[index]));
            } else if (!items.empty()) {
                Add(Replaced(lines[index], items.front()));
                items = items.subspan(1);
            }
            if (index == last) {
                AddItems(items);
                items = {};
            }
        }
        AddItems(items);
    }

    static std::size_t LastData(std::span<const TEXT_LINE> lines) {
        std::size_t last = lines.size();
        for (std::size_t index = 0; index < lines.size(); ++index)
            if (!lines[index].bytes.empty())
                last = index;
        return last;
    }

    const FRU_TEXT& m_before;
    const FRU m_old;
    const FRU& m_image;
    std::string m_text;
    std::string m_lineEnd = "\n";
    std::size_t m_line = 0;
    AREA_ID m_last = AREA_ID::HEADER;
};

} // namespace

std::string EditFruText(const FRU_TEXT& before, const FRU& image) {
    return CEditor(before, image).Edit();
}

} // namespace Fructl
