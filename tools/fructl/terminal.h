// What people see: colour, columns, progress.
#pragma once

#include "tools/fructl/child.h"
#include "tools/fructl/toolerror.h"

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Fructl {

enum class COLOR {
    PLAIN,
    BOLD,
    DIM,
    RED,
    GREEN,
    YELLOW,
    BLUE,
    MAGENTA,
    CYAN
};

/// `text` in a colour where standard output shows colours.
std::string Colored(COLOR color, std::string_view text);
/// UTF-8 text from a device or a file, with control characters and stray bytes as \xNN: it must not steer
/// the terminal.
std::string Printable(std::string_view text);
/// Whether it is UTF-8; control characters may be in it.
bool IsUtf8(std::string_view text);
/// Columns that a UTF-8 text takes on the terminal.
std::size_t Width(std::string_view text);
/// `text` with blanks behind it up to `width` columns.
std::string Padded(std::string_view text, std::size_t width);

/// Prints a line of advice or warning to standard error, except with --quiet.
void Note(const std::string& text);
/// Where it goes, where that is not standard error.
std::FILE*& NoteStream();
/// Prints a failure to standard error, behind what was printed until then. @return its exit status
EXIT_STATUS Complain(const CToolError& error);
/// Rows with aligned columns, two blanks between them and in front.
std::string Table(const std::vector<std::vector<std::string>>& rows);
/// Shortens texts of the `columns`, the longest first, until a table of `rows` has lines of at most `width`.
void FitTable(std::vector<std::vector<std::string>>& rows, std::size_t width, const std::vector<std::size_t>& columns);
/// Columns of the terminal; nothing where standard output is none.
std::optional<std::size_t> TerminalWidth();

/// Shows the steps of a long work on standard error: a bar on a terminal, a line for each new step
/// otherwise, nothing with --quiet. One that has drawn a bar ends its line when it goes.
class CProgressBar {
  public:
    explicit CProgressBar(std::string title);
    ~CProgressBar();
    CProgressBar(const CProgressBar&) = delete;
    CProgressBar& operator=(const CProgressBar&) = delete;

    void Step(std::size_t done, std::size_t total, const std::string& text);
    PROGRESS Sink() {
        return [this](std::size_t done, std::size_t total, const std::string& text) { Step(done, total, text); };
    }

  private:
    std::string m_title;
    std::string m_lastText;
    std::size_t m_lastPercent = 0;
    bool m_terminal;
    bool m_drawn = false;
    double m_start;
};

} // namespace Fructl
