#include "frudata/image/multirecord.h"

#include "common/bytesum.h"
#include "common/trace.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Frudata_Private {

FRUMultiRecord::~FRUMultiRecord() {
    // One record at a time: thousands of them fit an image, and a recursion would need a frame for each.
    while (next) {
        std::unique_ptr<FRUMultiRecord> rest = std::move(next->next);
        next = std::move(rest);
    }
}

void FRUMultiRecord::Decode(const UINT8* bytes, UINTN available) {
    UINT8 header[MULTIRECORD_HEADER_LENGTH] = {};
    const UINTN headerLength = std::min(available, MULTIRECORD_HEADER_LENGTH);
    std::memcpy(header, bytes, headerLength);
    typeId = header[0];
    format = header[1];
    length = header[2];
    recordChecksum = header[3];
    headerChecksum = header[4];
    std::memcpy(data, bytes + headerLength, std::min<UINTN>(available - headerLength, length));
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
