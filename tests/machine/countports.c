/* Preloaded in the emulated machine: port access that counts requests and accesses over all of a program's
 * processes, in the file that PORT_COUNTS names. */
#define _DEFAULT_SOURCE
#include <fcntl.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

enum {
    REQUESTS,
    ACCESSES,
    COUNTS
};

static uint32_t* Counts(void) {
    static uint32_t* counts;
    if (!counts) {
        const int file = open(getenv("PORT_COUNTS"), O_RDWR | O_CREAT, 0600);
        if (ftruncate(file, COUNTS * sizeof *counts) != 0)
            abort();
        counts = mmap(NULL, COUNTS * sizeof *counts, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (counts == MAP_FAILED)
            abort();
    }
    return counts;
}

/* The library has asked for port access before. */
uint8_t inb(uint16_t port) {
    uint8_t value;
    ++Counts()[ACCESSES];
    __asm__ volatile("inb %w1, %b0" : "=a"(value) : "Nd"(port) : "memory");
    return value;
}

void outb(uint8_t value, uint16_t port) {
    ++Counts()[ACCESSES];
    /* Every request starts with this control code on the command port. */
    Counts()[REQUESTS] += (port & 1) != 0 && value == 0x61;
    __asm__ volatile("outb %b0, %w1" : : "a"(value), "Nd"(port) : "memory");
}
