// A session with the library: work in a child process, where a failed assertion ends nothing else.
#pragma once

#include "tools/fructl/child.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>

namespace Fructl {

class CLibrary;

/// Runs a session whose death means that `name` is damaged. @throws CToolError, also for that
nlohmann::json RunSession(const std::string& name, const std::function<nlohmann::json(const PROGRESS&)>& work,
                          const PROGRESS& progress = {});

/// The same with the BMC, which the library has been started on.
nlohmann::json RunOnBmc(const std::string& name,
                        const std::function<nlohmann::json(const CLibrary&, const PROGRESS&)>& work,
                        const PROGRESS& progress = {});

} // namespace Fructl
