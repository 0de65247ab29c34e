#include "tools/fructl/editor.h"

#include "tools/fructl/files.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Fructl {

namespace {

constexpr useconds_t POLL = 20'000;

/// For the shell, since an editor may have arguments of its own.
std::string EditorCommand() {
    for (const char* variable : {"VISUAL", "EDITOR"})
        if (const char* command = std::getenv(variable); command && *command)
            return command;
    if (isatty(STDERR_FILENO) == 0)
        throw CToolError(EXIT_USAGE, "edit", "there is no terminal for an editor",
                         "VISUAL or EDITOR names another one, 'fructl set' changes fields without any");
    return "if command -v vi >/dev/null; then set -- vi \"$1\"; else set -- nano \"$1\"; fi; \"$@\" #";
}

/// Gives the editor the terminal in place of a file or a pipe.
void UseTerminal(int descriptor) {
    if (isatty(descriptor) != 0)
        return;
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal >= 0)
        dup2(terminal, descriptor);
}

/// The running editor, which does not outlive this.
class CEditorProcess {
  public:
    CEditorProcess(const std::string& command, const std::string& path) {
        // Ctrl-C is the editor's: it goes to all processes of the terminal.
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGINT, &ignore, &m_interrupt);
        sigaction(SIGQUIT, &ignore, &m_quit);
        std::fflush(stdout);
        m_process = fork(); // NOLINT(cppcoreguidelines-prefer-member-initializer): after what stands above
        if (m_process == 0)
            Become(command + " \"$1\"", path);
    }
    ~CEditorProcess() {
        if (m_process > 0) {
            kill(m_process, SIGTERM);
            waitpid(m_process, nullptr, 0);
        }
        sigaction(SIGINT, &m_interrupt, nullptr);
        sigaction(SIGQUIT, &m_quit, nullptr);
    }
    CEditorProcess(const CEditorProcess&) = delete;
    CEditorProcess& operator=(const CEditorProcess&) = delete;

    /// Its status from waitpid. @throws CInterrupted if a signal ends this process before
    int Wait() {
        int status = -1;
        while (m_process > 0 && waitpid(m_process, &status, WNOHANG) == 0) {
            CheckInterrupt(0, 0);
            usleep(POLL);
        }
        m_process = -1;
        return status;
    }

  private:
    [[noreturn]] static void Become(const std::string& command, const std::string& path) {
        for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP})
            std::signal(signal, SIG_DFL);
        UseTerminal(STDIN_FILENO);
        UseTerminal(STDOUT_FILENO);
        execl("/bin/sh", "sh", "-c", command.c_str(), "sh", path.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }

    pid_t m_process = -1;
    struct sigaction m_interrupt {};
    struct sigaction m_quit {};
};

void WritePrivate(const std::string& path, const std::string& text) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool written = file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    const int error = errno;
    if (file >= 0)
        close(file);
    if (!written)
        throw CToolError(EXIT_REFUSED, "edit", fmt::format("the text cannot be kept: {}", std::strerror(error)));
}

} // namespace

CEditor::CEditor() {
    std::error_code failed;
    std::string pattern = (std::filesystem::temp_directory_path(failed) / ".fructl-XXXXXX").string();
    if (failed || !mkdtemp(pattern.data()))
        throw CToolError(EXIT_REFUSED, "edit", fmt::format("no directory for the text: {}", std::strerror(errno)),
                         "TMPDIR names one");
    m_directory = pattern;
}

CEditor::~CEditor() {
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

std::string CEditor::Edit(const std::string& text) const {
    const std::string command = EditorCommand();
    const std::string path = (m_directory / "fru.txt").string();
    WritePrivate(path, text);
    const int status = CEditorProcess(command, path).Wait();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw CToolError(EXIT_REFUSED, "editor",
                         WIFEXITED(status) && WEXITSTATUS(status) == 127
                             ? "it cannot be started; nothing was written"
                             : "it ended with a failure; nothing was written",
                         "VISUAL, EDITOR, vi, nano: the first that there is");
    if (!std::filesystem::exists(path))
        throw CToolError(EXIT_REFUSED, "edit", "the editor has removed the text: nothing was written");
    const BYTES bytes = ReadFile(path);
    return {bytes.begin(), bytes.end()};
}

} // namespace Fructl
