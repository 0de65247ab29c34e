/*
 * Writes every access to the KCS interface to the file KCS_TRACE, for any host and without changing it:
 *
 *   gcc -shared -fPIC kcs_trace.c -o kcs_trace.so $(pkg-config --cflags frudata)
 *   KCS_TRACE=trace.txt LD_PRELOAD=./kcs_trace.so fructl show --system
 *
 * One line for each change of the status register and each byte; status reads that see no change are counted.
 */
#define _GNU_SOURCE
#include <frudata/bmclib.h>

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int g_status = -1;
static unsigned int g_unchanged;
static unsigned int g_told = 1000;

static FILE* Log(void) {
    static FILE* log = NULL;
    const char* const path = getenv("KCS_TRACE");
    if (!log && path && (log = fopen(path, "a")))
        setvbuf(log, NULL, _IOLBF, BUFSIZ);
    return log ? log : stderr;
}

/* The definition behind this one: the library's own, or another that was loaded in its place. */
static void FindNext(const char* name, void* function) {
    void* const next = dlsym(RTLD_NEXT, name);
    if (!next) {
        fprintf(stderr, "kcs_trace: no %s behind this one\n", name);
        abort();
    }
    memcpy(function, &next, sizeof next);
}

static bool IsStatusPort(UINT16 port) {
    const int* const base = dlsym(RTLD_DEFAULT, "KCSAddress");
    return port == (base ? *base : 0xCA2) + 1;
}

static void ShowStatus(UINT8 status) {
    static const char* const states[] = {"IDLE", "READ", "WRITE", "ERROR"};
    if (status == g_status) {
        /* An interface that is stuck never changes: its host may give up without another access. */
        if (++g_unchanged == g_told) {
            fprintf(Log(), "   status  as before, %u times so far\n", g_unchanged);
            g_told *= 10;
        }
        return;
    }
    if (g_unchanged > 0)
        fprintf(Log(), "   status  as before, %u times\n", g_unchanged);
    g_unchanged = 0;
    g_told = 1000;
    g_status = status;
    fprintf(Log(), "   status  %02X  %s%s%s%s\n", status, states[status >> 6], status & 4 ? " SMS_ATN" : "",
            status & 2 ? " IBF" : "", status & 1 ? " OBF" : "");
}

static const char* CommandName(UINT8 command) {
    return command == 0x60   ? "GET_STATUS/ABORT"
           : command == 0x61 ? "WRITE_START"
           : command == 0x62 ? "WRITE_END"
                             : "unknown";
}

UINT8 inb(UINT16 port) {
    UINT8 (*next)(UINT16);
    UINT8 value;
    FindNext("inb", &next);
    value = next(port);
    if (IsStatusPort(port))
        ShowStatus(value);
    else
        fprintf(Log(), "<- data    %02X\n", value);
    return value;
}

void outb(UINT8 value, UINT16 port) {
    void (*next)(UINT8, UINT16);
    if (IsStatusPort(port))
        fprintf(Log(), "-> command %02X  %s\n", value, CommandName(value));
    else
        fprintf(Log(), "-> data    %02X%s\n", value, value == 0x68 && g_status >> 6 == 1 ? "  READ" : "");
    FindNext("outb", &next);
    next(value, port);
}
