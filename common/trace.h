// Entry, exit and failure lines of one operation in the debug log.
#pragma once

#include "frudata/debug.h"

namespace Frudata_Private {

/// Levels of the debug log's lines.
enum : unsigned int {
    TRACE_ERROR = 1,
    TRACE_CALLS = 3
};

/// Traces one operation of a class: its entry when constructed, its exit and its failures when told.
/// A line that the level filters out costs one comparison.
class CTrace {
  public:
    CTrace(const wchar_t* className, const wchar_t* operation) : m_class(className), m_operation(operation) {
        if (TRACE_CALLS <= LIBDBG_DEBUG_LEVEL) [[unlikely]]
            Dbg(L"%ls::%ls [ENTRY]", TRACE_CALLS, m_class, m_operation);
    }

    /// The operation succeeded.
    void Exit() const {
        if (TRACE_CALLS <= LIBDBG_DEBUG_LEVEL) [[unlikely]]
            Dbg(L"%ls::%ls [EXIT]", TRACE_CALLS, m_class, m_operation);
    }

    /// The operation succeeded with `result`.
    template <typename RESULT> RESULT Exit(RESULT result) const {
        Exit();
        return result;
    }

    /// The operation ends with `status`: it succeeded where that is 0.
    unsigned int End(unsigned int status) const {
        if (status == 0)
            Exit();
        return status;
    }

    /// The operation failed for `reason`.
    void Fail(const wchar_t* reason) const {
        if (TRACE_ERROR <= LIBDBG_DEBUG_LEVEL) [[unlikely]]
            Dbg(L"%ls::%ls - %ls", TRACE_ERROR, m_class, m_operation, reason);
    }

    /// The operation failed for `reason` with `result`.
    template <typename RESULT> RESULT Fail(const wchar_t* reason, RESULT result) const {
        Fail(reason);
        return result;
    }

  private:
    const wchar_t* m_class;
    const wchar_t* m_operation;
};

/// Begins the traces of the operations of one class, which the log calls by `className`.
class CTraceSource {
  public:
    constexpr explicit CTraceSource(const wchar_t* className) : m_class(className) {}
    CTrace operator()(const wchar_t* operation) const { return {m_class, operation}; }

  private:
    const wchar_t* m_class;
};

/// The operations of the table, and functions of no class.
inline constexpr CTraceSource TraceFruData(L"FruData");

} // namespace Frudata_Private
