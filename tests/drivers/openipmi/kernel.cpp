#include "kernel.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>

#include <fcntl.h>
#include <linux/ipmi.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

KERNEL g_kernel;

namespace {

int Refuse(int error) {
    errno = error;
    return -1;
}

int Send(const ipmi_req_settime& request) {
    if (g_kernel.sendError != 0)
        return Refuse(g_kernel.sendError);
    ipmi_addr head{};
    std::memcpy(&head, request.req.addr, request.req.addr_len);
    SENT sent = {head.addr_type,
                 head.channel,
                 0,
                 head.data[0],
                 request.req.msg.netfn,
                 request.req.msg.cmd,
                 {request.req.msg.data, request.req.msg.data + request.req.msg.data_len}};
    if (head.addr_type == IPMI_IPMB_ADDR_TYPE) {
        sent.slave = static_cast<UINT8>(head.data[0]);
        sent.lun = head.data[1];
    }
    g_kernel.sent.push_back(sent);
    g_kernel.ids.push_back(request.req.msgid);
    g_kernel.patience = request.retry_time_ms * static_cast<unsigned int>(request.retries + 1);
    return 0;
}

void EndStep() {
    if (!g_kernel.script.front().isEndless)
        g_kernel.script.pop_front();
}

int Take(ipmi_recv& message) {
    const STEP step = g_kernel.script.front();
    EndStep();
    g_kernel.milliseconds += step.isEndless ? 500 : 0;
    if (step.what == TAKE_INTERRUPTED || step.what == TAKEN_BY_OTHERS)
        return Refuse(step.what == TAKE_INTERRUPTED ? EINTR : EAGAIN);
    if (step.what == DEVICE_GONE)
        return Refuse(ENODEV);
    message.recv_type = step.what == ARRIVES_AS_EVENT ? IPMI_ASYNC_EVENT_RECV_TYPE : IPMI_RESPONSE_RECV_TYPE;
    message.msgid = *(g_kernel.ids.rbegin() + (step.what == ARRIVES_FOR_PREVIOUS ? 1 : 0));
    const std::size_t length = std::min<std::size_t>(message.msg.data_len, step.bytes.size());
    std::copy_n(step.bytes.begin(), length, message.msg.data);
    message.msg.data_len = static_cast<unsigned short>(length);
    return length < step.bytes.size() ? Refuse(EMSGSIZE) : 0;
}

} // namespace

extern "C" {

int open64(const char* path, int flags, ...) {
    if (std::strncmp(path, "/dev/ipmi", 9) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = va_arg(arguments, mode_t);
        va_end(arguments);
        return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    }
    const auto error = g_kernel.errors.find(path);
    if (error == g_kernel.errors.end() || error->second != 0)
        return Refuse(error == g_kernel.errors.end() ? ENOENT : error->second);
    g_kernel.flags = flags;
    ++g_kernel.opened;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, "/dev/null", flags));
}

int stat64(const char*, struct stat64* status) noexcept {
    *status = {};
    status->st_mode = S_IFCHR | g_kernel.mode;
    status->st_gid = g_kernel.owner;
    return 0;
}

pid_t getpid() noexcept {
    return g_kernel.process;
}

int ioctl(int, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (request == IPMICTL_SEND_COMMAND_SETTIME)
        return Send(*static_cast<ipmi_req_settime*>(argument));
    return request == IPMICTL_RECEIVE_MSG_TRUNC ? Take(*static_cast<ipmi_recv*>(argument)) : Refuse(ENOTTY);
}

int poll(pollfd* descriptors, nfds_t, int timeout) {
    const int pause = g_kernel.script.empty() ? timeout : 500;
    const ARRIVAL what = g_kernel.script.empty() ? PAUSE : g_kernel.script.front().what;
    if (what == PAUSE || what == POLL_INTERRUPTED || what == DEVICE_CLOSED) {
        g_kernel.milliseconds += std::min(pause, timeout);
        if (!g_kernel.script.empty() && (what != PAUSE || timeout >= pause))
            EndStep();
        if (what == POLL_INTERRUPTED)
            return Refuse(EINTR);
        if (what == PAUSE && (timeout <= pause || g_kernel.script.empty()))
            return 0;
        if (what == PAUSE)
            return poll(descriptors, 1, timeout - pause);
    }
    descriptors->revents = what == DEVICE_CLOSED ? POLLERR | POLLHUP : POLLIN;
    return 1;
}

int clock_gettime(clockid_t, timespec* now) noexcept {
    now->tv_sec = static_cast<time_t>(g_kernel.milliseconds / 1000);
    now->tv_nsec = static_cast<long>(g_kernel.milliseconds % 1000 * 1000000);
    return 0;
}
}
