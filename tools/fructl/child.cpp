#include "tools/fructl/child.h"

#include "tools/fructl/bytes.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Fructl {

namespace {

using nlohmann::json;

/// A bridged request may take a BMC minutes; a child that is silent longer hangs.
constexpr timespec SILENCE_LIMIT = {300, 0};

enum FRAME_KIND : UINT8 {
    FRAME_RESULT,
    FRAME_ERROR,
    FRAME_PROGRESS
};

bool WriteAll(int file, const void* data, std::size_t length) {
    const auto* bytes = static_cast<const UINT8*>(data);
    while (length > 0) {
        const ssize_t written = write(file, bytes, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

void SendFrame(int file, FRAME_KIND kind, const json& content) {
    const BYTES bytes = json::to_cbor(content);
    const auto length = static_cast<UINT32>(bytes.size());
    if (!WriteAll(file, &kind, sizeof kind) || !WriteAll(file, &length, sizeof length) ||
        !WriteAll(file, bytes.data(), bytes.size()))
        _exit(EXIT_DEVICE); // the parent is gone
}

[[noreturn]] void RunChild(int pipe, int output, const std::function<json(const PROGRESS&)>& work) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Notes are for the user, and at once: one may say what is waited for.
    if (std::FILE* const notes = fdopen(dup(STDERR_FILENO), "w"))
        NoteStream() = notes;
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    try {
        const json result = work([pipe](std::size_t done, std::size_t total, const std::string& text) {
            SendFrame(pipe, FRAME_PROGRESS, {done, total, text});
        });
        std::fflush(nullptr);
        SendFrame(pipe, FRAME_RESULT, result);
    } catch (const CToolError& error) {
        SendFrame(pipe, FRAME_ERROR, {static_cast<int>(error.m_status), error.m_what, error.m_why, error.m_hint});
    } catch (const std::exception& error) {
        SendFrame(pipe, FRAME_ERROR, {static_cast<int>(EXIT_DEVICE), "session", error.what(), ""});
    }
    std::fflush(nullptr);
    _exit(0);
}

/// Children whose work is done. They end by themselves, which takes those that close the kernel's IPMI device some
/// 10 milliseconds; a process that ends waits for them, as nobody else may.
class CDoneChildren {
  public:
    CDoneChildren() = default;
    CDoneChildren(const CDoneChildren&) = delete;
    CDoneChildren& operator=(const CDoneChildren&) = delete;
    ~CDoneChildren() {
        for (const pid_t process : m_processes)
            waitpid(process, nullptr, 0);
    }
    void Add(pid_t process) {
        std::erase_if(m_processes, [](pid_t one) { return waitpid(one, nullptr, WNOHANG) != 0; });
        m_processes.push_back(process);
    }

  private:
    std::vector<pid_t> m_processes;
};

/// The parent's end of one child. The destructor leaves no child behind.
class CChild {
  public:
    CChild(pid_t process, int pipe, int output) : m_process(process), m_pipe(pipe), m_output(output) {}
    CChild(const CChild&) = delete;
    CChild& operator=(const CChild&) = delete;
    ~CChild() {
        if (m_process > 0) {
            kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
        }
        close(m_pipe);
        close(m_output);
    }

    /// Signals that may arrive while the parent waits, and at no other time.
    void Allow(const sigset_t& signals) { m_signals = signals; }

    /// Reads frames until the last one. @return whether a result came
    bool Receive(json& result, const PROGRESS& progress) {
        FRAME_KIND kind = FRAME_PROGRESS;
        json content;
        while (ReadFrame(kind, content)) {
            if (kind == FRAME_RESULT) {
                result = std::move(content);
                return true;
            }
            if (kind == FRAME_ERROR)
                throw CToolError(content[0].get<EXIT_STATUS>(), content[1], content[2], content[3]);
            m_done = content[0];
            m_total = content[1];
            if (progress)
                progress(m_done, m_total, content[2]);
        }
        return false;
    }

    /// Its work is done.
    void Leave() {
        static CDoneChildren done;
        done.Add(std::exchange(m_process, 0));
    }

    void Wait() {
        int status = 0;
        while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        m_process = 0;
    }

    std::string Output() const {
        std::string text(static_cast<std::size_t>(std::max<off_t>(lseek(m_output, 0, SEEK_END), 0)), '\0');
        const ssize_t length = pread(m_output, text.data(), text.size(), 0);
        text.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
        return text;
    }

  private:
    bool ReadAll(void* data, std::size_t length) {
        auto* bytes = static_cast<UINT8*>(data);
        while (length > 0) {
            pollfd waited{m_pipe, POLLIN, 0};
            const int ready = ppoll(&waited, 1, &SILENCE_LIMIT, &m_signals);
            if (ready == 0)
                throw CToolError(EXIT_DEVICE, "session", "no answer for five minutes: given up");
            CheckInterrupt(m_done, m_total);
            if (ready < 0 && errno == EINTR)
                continue;
            const ssize_t count = ready < 0 ? -1 : read(m_pipe, bytes, length);
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return false;
            bytes += count;
            length -= static_cast<std::size_t>(count);
        }
        return true;
    }

    bool ReadFrame(FRAME_KIND& kind, json& content) {
        UINT32 length = 0;
        if (!ReadAll(&kind, sizeof kind) || !ReadAll(&length, sizeof length))
            return false;
        BYTES bytes(length);
        if (!ReadAll(bytes.data(), bytes.size()))
            return false;
        content = json::from_cbor(bytes);
        return true;
    }

    pid_t m_process;
    int m_pipe;
    int m_output;
    sigset_t m_signals{};
    std::size_t m_done = 0;
    std::size_t m_total = 0;
};

/// While one lives, signals wait: the child never takes one, since its parent decides for both.
class CSignalBlock {
  public:
    CSignalBlock() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&signals, signal);
        sigprocmask(SIG_BLOCK, &signals, &m_before);
    }
    ~CSignalBlock() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }
    CSignalBlock(const CSignalBlock&) = delete;
    CSignalBlock& operator=(const CSignalBlock&) = delete;
    const sigset_t& Before() const { return m_before; }

  private:
    sigset_t m_before{};
};

} // namespace

json RunInChild(const std::function<json(const PROGRESS&)>& work, const PROGRESS& progress) {
    int ends[2];
    const int output = memfd_create("fructl-output", MFD_CLOEXEC);
    if (output < 0 || pipe(ends) != 0)
        throw CToolError(EXIT_DEVICE, "session", std::strerror(errno));
    std::fflush(nullptr);
    const CHold hold;
    const CSignalBlock block;
    const pid_t process = fork();
    if (process < 0)
        throw CToolError(EXIT_DEVICE, "session", std::strerror(errno));
    if (process == 0) {
        close(ends[0]);
        RunChild(ends[1], output, work);
    }
    close(ends[1]);
    CChild child(process, ends[0], output);
    child.Allow(block.Before());
    json result;
    const bool done = child.Receive(result, progress);
    if (done)
        child.Leave();
    else
        child.Wait();
    const std::string text = child.Output();
    if (!done)
        throw CChildDied(text);
    WriteAll(STDERR_FILENO, text.data(), text.size());
    return result;
}

} // namespace Fructl
