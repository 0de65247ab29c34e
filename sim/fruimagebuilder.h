// Composes binary FRU images (IPMI FRU Information Storage Definition) from field values. Written from the
// standard alone, so that images built here are a witness for the library's own reading and writing.
#pragma once

#include "sim/ipmi.h"

#include <string>
#include <string_view>

namespace Frudata_Sim {

/// Type codes of a field, in bits 7..6 of its type/length byte.
enum class FIELD_TYPE : UINT8 {
    BINARY = 0x00,
    BCD_PLUS = 0x40,
    PACKED_ASCII = 0x80,
    TEXT = 0xC0
};

/// One field: the raw bytes and their type. A text converts: `{"serial"}` or `"serial"`.
struct FruField {
    FruField(const char* text) : bytes(text) {}
    FruField(std::string text) : bytes(std::move(text)) {}
    FruField(FIELD_TYPE fieldType, std::string fieldBytes) : type(fieldType), bytes(std::move(fieldBytes)) {}

    FIELD_TYPE type = FIELD_TYPE::TEXT;
    std::string bytes; ///< 0 to 63; a text of 1 byte would read as the end-of-fields mark and is refused
};

struct ChassisArea {
    UINT8 chassisType = 0x17; ///< rack mount chassis
    FruField partNumber = "";
    FruField serialNumber = "";
    std::vector<FruField> customFields{};
};

struct BoardArea {
    UINT32 minutes = 0; ///< manufacturing date/time: minutes since 1996-01-01 00:00, 24 bits used
    FruField manufacturer = "";
    FruField productName = "";
    FruField serialNumber = "";
    FruField partNumber = "";
    FruField fileId = "";
    std::vector<FruField> customFields{};
    UINT8 language = 0; ///< English
};

struct ProductArea {
    FruField manufacturer = "";
    FruField productName = "";
    FruField partNumber = "";
    FruField version = "";
    FruField serialNumber = "";
    FruField assetTag = "";
    FruField fileId = "";
    std::vector<FruField> customFields{};
    UINT8 language = 0; ///< English
};

/// The areas follow each other in the order internal use, chassis, board, product, multi-record.
class CFruImageBuilder {
  public:
    /// `spare` more bytes of padding, before rounding up to 8, in each info area, so that fields can grow.
    /// The functions throw std::invalid_argument for what the format cannot hold.
    CFruImageBuilder& InternalUse(const BYTES& data); ///< the bytes behind the format version byte
    CFruImageBuilder& Chassis(const ChassisArea& area, unsigned int spare = 0);
    CFruImageBuilder& Board(const BoardArea& area, unsigned int spare = 0);
    CFruImageBuilder& Product(const ProductArea& area, unsigned int spare = 0);
    CFruImageBuilder& MultiRecord(UINT8 typeId, const BYTES& data);

    /// The image, followed by bytes 0xFF up to `deviceSize` (0: not padded).
    BYTES Build(std::size_t deviceSize = 0) const;

  private:
    BYTES m_internalUse;
    BYTES m_chassis;
    BYTES m_board;
    BYTES m_product;
    std::vector<std::pair<UINT8, BYTES>> m_records;
};

/// Ways an image goes bad.
enum class FRU_DAMAGE {
    NONE,
    HEADER_CHECKSUM, ///< the common header's checksum is wrong
    AREA_CHECKSUM,   ///< the checksum of the first info area is wrong
    LENGTH_PAST_END, ///< the first info area claims 255 times 8 bytes
    LENGTH_ZERO,     ///< the first info area claims no bytes
    NOT_FRU          ///< no FRU format at all: erased memory
};

/// Damages `image` in place. "First" is the first present of chassis, board and product.
void DamageFruImage(BYTES& image, FRU_DAMAGE damage);

} // namespace Frudata_Sim
