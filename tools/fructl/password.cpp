#include "tools/fructl/password.h"

#include "tools/fructl/files.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace Fructl {

namespace {

constexpr const char* VARIABLE = "IPMI_PASSWORD";

/// While one lives, the terminal does not show typed text.
class CNoEcho {
  public:
    explicit CNoEcho(int terminal) : m_terminal(terminal) {
        tcgetattr(m_terminal, &m_before);
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(m_terminal, TCSAFLUSH, &silent);
    }
    CNoEcho(const CNoEcho&) = delete;
    CNoEcho& operator=(const CNoEcho&) = delete;
    ~CNoEcho() { tcsetattr(m_terminal, TCSAFLUSH, &m_before); }

  private:
    CHold m_hold;
    int m_terminal;
    termios m_before{};
};

std::size_t LineLength(const char* text, std::size_t size) {
    return static_cast<std::size_t>(std::find_if(text, text + size, [](char c) { return c == '\n' || c == '\r'; }) -
                                    text);
}

void FromFile(const std::string& path) {
    struct stat status {};
    if (path != STANDARD_STREAM && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        (status.st_mode & (S_IRGRP | S_IROTH)) != 0)
        throw CToolError(EXIT_REFUSED, path, "others may read this password file", "chmod 600 keeps it to you");
    BYTES bytes = ReadFile(path, 4096);
    char* text = reinterpret_cast<char*>(bytes.data());
    Password().Take(text, LineLength(text, bytes.size()));
    explicit_bzero(bytes.data(), bytes.size());
}

void FromTerminal(const std::string& prompt) {
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (terminal < 0)
        throw CToolError(EXIT_USAGE, "password", "there is no terminal to ask for it",
                         "set IPMI_PASSWORD, or name a file with --password-file");
    char line[128] = "";
    ssize_t length = 0;
    {
        const CNoEcho silent(terminal);
        const std::string question = prompt + ": ";
        if (write(terminal, question.data(), question.size()) >= 0)
            length = read(terminal, line, sizeof line);
        [[maybe_unused]] const ssize_t ignored = write(terminal, "\n", 1);
    }
    close(terminal);
    Password().Take(line, LineLength(line, length > 0 ? static_cast<std::size_t>(length) : 0));
    explicit_bzero(line, sizeof line);
}

} // namespace

CPassword::~CPassword() {
    explicit_bzero(m_text.data(), m_text.size());
}

void CPassword::Take(char* text, std::size_t length) {
    const bool fits = length <= SIZE;
    if (fits)
        std::memcpy(m_text.data(), text, length);
    explicit_bzero(text, length);
    if (!fits)
        throw CToolError(EXIT_REFUSED, "password", fmt::format("it is longer than the {} bytes that IPMI has", SIZE));
}

CPassword& Password() {
    static CPassword password;
    return password;
}

void AskPassword(const std::string& file, const std::string& prompt) {
    prctl(PR_SET_DUMPABLE, 0);
    if (!file.empty())
        return FromFile(file);
    if (char* given = std::getenv(VARIABLE)) {
        Password().Take(given, std::strlen(given));
        unsetenv(VARIABLE);
        return;
    }
    FromTerminal(prompt);
}

} // namespace Fructl
