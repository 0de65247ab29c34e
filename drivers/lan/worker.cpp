#include "drivers/lan/worker.h"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <utility>

namespace Frudata_Driver {

namespace {

/// A thread starts with its creator's signal mask: blocking signals there keeps all of them from the thread.
class CNoSignals {
  public:
    CNoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    CNoSignals(const CNoSignals&) = delete;
    CNoSignals& operator=(const CNoSignals&) = delete;
    ~CNoSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

  private:
    sigset_t m_before{};
};

} // namespace

/// Shared by the thread, as long as it runs, and its owner.
struct CWorker::STATE {
    std::chrono::milliseconds idleTime;
    std::function<void()> whenIdle;
    std::mutex mutex{};
    std::condition_variable changed{};
    std::function<void()> job{};
    bool busy = false;
    bool givenUp = false;
    bool stopping = false;

    bool WaitUntilFree(std::unique_lock<std::mutex>& lock, std::chrono::steady_clock::time_point end) {
        return changed.wait_until(lock, end, [this] { return !busy && !job; });
    }
};

CWorker::CWorker(std::chrono::milliseconds idleTime, std::function<void()> whenIdle)
    : m_state(new STATE{.idleTime = idleTime, .whenIdle = std::move(whenIdle)}) {
    const CNoSignals noSignals;
    m_thread = std::thread(&CWorker::Loop, m_state);
}

CWorker::~CWorker() {
    std::unique_lock lock(m_state->mutex);
    m_state->stopping = true;
    m_state->changed.notify_all();
    const bool givenUp = m_state->givenUp;
    lock.unlock();
    if (givenUp)
        m_thread.detach();
    else
        m_thread.join();
}

bool CWorker::Run(std::function<void()> job, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(m_state->mutex);
    if (m_state->givenUp || !m_state->WaitUntilFree(lock, end)) {
        m_state->givenUp = true;
        return false;
    }
    m_state->job = std::move(job);
    m_state->changed.notify_all();
    m_state->givenUp = !m_state->WaitUntilFree(lock, end);
    return !m_state->givenUp;
}

void CWorker::Loop(const std::shared_ptr<STATE>& state) {
    std::unique_lock lock(state->mutex);
    for (;;) {
        const bool woken =
            state->changed.wait_for(lock, state->idleTime, [&state] { return state->stopping || state->job; });
        if (state->stopping)
            return;
        const std::function<void()> job = woken ? std::exchange(state->job, nullptr) : state->whenIdle;
        state->busy = true;
        lock.unlock();
        job();
        lock.lock();
        state->busy = false;
        state->changed.notify_all();
    }
}

} // namespace Frudata_Driver
