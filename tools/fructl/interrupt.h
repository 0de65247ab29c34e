// Ctrl-C, a service manager's SIGTERM and a lost terminal: work that must not be left half done holds them back.
#pragma once

#include <cstddef>
#include <exception>

namespace Fructl {

/// From here on SIGINT, SIGTERM and SIGHUP, where they are not ignored, end the process unless one is held back.
void CatchInterrupts();

/// While one lives, a signal is kept. The last one to go ends the process by it: what was built up before, such as
/// a file under construction, is cleared away then.
class CHold {
  public:
    CHold();
    ~CHold();
    CHold(const CHold&) = delete;
    CHold& operator=(const CHold&) = delete;
};

/// A hold during which work goes on to its end, because a device is being written.
class CFinish {
  public:
    CFinish();
    ~CFinish();
    CFinish(const CFinish&) = delete;
    CFinish& operator=(const CFinish&) = delete;

  private:
    CHold m_hold;
};

/// Thrown out of work that may be left when a signal came. Whoever catches it has nothing to say.
class CInterrupted : public std::exception {
  public:
    const char* what() const noexcept override { return "interrupted"; }
};

/// Between two steps of work: throws CInterrupted if a signal is held back; where the work must be finished, it says
/// so once instead, with how far it is.
void CheckInterrupt(std::size_t done, std::size_t total);

} // namespace Fructl
