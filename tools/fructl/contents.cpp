#include "tools/fructl/contents.h"

#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

namespace Fructl {

namespace {

std::string Advice(const CONTENTS& contents) {
    if (contents.fru.state == STATE::BLANK)
        return "'fructl new' makes a FRU from nothing";
    if (contents.source.kind == SOURCE::DEVICE)
        return "'fructl repair' puts right what leaves no doubt, 'fructl restore' writes an image over it";
    return "'fructl show' shows what can still be read, 'fructl repair' puts right what leaves no doubt";
}

} // namespace

void CONTENTS::RequireSound(bool advise) const {
    if (!fru.IsSound())
        throw CToolError(EXIT_DAMAGED, source.label, ProblemText(fru), advise ? Advice(*this) : "");
}

void NoteDamage(const std::string& label, const FRU& fru) {
    if (!fru.IsSound())
        Note(fmt::format("{}: {}", label, ProblemText(fru)));
}

} // namespace Fructl
