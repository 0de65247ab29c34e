#include "fruimage/imagebuilder.h"

#include <algorithm>

namespace FruImage {

namespace {

constexpr BYTE ERASED = 0xFF;

} // namespace

AREA_DESCRIPTION& CImageBuilder::Area(AREA_ID id) {
    auto place =
        std::find_if(m_areas.begin(), m_areas.end(), [=](const AREA_DESCRIPTION& area) { return area.id >= id; });
    if (place == m_areas.end() || place->id != id) {
        place = m_areas.emplace(place);
        place->id = id;
    }
    return *place;
}

CImageBuilder& CImageBuilder::InternalUse(const BYTES& data) {
    BYTES& bytes = Area(AREA_ID::INTERNAL_USE).bytes;
    bytes = {1};
    bytes.insert(bytes.end(), data.begin(), data.end());
    bytes.resize(RoundUp(bytes.size()));
    return *this;
}

CImageBuilder& CImageBuilder::Info(AREA_ID id, BYTE language, std::vector<FIELD_DESCRIPTION> fields,
                                   const std::vector<FIELD_DESCRIPTION>& customFields, std::size_t spare) {
    AREA_DESCRIPTION& area = Area(id);
    area.language = language;
    area.spare = spare;
    area.fields = std::move(fields);
    area.fields.insert(area.fields.end(), customFields.begin(), customFields.end());
    return *this;
}

CImageBuilder& CImageBuilder::Chassis(const CHASSIS_VALUES& values, std::size_t spare) {
    return Info(AREA_ID::CHASSIS, 0,
                {{ENCODING::BINARY, BYTES{values.chassisType}}, values.partNumber, values.serialNumber},
                values.customFields, spare);
}

CImageBuilder& CImageBuilder::Board(const BOARD_VALUES& values, std::size_t spare) {
    const BYTES date = {static_cast<BYTE>(values.minutes), static_cast<BYTE>(values.minutes >> 8),
                        static_cast<BYTE>(values.minutes >> 16)};
    return Info(AREA_ID::BOARD, values.language,
                {{ENCODING::BINARY, date},
                 values.manufacturer,
                 values.productName,
                 values.serialNumber,
                 values.partNumber,
                 values.fileId},
                values.customFields, spare);
}

CImageBuilder& CImageBuilder::Product(const PRODUCT_VALUES& values, std::size_t spare) {
    return Info(AREA_ID::PRODUCT, values.language,
                {values.manufacturer, values.productName, values.partNumber, values.version, values.serialNumber,
                 values.assetTag, values.fileId},
                values.customFields, spare);
}

CImageBuilder& CImageBuilder::MultiRecord(BYTE type, const BYTES& data) {
    RECORD_DESCRIPTION record;
    record.type = type;
    record.data = data;
    Area(AREA_ID::MULTIRECORD).records.push_back(std::move(record));
    return *this;
}

DESCRIPTION CImageBuilder::Description(std::size_t deviceSize) const {
    DESCRIPTION description;
    description.size = deviceSize;
    description.fill = ERASED;
    description.areas = m_areas;
    return description;
}

BYTES CImageBuilder::Build(std::size_t deviceSize) const {
    return FruImage::Build(Description(deviceSize)).Take();
}

} // namespace FruImage
