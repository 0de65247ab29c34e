#include "frudata/image/multirecord.h"

#include "common/bytesum.h"
#include "common/trace.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Frudata_Private {

FRUMultiRecord::~FRUMultiRecord() {
    // One record at a time: an image can have thousands, and a recursion would need a frame for each.
    while (next) {
        std::unique_ptr<FRUMultiRecord> rest = std::move(next->next);
        next = std::move(rest);
    }
}

void FRUMultiRecord::Decode(std::span<const UINT8> bytes) {
    UINT8 header[MULTIRECORD_HEADER_LENGTH] = {};
    const std::size_t headerLength = std::min<std::size_t>(bytes.size(), MULTIRECORD_HEADER_LENGTH);
    std::copy_n(bytes.begin(), headerLength, header);
    bytes = bytes.subspan(headerLength);
    typeId = header[0];
    format = header[1];
    length = header[2];
    recordChecksum = header[3];
    headerChecksum = header[4];
    std::copy_n(bytes.begin(), std::min<std::size_t>(bytes.size(), length), data);
}

void FRUMultiRecord::EncodeHeader(UINT8* bytes) const {
    const UINT8 header[MULTIRECORD_HEADER_LENGTH] = {typeId, format, length, recordChecksum, headerChecksum};
    std::memcpy(bytes, header, sizeof header);
}

bool FRUMultiRecord::IsValid() const {
    const CTrace trace(L"FRUMultiRecord", L"IsValid");
    UINT8 header[MULTIRECORD_HEADER_LENGTH];
    EncodeHeader(header);
    return trace.Exit(ZeroChecksum(header, MULTIRECORD_HEADER_LENGTH) == 0 &&
                      ZeroChecksum(data, length) == recordChecksum);
}

FRUMultiRecord* CMultiRecordAppender::Append() {
    m_end->reset(new (std::nothrow) FRUMultiRecord);
    FRUMultiRecord* record = m_end->get();
    if (record)
        m_end = &record->next;
    return record;
}

} // namespace Frudata_Private
