// A thread that waits in the place of its owner, who can thus stop waiting.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace Frudata_Driver {

/**
 * One job after the other on one thread, and another each time that nothing was asked for a while. The thread takes no
 * signals: they are the host's. Jobs own what they use, for they may outlive who waits for them; they do not throw.
 */
class CWorker {
  public:
    /// @throw std::system_error where there is no thread to be had
    CWorker(std::chrono::milliseconds idleTime, std::function<void()> whenIdle);
    CWorker(const CWorker&) = delete;
    CWorker& operator=(const CWorker&) = delete;
    /// Waits for the job that is under way, but not for one that was given up: its thread ends with it.
    ~CWorker();

    /**
     * Does `job` and waits for it. @return false where that took longer than `limit`: the job is given up, though it
     * goes on, and every later call fails at once
     */
    bool Run(std::function<void()> job, std::chrono::milliseconds limit);

  private:
    struct STATE;
    static void Loop(const std::shared_ptr<STATE>& state);

    std::shared_ptr<STATE> m_state;
    std::thread m_thread;
};

/// For jobs: nobody would catch what they throw, so the result that they prepare says that there is no memory.
template <typename FUNCTION> void WithoutThrowing(const FUNCTION& function) {
    try {
        function();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace Frudata_Driver
