// The options that every command takes.
#pragma once

#include <memory>
#include <string>

namespace CLI {
class App;
} // namespace CLI

namespace Fructl {

/// Options whose meaning shows only when all are there.
struct GLOBAL_OPTIONS {
    bool noColor = false;
};

/// Adds them; they fill Settings(). A wrong value is refused with the option's name and what it takes.
std::shared_ptr<GLOBAL_OPTIONS> AddGlobalOptions(CLI::App& app);
/// Once all are parsed: what follows from several of them, and from the environment. @throws CToolError
void TakeGlobalOptions(const GLOBAL_OPTIONS& options);
/// Refuses an argument that is no UTF-8. @throws CToolError
void CheckArguments(int count, char** arguments);

} // namespace Fructl
