#include "tools/fructl/contents.h"

#include "tools/fructl/toolerror.h"

namespace Fructl {

void CONTENTS::RequireSound(bool advise) const {
    if (!fru.IsDamaged())
        return;
    const char* hint = source.kind == SOURCE::DEVICE ? "'fructl restore' writes a sound image over it"
                                                     : "'fructl show' shows what can still be read";
    throw CToolError(EXIT_DAMAGED, source.label, fru.ProblemText(), advise ? hint : "");
}

} // namespace Fructl
