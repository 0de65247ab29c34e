// The multi-record area (FRU Information Storage Definition, section 16).
#pragma once

#include "frudata/types.h"

#include <memory>
#include <span>

namespace Frudata_Private {

/// Bytes of a record's header.
constexpr UINTN MULTIRECORD_HEADER_LENGTH = 5;
/// Bit of the format byte that marks the last record.
constexpr UINT8 MULTIRECORD_END_OF_LIST = 0x80;

/// A record as it lies in the image, and the records behind it.
struct FRUMultiRecord {
    UINT8 typeId = 0;
    UINT8 format = 0; ///< bit 7 end of list, bits 3..0 format version
    UINT8 length = 0; ///< data bytes
    UINT8 recordChecksum = 0;
    UINT8 headerChecksum = 0;
    UINT8 data[512] = {}; ///< the first `length` bytes count
    std::unique_ptr<FRUMultiRecord> next;

    FRUMultiRecord() = default;
    FRUMultiRecord(const FRUMultiRecord&) = delete;
    FRUMultiRecord& operator=(const FRUMultiRecord&) = delete;
    /// Deletes the records behind this one too.
    ~FRUMultiRecord();

    /// Has no effect.
    static void Create() {}

    /// Takes header and data from the start of `bytes`; missing bytes count as zero and show in the checksum.
    void Decode(std::span<const UINT8> bytes);
    /// Writes the five header bytes.
    void EncodeHeader(UINT8* bytes) const;
    /// Whether header and data each sum to 0 modulo 256.
    bool IsValid() const;
};

/// The area of one image.
struct MULTIRECORD_AREA {
    std::unique_ptr<FRUMultiRecord> first;
    UINT16 length = 0;       ///< in bytes
    bool isModified = false; ///< since it was read or written
};

/// Appends records to a chain without walking it.
class CMultiRecordAppender {
  public:
    explicit CMultiRecordAppender(std::unique_ptr<FRUMultiRecord>& head) : m_end(&head) {}
    /// @return the new record; null when the allocation fails
    FRUMultiRecord* Append();

  private:
    std::unique_ptr<FRUMultiRecord>* m_end;
};

} // namespace Frudata_Private
