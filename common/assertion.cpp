#include "common/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace Frudata_Private {

void FailAssertion(const char* file, const char* condition) {
    std::fprintf(stderr, "frudata: %s: assertion failed: %s\n", file, condition);
    std::abort();
}

} // namespace Frudata_Private
