// Work that may end the process: the library stops it at a failed assertion, so every session with the
// library runs in a child process, which hands its result back through a pipe.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>

namespace Fructl {

/// Steps of the child's work, shown by the parent: bytes done, bytes in all, what is being done.
using PROGRESS = std::function<void(std::size_t, std::size_t, const std::string&)>;

/// The child ended by a signal: the library refused what it was given with a failed assertion.
class CChildDied : public std::exception {
  public:
    explicit CChildDied(std::string output) : m_output(std::move(output)) {}
    const char* what() const noexcept override { return m_output.c_str(); }

    std::string m_output; ///< what it printed last
};

/// Runs `work` in a child process and returns its result. Everything that the child prints goes to
/// standard error. A CToolError of the child is thrown here again. @throws CChildDied
nlohmann::json RunInChild(const std::function<nlohmann::json(const PROGRESS&)>& work, const PROGRESS& progress = {});

} // namespace Fructl
