#include "tools/fructl/session.h"

#include "tools/fructl/library.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/way.h"

#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

/// Failed assertions that say what is wrong with a file, in words.
constexpr struct {
    const char* assertion;
    const char* reason;
} ASSERTIONS[] = {{"position == FIRST", "a line of an area block has an odd number of hexadecimal digits"},
                  {"length == 8", "the _SEE_COMMON block has not 8 bytes"},
                  {"length >= 5", "the _SEE_MULTIREC block has less than the 5 bytes of a record header"},
                  {"index != 512", "an area block has 512 bytes, one more than a text file can hold"},
                  {"padding >= 0", "the fields of the board area are longer than the area"},
                  {"assertion failed: text", "a header line has no quoted value"},
                  {"IsValid()", "the checksum of an info area is wrong"}};

std::string DeathReason(const CChildDied& death) {
    for (const auto& [assertion, reason] : ASSERTIONS)
        if (death.m_output.find(assertion) != std::string::npos)
            return reason;
    std::string text = death.m_output;
    text.erase(text.find_last_not_of("\r\n") + 1);
    if (Settings().debugLevel > 0 && !text.empty())
        return text;
    return "the library cannot make sense of it (--debug 1 tells where)";
}

} // namespace

nlohmann::json RunSession(const std::string& name, const std::function<nlohmann::json(const PROGRESS&)>& work,
                          const PROGRESS& progress) {
    try {
        return RunInChild(work, progress);
    } catch (const CChildDied& death) {
        throw CToolError(EXIT_DAMAGED, name, DeathReason(death));
    }
}

nlohmann::json RunOnBmc(const std::string& name,
                        const std::function<nlohmann::json(const CLibrary&, const PROGRESS&)>& work,
                        const PROGRESS& progress) {
    ShareWay();
    return RunSession(
        name, [&](const PROGRESS& report) { return work(CLibrary(CLibrary::SYSTEM_BMC), report); }, progress);
}

} // namespace Fructl
