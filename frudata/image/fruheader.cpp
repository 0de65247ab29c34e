#include "frudata/image/fruheader.h"

#include "common/bytesum.h"
#include "common/trace.h"

#include <cstring>

namespace Frudata_Private {

namespace {

constexpr CTraceSource TraceHeader(L"CFruHeader");

} // namespace

UINTN CFruHeader::GetLength() const {
    return TraceHeader(L"GetLength").Exit(FRU_HEADER_LENGTH + 0);
}

const UINT8* CFruHeader::GetData() {
    const CTrace trace = TraceHeader(L"GetData");
    std::memcpy(m_copy, m_bytes, FRU_HEADER_LENGTH);
    return trace.Exit(m_copy);
}

void CFruHeader::SetData(const UINT8* data) {
    const CTrace trace = TraceHeader(L"SetData");
    std::memcpy(m_bytes, data, FRU_HEADER_LENGTH);
    trace.Exit();
}

bool CFruHeader::IsValid() const {
    return TraceHeader(L"IsValid").Exit(ZeroChecksum(m_bytes, FRU_HEADER_LENGTH) == 0);
}

} // namespace Frudata_Private
