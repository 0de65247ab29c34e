#include "frudata/operation.h"

namespace Frudata_Private {

EFI_STATUS COperation::Fail(const WCHAR* reason, STRING_ID message, EFI_STATUS status) const {
    if (m_order == TRACE_FIRST)
        m_trace.Fail(reason);
    RecordLastError(message);
    if (m_order == RECORD_FIRST)
        m_trace.Fail(reason);
    return status;
}

EFI_STATUS COperation::Check(OPERATION_NEED need) const {
    if (g_startState != START_UP)
        return FRU_STATUS_NOT_INITIALIZED;
    const CFruData& state = *g_FruData;
    if (need >= NEED_LOADED && !state.m_fLoaded)
        return FailUnexpected(FRU_STATUS_NOT_LOADED);
    const bool isSelected =
        (need < NEED_LIST || state.m_listType != FRU_LIST_NONE) && (need < NEED_FRU || state.m_nFru != CURSOR_NONE) &&
        (need < NEED_AREA || state.m_area != FRU_AREA_NONE) && (need < NEED_FIELD || state.m_nField != CURSOR_NONE);
    return isSelected ? FRU_STATUS_SUCCESS : FailUnexpected(FRU_STATUS_NOT_SELECTED);
}

} // namespace Frudata_Private
