#include "fruimage/parse.h"

#include <algorithm>

namespace FruImage {

namespace {

/// The bytes read of a device, and the ranges still wanted.
class CReading {
  public:
    CReading(BYTE_VIEW image, std::span<const RANGE> read) : m_image(image), m_read(read.begin(), read.end()) {
        std::sort(m_read.begin(), m_read.end(), [](const RANGE& a, const RANGE& b) { return a.offset < b.offset; });
    }

    /// The bytes of `range`, cut at the end of the device. If some are unread, none, and the range is wanted.
    BYTE_VIEW Want(RANGE range) {
        const BYTE_VIEW bytes = Slice(m_image, range.offset, range.length);
        const bool known = AddUnread({range.offset, bytes.size()});
        return known ? bytes : BYTE_VIEW();
    }
    bool IsMissingSome() const { return !m_wanted.empty(); }
    std::size_t Size() const { return m_image.size(); }

    std::vector<RANGE> Wanted() && {
        std::sort(m_wanted.begin(), m_wanted.end(), [](const RANGE& a, const RANGE& b) { return a.offset < b.offset; });
        std::vector<RANGE> joined;
        for (const RANGE& range : m_wanted) {
            if (!joined.empty() && range.offset <= joined.back().End())
                joined.back().length = std::max(joined.back().End(), range.End()) - joined.back().offset;
            else
                joined.push_back(range);
        }
        return joined;
    }

  private:
    bool AddUnread(const RANGE& range) {
        const std::size_t before = m_wanted.size();
        std::size_t position = range.offset;
        for (const RANGE& known : m_read) {
            if (known.End() <= position || known.offset >= range.End())
                continue;
            if (known.offset > position)
                m_wanted.push_back({position, known.offset - position});
            position = known.End();
        }
        if (position < range.End())
            m_wanted.push_back({position, range.End() - position});
        return m_wanted.size() == before;
    }

    BYTE_VIEW m_image;
    std::vector<RANGE> m_read;
    std::vector<RANGE> m_wanted;
};

void WantInfoArea(CReading& reading, std::size_t offset) {
    const BYTE_VIEW start = reading.Want({offset, UNIT});
    if (start.size() < 2)
        return;
    // Without a length, the fields tell how long the area is.
    reading.Want({offset, start[1] == 0 ? MAXIMUM_INFO_AREA : start[1] * UNIT});
}

/// Each record together with the next header, which tells where that record ends.
void WantRecords(CReading& reading, std::size_t offset) {
    while (true) {
        const BYTE_VIEW header = reading.Want({offset, RECORD_HEADER_SIZE});
        if (header.size() < RECORD_HEADER_SIZE)
            return;
        const std::size_t size = RECORD_HEADER_SIZE + header[2];
        // A record without data ends the list where its header is sound.
        const bool isClosing = header[2] == 0 && ZeroChecksum(header) == 0;
        const bool isLast = isClosing || (header[1] & END_OF_LIST) != 0;
        reading.Want({offset, size + (isLast ? 0 : RECORD_HEADER_SIZE)});
        if (isLast)
            return;
        offset += size;
    }
}

void WantArea(CReading& reading, BYTE_VIEW header, const AREA_ROW& row) {
    const std::size_t offset = header[static_cast<std::size_t>(row.id)] * UNIT;
    if (offset == 0 || offset >= reading.Size())
        return;
    if (row.IsInfo())
        return WantInfoArea(reading, offset);
    if (row.id == AREA_ID::MULTIRECORD)
        return WantRecords(reading, offset);
    std::size_t end = reading.Size();
    for (const AREA_ROW& other : Areas()) {
        const std::size_t next = header[static_cast<std::size_t>(other.id)] * UNIT;
        if (next > offset)
            end = std::min(end, next);
    }
    reading.Want({offset, end - offset});
}

} // namespace

std::vector<RANGE> WantedRanges(BYTE_VIEW image, std::span<const RANGE> read) {
    CReading reading(image, read);
    const BYTE_VIEW header = reading.Want({0, HEADER_SIZE});
    if (reading.IsMissingSome())
        return std::move(reading).Wanted();
    const bool sound =
        header.size() == HEADER_SIZE && Version(header[0]) == FORMAT_VERSION && ZeroChecksum(header) == 0;
    if (!sound) // the search behind a damaged header looks everywhere
        reading.Want({0, image.size()});
    for (const AREA_ROW& row : Areas())
        if (sound)
            WantArea(reading, header, row);
    return std::move(reading).Wanted();
}

} // namespace FruImage
