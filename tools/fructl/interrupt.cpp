#include "tools/fructl/interrupt.h"

#include "tools/fructl/bytes.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>

namespace Fructl {

namespace {

constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t g_received = 0;
volatile std::sig_atomic_t g_holds = 0;
void (*volatile g_lastAct)() = nullptr;
int g_finishing = 0;
bool g_told = false;

void EndBy(int signal) {
    if (void (*const act)() = g_lastAct)
        act();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void Receive(int signal) {
    if (g_holds == 0)
        EndBy(signal);
    else
        g_received = signal;
}

} // namespace

void CatchInterrupts() {
    struct sigaction action {};
    action.sa_handler = Receive;
    action.sa_flags = SA_RESTART;
    for (const int signal : SIGNALS) {
        struct sigaction before {};
        // A process under nohup keeps ignoring it.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

void SetLastAct(void (*act)()) {
    g_lastAct = act;
}

CHold::CHold() {
    g_holds = g_holds + 1;
}

CHold::~CHold() {
    g_holds = g_holds - 1;
    if (g_holds != 0 || g_received == 0)
        return;
    // Tell that the work was finished.
    std::fflush(stdout);
    EndBy(g_received);
}

CFinish::CFinish() {
    ++g_finishing;
}

CFinish::~CFinish() {
    --g_finishing;
}

void CheckInterrupt(std::size_t done, std::size_t total) {
    if (g_received == 0)
        return;
    if (g_finishing == 0)
        throw CInterrupted();
    if (g_told || done >= total)
        return;
    fmt::print(stderr, "\nfructl: finishing the write, {} of {}\n", done, Counted(total, "byte"));
    g_told = true;
}

} // namespace Fructl
