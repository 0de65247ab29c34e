#include "tools/fructl/terminal.h"

#include "tools/fructl/bytes.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace Fructl {

namespace {

constexpr std::array<std::string_view, 9> CODES = {"", "1", "2", "31", "32", "33", "34", "35", "36"};
constexpr std::size_t BAR_WIDTH = 32;

double Seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Bytes of the UTF-8 sequence at the start of `text`; 0 for none or a control character.
std::size_t PrintableLength(std::string_view text) {
    const auto first = static_cast<UINT8>(text[0]);
    if (first < 0x80)
        return first >= 0x20 && first != 0x7F ? 1 : 0;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || length > text.size())
        return 0;
    for (const char next : text.substr(1, length - 1))
        if ((static_cast<UINT8>(next) & 0xC0) != 0x80)
            return 0;
    // U+0080 to U+009F are control characters, too.
    return first == 0xC2 && static_cast<UINT8>(text[1]) < 0xA0 ? 0 : length;
}

/// Bytes of the control character at the start of `text`; 0 for none.
std::size_t ControlLength(std::string_view text) {
    const auto first = static_cast<UINT8>(text[0]);
    if (first < 0x80)
        return first < 0x20 || first == 0x7F ? 1 : 0;
    return first == 0xC2 && text.size() > 1 && (static_cast<UINT8>(text[1]) & 0xE0) == 0x80 ? 2 : 0;
}

} // namespace

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = std::max(PrintableLength(text), ControlLength(text));
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string Printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = PrintableLength(text);
        result += length == 0 ? fmt::format("\\x{:02X}", static_cast<UINT8>(text[0])) : std::string(text, 0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string Colored(COLOR color, std::string_view text) {
    if (!Settings().color || color == COLOR::PLAIN)
        return std::string(text);
    return fmt::format("\033[{}m{}\033[0m", CODES[static_cast<std::size_t>(color)], text);
}

std::size_t Width(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] == '\033') // a colour takes no column
            position = std::min(text.find('m', position), text.size() - 1);
        else if ((static_cast<UINT8>(text[position]) & 0xC0) != 0x80)
            ++width;
    }
    return width;
}

std::string Padded(std::string_view text, std::size_t width) {
    const std::size_t own = Width(text);
    return std::string(text) + std::string(width > own ? width - own : 0, ' ');
}

std::FILE*& NoteStream() {
    static std::FILE* stream = stderr;
    return stream;
}

void Note(const std::string& text) {
    if (Settings().quiet)
        return;
    fmt::print(NoteStream(), "fructl: {}{}", text, text.ends_with('\n') ? "" : "\n");
    std::fflush(NoteStream());
}

EXIT_STATUS Complain(const CToolError& error) {
    std::fflush(stdout);
    fmt::print(stderr, "fructl: {}: {}\n", error.m_what, error.m_why);
    if (!error.m_hint.empty())
        fmt::print(stderr, "  {}\n", error.m_hint);
    return error.m_status;
}

namespace {

std::vector<std::size_t> Widths(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], Width(row[column]));
    }
    return widths;
}

/// `text` without colours, cut to `width` columns; a sign in the last one shows the cut.
std::string Shortened(const std::string& text, std::size_t width) {
    if (Width(text) <= width)
        return text;
    std::string cut;
    for (std::size_t at = 0; at < text.size() && Width(cut) < width; ++at)
        cut += text[at];
    // The sign replaces the last character, which may be incomplete.
    while (!cut.empty() && (static_cast<UINT8>(cut.back()) & 0xC0) == 0x80)
        cut.pop_back();
    cut.pop_back();
    return cut + "\u2026";
}

} // namespace

void FitTable(std::vector<std::vector<std::string>>& rows, std::size_t width, const std::vector<std::size_t>& columns) {
    constexpr std::size_t LEAST = 8;
    std::vector<std::size_t> widths = Widths(rows);
    std::size_t sum = 2 * widths.size();
    for (const std::size_t one : widths)
        sum += one;
    const auto longest = [&] {
        return *std::max_element(columns.begin(), columns.end(),
                                 [&](std::size_t a, std::size_t b) { return widths[a] < widths[b]; });
    };
    for (; sum > width && widths[longest()] > LEAST; --sum)
        --widths[longest()];
    for (auto& row : rows)
        for (const std::size_t column : columns)
            if (column < row.size())
                row[column] = Shortened(row[column], widths[column]);
}

std::optional<std::size_t> TerminalWidth() {
    winsize size{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isKnown ? std::optional<std::size_t>(size.ws_col) : std::nullopt;
}

std::string Table(const std::vector<std::vector<std::string>>& rows) {
    const std::vector<std::size_t> widths = Widths(rows);
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line += "  " + Padded(row[column], widths[column]);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

CProgressBar::CProgressBar(std::string title)
    : m_title(std::move(title)), m_terminal(isatty(STDERR_FILENO) != 0), m_start(Seconds()) {}

CProgressBar::~CProgressBar() {
    if (m_drawn && m_terminal)
        std::fputc('\n', stderr);
}

void CProgressBar::Step(std::size_t done, std::size_t total, const std::string& text) {
    CheckInterrupt(done, total);
    if (Settings().quiet || total == 0)
        return;
    if (!m_terminal) {
        if (!m_drawn && text.empty())
            fmt::print(stderr, "{}: {}\n", m_title, Counted(total, "byte"));
        else if (text != m_lastText)
            fmt::print(stderr, "{}: {} of {}, {}\n", m_title, done, Counted(total, "byte"), text);
        m_drawn = true;
        m_lastText = text;
        return;
    }
    const std::size_t percent = 100 * done / total;
    if (m_drawn && percent == m_lastPercent)
        return;
    m_lastPercent = percent;
    const std::size_t filled = BAR_WIDTH * done / total;
    const double spent = Seconds() - m_start;
    const double left = done == 0 ? 0 : spent * static_cast<double>(total - done) / static_cast<double>(done);
    fmt::print(stderr, "\r{} [{:#<{}}{:.<{}}] {:3}% of {}, {} s left  \033[K", m_title, "", filled, "",
               BAR_WIDTH - filled, percent, Counted(total, "byte"), std::lround(left));
    std::fflush(stderr);
    m_drawn = true;
}

} // namespace Fructl
