// The library's own inb and outb. A port instruction without access ends the process: without it they execute none.
#include "bmclib/platform.h"
#include "frudata/bmclib.h"

using namespace Frudata_Private;

UINT8 inb(UINT16 port) {
    g_portReadRefused = !HavePortAccess();
    if (g_portReadRefused)
        return 0xFF; // what an unoccupied port reads
    UINT8 value;
    asm volatile("inb %w1, %b0" : "=a"(value) : "Nd"(port) : "memory");
    return value;
}

void outb(UINT8 value, UINT16 port) {
    if (HavePortAccess())
        asm volatile("outb %b0, %w1" : : "a"(value), "Nd"(port) : "memory");
}
