// The trace and the checks that all operations of the table share.
#pragma once

#include "common/lasterror.h"
#include "common/trace.h"
#include "frudata/frudatastate.h"

namespace Frudata_Private {

/// An operation's needs, each level including those before it.
enum OPERATION_NEED {
    NEED_INITIALIZED,
    NEED_LOADED,
    NEED_LIST,
    NEED_FRU,
    NEED_AREA,
    NEED_FIELD
};

/// Whether a failure is recorded or traced first: the order of lines in the debug log.
enum FAILURE_ORDER {
    RECORD_FIRST, ///< the cursor, values and settings
    TRACE_FIRST   ///< whole configurations
};

/// One call of one operation.
class COperation {
  public:
    explicit COperation(const WCHAR* name, FAILURE_ORDER order = RECORD_FIRST)
        : m_trace(TraceFruData(name)), m_order(order) {}

    /// Checks the state. Every failure except NOT_INITIALIZED is traced and recorded.
    /// @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED
    EFI_STATUS Check(OPERATION_NEED need) const;
    /// Traces and records a failure. @return `status`
    EFI_STATUS Fail(const WCHAR* reason, STRING_ID message, EFI_STATUS status) const;
    /// The failure without a name of its own.
    EFI_STATUS FailUnexpected(EFI_STATUS status) const { return Fail(L"Unexpected", STRING_UNEXPECTED, status); }
    const CTrace& Trace() const { return m_trace; }

  private:
    CTrace m_trace;
    FAILURE_ORDER m_order;
};

/// Runs `body(operation)` if the checks pass, and traces the exit of a success.
template <typename BODY>
EFI_STATUS RunOperation(const WCHAR* name, OPERATION_NEED need, BODY body, FAILURE_ORDER order = RECORD_FIRST) {
    const COperation operation(name, order);
    EFI_STATUS status = operation.Check(need);
    if (status == FRU_STATUS_SUCCESS)
        status = body(operation);
    return operation.Trace().End(status);
}

} // namespace Frudata_Private
