/** frudata: the debug trace log. Usable from C and C++. @file */
#ifndef FRUDATA_DEBUG_H
#define FRUDATA_DEBUG_H

#include <stdio.h>
#include <wchar.h>

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

/**
 * Debug level, process-wide: 0 nothing, 1 errors (the default), 2 also buffer dumps, 3 and above also
 * the entry and exit of every operation. Lines go to "DBGLOG.txt" in the current directory if it is a
 * regular file or a link to a terminal, and are lost otherwise.
 */
extern unsigned int LIBDBG_DEBUG_LEVEL;

/**
 * Appends one line, ended by CR LF, to the log. `level` stands between the format and its arguments.
 * Does nothing when `level` is above LIBDBG_DEBUG_LEVEL or the log cannot be opened.
 */
void Dbg(const wchar_t* format, unsigned int level, ...);

/**
 * Appends a hexadecimal dump at level 2 and above: rows of 16 bytes with their printable characters.
 * Every row is 16 bytes wide, so `data` must be readable up to the next multiple of 16 bytes. The byte
 * 0xCC shows as blanks.
 */
void DbgBuffer(const wchar_t* title, const unsigned char* data, int length);

/** Stores `level` in LIBDBG_DEBUG_LEVEL; every value is taken. */
void SetLibDebugLevel(unsigned int level);

/**
 * Sets the level from the first of "-debug1", "-debug2", "-debug3" (case ignored) on a command line and
 * empties the log; with none of them, sets level 0 and leaves the log alone. @return the level
 */
unsigned int DecodeDebugLevel(int argc, char** argv);

/**
 * Opens a file named by wide texts, converted to the current locale's multibyte form.
 * A name keeps as many bytes as it has characters: one that grows by the conversion, such as one with characters
 * beyond ASCII in UTF-8, is cut and names another file. So is the path of a string table; names of FRU text
 * files are not.
 * @return the stream (the caller closes it); null for a null argument, a text that cannot be converted,
 *         or a failed open
 */
FILE* wfopen(const wchar_t* path, const wchar_t* mode);

/** Prints `title` (as a narrow-format %s) and `length` bytes in hexadecimal to standard output. */
void PrintBuffer(const wchar_t* title, const unsigned char* data, int length);

/** No effect; kept for hosts that link it. */
void debug(int level, wchar_t* text);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif
