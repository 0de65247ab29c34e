// The ways to the BMC, and the choice among them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Fructl {

struct IMB_DRIVER;

/// One way. A new one is a row in way.cpp.
struct WAY {
    const char* name; ///< as --interface takes it
    bool isUsual;     ///< tried, in the order of the rows, if no way is asked for
    /// Sends the requests, in any process. Null: the library sends them, in a child process, because it touches ports,
    /// takes the alarm's signal or loads another's code.
    const IMB_DRIVER* driver;
    /// Prepares what the processes of a run share. @throws CToolError
    void (*Share)();
    /// Opens it for this process. @return why that fails, or nothing
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

/// To be called before the fork of a process that opens the way. @throws CToolError
void ShareWay();

enum class WAY_USER {
    THIS_PROCESS, ///< needs a way with a driver
    CHILD         ///< takes any
};

/// Names for --interface.
std::vector<std::string> WayNames();
/// A key that tells the BMC of this run from others.
std::string WayKey();

/// Opens the way asked for, or the first usual one that can be opened. @return false, and nothing is open, if a way
/// that is not for `user` comes before. @throws CToolError with all reasons
bool OpenWay(WAY_USER user);
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
