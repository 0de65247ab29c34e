// An image from values by name: a description of the usual shape in one expression. A DESCRIPTION can say whatever
// else the format holds.
#pragma once

#include "fruimage/description.h"

#include <string>
#include <vector>

namespace FruImage {

struct CHASSIS_VALUES {
    BYTE chassisType = 23; ///< rack mount chassis
    FIELD_DESCRIPTION partNumber = {};
    FIELD_DESCRIPTION serialNumber = {};
    std::vector<FIELD_DESCRIPTION> customFields = {};
};

struct BOARD_VALUES {
    std::uint32_t minutes = 0; ///< manufacturing date: minutes since 1996-01-01T00:00Z, 24 bits used
    FIELD_DESCRIPTION manufacturer = {};
    FIELD_DESCRIPTION productName = {};
    FIELD_DESCRIPTION serialNumber = {};
    FIELD_DESCRIPTION partNumber = {};
    FIELD_DESCRIPTION fileId = {};
    std::vector<FIELD_DESCRIPTION> customFields = {};
    BYTE language = 0; ///< English
};

struct PRODUCT_VALUES {
    FIELD_DESCRIPTION manufacturer = {};
    FIELD_DESCRIPTION productName = {};
    FIELD_DESCRIPTION partNumber = {};
    FIELD_DESCRIPTION version = {};
    FIELD_DESCRIPTION serialNumber = {};
    FIELD_DESCRIPTION assetTag = {};
    FIELD_DESCRIPTION fileId = {};
    std::vector<FIELD_DESCRIPTION> customFields = {};
    BYTE language = 0; ///< English
};

/// The areas follow each other in the order internal use, chassis, board, product, multi-record.
class CImageBuilder {
  public:
    /// The bytes behind the format version byte; zeroes fill them up to a whole unit.
    CImageBuilder& InternalUse(const BYTES& data);
    /// `spare` more bytes of padding in each info area, before rounding up to 8, for fields to grow.
    CImageBuilder& Chassis(const CHASSIS_VALUES& values, std::size_t spare = 0);
    CImageBuilder& Board(const BOARD_VALUES& values, std::size_t spare = 0);
    CImageBuilder& Product(const PRODUCT_VALUES& values, std::size_t spare = 0);
    CImageBuilder& MultiRecord(BYTE type, const BYTES& data);

    /// The description so far. `deviceSize`: see Build.
    DESCRIPTION Description(std::size_t deviceSize = 0) const;
    /// The image, followed by bytes FFh up to `deviceSize` (0: not padded). No bytes where the format or the device
    /// cannot hold the values; FruImage::Build of the Description then says why.
    BYTES Build(std::size_t deviceSize = 0) const;

  private:
    /// The place of an area among those present, in the order above.
    AREA_DESCRIPTION& Area(AREA_ID id);
    CImageBuilder& Info(AREA_ID id, BYTE language, std::vector<FIELD_DESCRIPTION> fields,
                        const std::vector<FIELD_DESCRIPTION>& customFields, std::size_t spare);

    std::vector<AREA_DESCRIPTION> m_areas;
};

} // namespace FruImage
