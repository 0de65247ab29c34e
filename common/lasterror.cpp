#include "common/lasterror.h"

#include "common/trace.h"

#include <cstdarg>
#include <cwchar>

namespace Frudata_Private {

WCHAR ga_lastError1[LAST_ERROR_SIZE];
WCHAR ga_lastError2[LAST_ERROR_SIZE];
WCHAR* gp_lastError = ga_lastError1;

void ResetLastError() {
    ga_lastError1[0] = 0;
    ga_lastError2[0] = 0;
    gp_lastError = ga_lastError1;
}

const WCHAR* SetLastError(const WCHAR* format, ...) {
    const CTrace trace = TraceFruData(L"SetLastError");
    if (!format || !gp_lastError)
        return nullptr;
    std::va_list arguments;
    va_start(arguments, format);
    // A text that cannot be formatted ends without a 0; no older message may show behind it.
    std::wmemset(gp_lastError, 0, LAST_ERROR_SIZE);
    if (std::vswprintf(gp_lastError, LAST_ERROR_SIZE, format, arguments) < 0)
        gp_lastError[LAST_ERROR_SIZE - 1] = 0;
    va_end(arguments);
    return trace.Exit(gp_lastError);
}

const WCHAR* TakeLastError() {
    const WCHAR* message = gp_lastError;
    gp_lastError = gp_lastError == ga_lastError1 ? ga_lastError2 : ga_lastError1;
    gp_lastError[0] = 0;
    return message[0] ? message : nullptr;
}

} // namespace Frudata_Private
