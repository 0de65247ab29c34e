#include "sim/fruimagebuilder.h"

#include <algorithm>
#include <stdexcept>

namespace Frudata_Sim {

namespace {

constexpr UINT8 FORMAT_VERSION = 0x01;
constexpr UINT8 RECORD_FORMAT = 0x02;
constexpr UINT8 END_OF_LIST = 0x80;
constexpr UINT8 END_OF_FIELDS = 0xC1;
constexpr UINT8 ERASED = 0xFF;
constexpr std::size_t UNIT = 8;
constexpr std::size_t LONGEST_FIELD = 63;
constexpr std::size_t MOST_UNITS = 255;
constexpr std::size_t HEADER_SIZE = 8;

void Require(bool condition, const char* text) {
    if (!condition)
        throw std::invalid_argument(text);
}

UINT8 Units(std::size_t size) {
    Require(size / UNIT <= MOST_UNITS, "an area or its offset passes 2040 bytes");
    return static_cast<UINT8>(size / UNIT);
}

std::size_t RoundUp(std::size_t size) {
    return (size + UNIT - 1) / UNIT * UNIT;
}

void AppendField(BYTES& area, const FruField& field) {
    Require(field.bytes.size() <= LONGEST_FIELD, "a field has at most 63 bytes");
    const auto typeLength = static_cast<UINT8>(static_cast<UINT8>(field.type) | field.bytes.size());
    Require(typeLength != END_OF_FIELDS, "a text of one byte reads as the end of the fields");
    area.push_back(typeLength);
    area.insert(area.end(), field.bytes.begin(), field.bytes.end());
}

/// An info area: header bytes (the length still open), fixed and custom fields, end mark, padding, checksum.
BYTES InfoArea(BYTES header, std::initializer_list<FruField> fixed, const std::vector<FruField>& custom,
               unsigned int spare) {
    BYTES area = std::move(header);
    for (const FruField& field : fixed)
        AppendField(area, field);
    for (const FruField& field : custom)
        AppendField(area, field);
    area.push_back(END_OF_FIELDS);
    area.resize(RoundUp(area.size() + spare + 1));
    area[1] = Units(area.size());
    area.back() = ZeroChecksum(area.data(), area.size() - 1);
    return area;
}

void AppendRecord(BYTES& image, UINT8 typeId, const BYTES& data, bool isLast) {
    const UINT8 header[] = {typeId, static_cast<UINT8>(RECORD_FORMAT | (isLast ? END_OF_LIST : 0)),
                            static_cast<UINT8>(data.size()), ZeroChecksum(data.data(), data.size())};
    Append(image, header);
    image.push_back(ZeroChecksum(header, sizeof header));
    Append(image, data);
}

/// Offset of the first present of chassis, board and product.
std::size_t FirstInfoArea(const BYTES& image) {
    for (std::size_t area = 2; area <= 4; ++area)
        if (image.at(area) != 0)
            return image[area] * UNIT;
    throw std::invalid_argument("no info area to damage");
}

} // namespace

CFruImageBuilder& CFruImageBuilder::InternalUse(const BYTES& data) {
    m_internalUse = {FORMAT_VERSION};
    Append(m_internalUse, data);
    m_internalUse.resize(RoundUp(m_internalUse.size()));
    return *this;
}

CFruImageBuilder& CFruImageBuilder::Chassis(const ChassisArea& area, unsigned int spare) {
    m_chassis =
        InfoArea({FORMAT_VERSION, 0, area.chassisType}, {area.partNumber, area.serialNumber}, area.customFields, spare);
    return *this;
}

CFruImageBuilder& CFruImageBuilder::Board(const BoardArea& area, unsigned int spare) {
    Require(area.minutes <= 0xFFFFFF, "a board's date/time has 24 bits");
    m_board = InfoArea({FORMAT_VERSION, 0, area.language, static_cast<UINT8>(area.minutes & 0xFF),
                        static_cast<UINT8>(area.minutes >> 8 & 0xFF), static_cast<UINT8>(area.minutes >> 16)},
                       {area.manufacturer, area.productName, area.serialNumber, area.partNumber, area.fileId},
                       area.customFields, spare);
    return *this;
}

CFruImageBuilder& CFruImageBuilder::Product(const ProductArea& area, unsigned int spare) {
    m_product = InfoArea({FORMAT_VERSION, 0, area.language},
                         {area.manufacturer, area.productName, area.partNumber, area.version, area.serialNumber,
                          area.assetTag, area.fileId},
                         area.customFields, spare);
    return *this;
}

CFruImageBuilder& CFruImageBuilder::MultiRecord(UINT8 typeId, const BYTES& data) {
    Require(data.size() <= 255, "a multi-record has at most 255 data bytes");
    m_records.emplace_back(typeId, data);
    return *this;
}

BYTES CFruImageBuilder::Build(std::size_t deviceSize) const {
    BYTES image(HEADER_SIZE);
    image[0] = FORMAT_VERSION;
    const BYTES* const areas[] = {&m_internalUse, &m_chassis, &m_board, &m_product};
    std::size_t position = 1;
    for (const BYTES* area : areas) {
        image[position++] = area->empty() ? UINT8{0} : Units(image.size());
        Append(image, *area);
    }
    image[position] = m_records.empty() ? UINT8{0} : Units(image.size());
    image[HEADER_SIZE - 1] = ZeroChecksum(image.data(), HEADER_SIZE - 1);
    for (const auto& [typeId, data] : m_records)
        AppendRecord(image, typeId, data, &data == &m_records.back().second);
    Require(deviceSize == 0 || image.size() <= deviceSize, "the image does not fit the device");
    image.resize(std::max(image.size(), deviceSize), ERASED);
    return image;
}

void DamageFruImage(BYTES& image, FRU_DAMAGE damage) {
    switch (damage) {
    case FRU_DAMAGE::NONE:
        break;
    case FRU_DAMAGE::HEADER_CHECKSUM:
        image.at(HEADER_SIZE - 1) ^= 0x5A;
        break;
    case FRU_DAMAGE::AREA_CHECKSUM: {
        const std::size_t area = FirstInfoArea(image);
        image.at(area + image.at(area + 1) * UNIT - 1) ^= 0x5A;
        break;
    }
    case FRU_DAMAGE::LENGTH_PAST_END:
        image.at(FirstInfoArea(image) + 1) = MOST_UNITS;
        break;
    case FRU_DAMAGE::LENGTH_ZERO:
        image.at(FirstInfoArea(image) + 1) = 0;
        break;
    case FRU_DAMAGE::NOT_FRU:
        std::fill(image.begin(), image.end(), ERASED);
        break;
    }
}

} // namespace Frudata_Sim
