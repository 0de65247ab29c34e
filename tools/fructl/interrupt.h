// Ctrl-C, a service manager's SIGTERM and a lost terminal; work that must not stop halfway holds them back.
#pragma once

#include <cstddef>
#include <exception>

namespace Fructl {

/// From here on SIGINT, SIGTERM and SIGHUP, unless ignored, end the process or wait for a CHold.
void CatchInterrupts();

/// Sets what runs before a signal ends the process; null: nothing. It may run in a signal handler, so it calls only
/// what one may call.
void SetLastAct(void (*act)());

/// While one lives, a signal waits. The end of the last one ends the process by that signal, after destructors have
/// removed such things as a file under construction.
class CHold {
  public:
    CHold();
    ~CHold();
    CHold(const CHold&) = delete;
    CHold& operator=(const CHold&) = delete;
};

/// A hold during which work goes on to its end: a device is being written.
class CFinish {
  public:
    CFinish();
    ~CFinish();
    CFinish(const CFinish&) = delete;
    CFinish& operator=(const CFinish&) = delete;

  private:
    CHold m_hold;
};

/// Thrown out of work that a signal may stop. It needs no message.
class CInterrupted : public std::exception {
  public:
    const char* what() const noexcept override { return "interrupted"; }
};

/// Between two steps of work: throws CInterrupted if a signal waits. During a CFinish it notes once instead how far the
/// work is.
void CheckInterrupt(std::size_t done, std::size_t total);

} // namespace Fructl
