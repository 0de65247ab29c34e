// The ways to the BMC, and the choice among them. For child processes, except where it says otherwise.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Fructl {

/// One way. A new one is a row in way.cpp.
struct WAY {
    const char* name; ///< as --interface takes it
    bool isUsual;     ///< tried, in the order of the rows, if no way is asked for
    /// Makes it the library's next way. @return why that fails, or nothing
    std::string (*Open)();
    /// Finishes after the start of the library. @return why that fails, or nothing
    std::string (*Started)();
    /// The way, for people.
    std::string (*Description)();
    /// Why a request got no answer, or nothing.
    std::string (*Failure)();
    /// Releases it, open or not.
    void (*Close)();
    std::size_t readChunk; ///< bytes that one Read FRU Data may ask for
};

/// Names for --interface. In every process.
std::vector<std::string> WayNames();
/// A key that tells the BMC of this run from others. In every process.
std::string WayKey();

/// Opens the way asked for, or the first usual one that can be opened. @throws CToolError with all reasons
void OpenWay();
/// Closes the way in use when it goes.
class CWayCloser {
  public:
    CWayCloser() = default;
    CWayCloser(const CWayCloser&) = delete;
    CWayCloser& operator=(const CWayCloser&) = delete;
    ~CWayCloser();
};
/// The way opened last.
const WAY& CurrentWay();

/// Gives the simulated BMC in use to the library, as a way that is always open.
void OpenSimulatedWay();

} // namespace Fructl
