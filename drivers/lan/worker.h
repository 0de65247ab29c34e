// A thread that waits for its owner, who can stop waiting for it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace Frudata_Driver {

/**
 * Runs one job after the other on one thread, and `whenIdle` after each idle time. The thread takes no signals: they
 * are the host's. Jobs own what they use, since they may outlive their caller, and do not throw.
 */
class CWorker {
  public:
    /// @throw std::system_error when no thread can be started
    CWorker(std::chrono::milliseconds idleTime, std::function<void()> whenIdle);
    CWorker(const CWorker&) = delete;
    CWorker& operator=(const CWorker&) = delete;
    /// Waits for a running job, but not for one given up, whose thread ends with it.
    ~CWorker();

    /**
     * Runs `job` and waits for it. @return false after `limit`: the job runs on but is given up, and every later call
     * fails at once
     */
    bool Run(std::function<void()> job, std::chrono::milliseconds limit);

  private:
    struct STATE;
    static void Loop(const std::shared_ptr<STATE>& state);

    std::shared_ptr<STATE> m_state;
    std::thread m_thread;
};

/// For jobs, whose exceptions nobody can catch: their prepared result tells that memory ran out.
template <typename FUNCTION> void WithoutThrowing(const FUNCTION& function) {
    try {
        function();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace Frudata_Driver
