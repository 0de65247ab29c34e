// The debug trace log. Each line opens the file anew: a host can move or empty it at any time, and a crash loses
// nothing.
#include "frudata/debug.h"

#include "common/openfile.h"

#include <cstdarg>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <strings.h>

unsigned int LIBDBG_DEBUG_LEVEL = 1;

namespace {

using Frudata_Private::OpenFile;
using Frudata_Private::SCOPED_FILE;
using Frudata_Private::ToMultibyte;

constexpr char LOG_FILE[] = "DBGLOG.txt";
constexpr int BYTES_PER_ROW = 16;

/// The log, opened for one line or dump. Owns its buffer: a wide stream of glibc that cannot
/// allocate one writes past its end.
class CLogFile {
  public:
    CLogFile() : m_file(OpenFile(LOG_FILE, 'a', Frudata_Private::OPEN_TERMINAL)) {
        if (m_file)
            std::setvbuf(m_file.get(), m_buffer, _IOFBF, sizeof m_buffer);
    }
    FILE* Get() const { return m_file.get(); }

  private:
    char m_buffer[1024] = {};
    SCOPED_FILE m_file; ///< closed before its buffer goes
};

void WriteRow(FILE* file, const unsigned char* row) {
    for (int column = 0; column < BYTES_PER_ROW; ++column) {
        // Compatibility: 0xCC shows as blanks.
        if (row[column] == 0xCC)
            std::fwprintf(file, L"   ");
        else
            std::fwprintf(file, L" %02X", row[column]);
    }
    std::fwprintf(file, L"\t");
    for (int column = 0; column < BYTES_PER_ROW; ++column) {
        const bool printable = row[column] >= 0x20 && row[column] <= 0x7E;
        std::fwprintf(file, L"%c", printable ? row[column] : '.');
    }
    std::fwprintf(file, L"\r\n");
}

} // namespace

void Dbg(const wchar_t* format, unsigned int level, ...) {
    if (level > LIBDBG_DEBUG_LEVEL)
        return;
    const CLogFile log;
    FILE* const file = log.Get();
    if (!file)
        return;
    std::va_list arguments;
    va_start(arguments, level);
    std::vfwprintf(file, format, arguments);
    va_end(arguments);
    std::fwprintf(file, L"\r\n");
}

void DbgBuffer(const wchar_t* title, const unsigned char* data, int length) {
    if (LIBDBG_DEBUG_LEVEL < 2)
        return;
    const CLogFile log;
    FILE* const file = log.Get();
    if (!file)
        return;
    std::fwprintf(file, L"%ls\r\n", title);
    for (int offset = 0; offset < length; offset += BYTES_PER_ROW)
        WriteRow(file, data + offset);
    std::fwprintf(file, L"\r\n");
}

void SetLibDebugLevel(unsigned int level) {
    LIBDBG_DEBUG_LEVEL = level;
}

unsigned int DecodeDebugLevel(int argc, char** argv) {
    static const char* const options[] = {"-debug1", "-debug2", "-debug3"};
    LIBDBG_DEBUG_LEVEL = 0;
    for (int argument = 1; argument < argc; ++argument) {
        for (unsigned int level = 1; level <= 3; ++level) {
            if (strcasecmp(argv[argument], options[level - 1]) != 0)
                continue;
            LIBDBG_DEBUG_LEVEL = level;
            OpenFile(LOG_FILE, 'w', Frudata_Private::OPEN_TERMINAL);
            return level;
        }
    }
    return 0;
}

FILE* wfopen(const wchar_t* path, const wchar_t* mode) {
    if (!path || !mode)
        return nullptr;
    const std::unique_ptr<char[]> narrowPath = ToMultibyte(path);
    const std::unique_ptr<char[]> narrowMode = ToMultibyte(mode);
    return narrowPath && narrowMode ? std::fopen(narrowPath.get(), narrowMode.get()) : nullptr;
}

void PrintBuffer(const wchar_t* title, const unsigned char* data, int length) {
    // Compatibility: "%s" takes multibyte text and shows only the leading byte of a wide title.
    std::wprintf(L"%s", reinterpret_cast<const char*>(title));
    for (int offset = 0; offset < length; ++offset)
        std::wprintf(L" %02X", data[offset]);
    std::wprintf(L"\n");
}

void debug(int, wchar_t*) {}
