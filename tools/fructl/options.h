// The options of every command.
#pragma once

#include <memory>
#include <string>

namespace CLI {
class App;
} // namespace CLI

namespace Fructl {

/// Options that only all together have a meaning.
struct GLOBAL_OPTIONS {
    bool noColor = false;
};

/// Adds the options, which fill Settings(). The refusal of a wrong value names the option and its values.
std::shared_ptr<GLOBAL_OPTIONS> AddGlobalOptions(CLI::App& app);
/// After parsing: settings that follow from several options and the environment. @throws CToolError
void TakeGlobalOptions(const GLOBAL_OPTIONS& options);
/// @throws CToolError for an argument that is no UTF-8
void CheckArguments(int count, char** arguments);

} // namespace Fructl
