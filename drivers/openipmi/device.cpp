#include "drivers/openipmi/device.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <grp.h>
#include <linux/ipmi.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace Frudata_OpenIpmi {

namespace {

// Paths of the first interface, by the kernel's driver or the device manager.
constexpr const char* PATHS[] = {"/dev/ipmi0", "/dev/ipmi/0", "/dev/ipmidev/0"};

// A controller on the IPMB gets a second try. The kernel checks its time-outs once a second: a quarter of the limit for
// each try ends in time.
constexpr int RETRIES = 1;
constexpr int PATIENCE_PER_TRY = 4;

std::int64_t Milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

bool IsAbsent(int error) {
    return error == ENOENT || error == ENOTDIR || error == ENODEV || error == ENXIO;
}

} // namespace

CDeadline::CDeadline(int milliseconds) : m_end(Milliseconds() + std::max(milliseconds, 0)) {}

int CDeadline::Remaining() const {
    return static_cast<int>(std::clamp<std::int64_t>(m_end - Milliseconds(), 0, INT_MAX));
}

bool CDevice::Open() {
    Close();
    for (const char* path : PATHS) {
        m_descriptor = open(path, O_RDWR | O_CLOEXEC);
        if (m_descriptor >= 0) {
            m_path = path;
            m_owner = getpid();
            return true;
        }
        if (!IsAbsent(errno)) {
            ExplainRefusal(path);
            return false;
        }
    }
    SetFailure("no IPMI device %s, %s or %s: are the kernel's modules ipmi_si and ipmi_devintf loaded", PATHS[0],
               PATHS[1], PATHS[2]);
    return false;
}

void CDevice::Close() {
    if (m_descriptor >= 0)
        close(m_descriptor);
    m_descriptor = -1;
    m_path = nullptr;
}

bool CDevice::IsOwn() const {
    return m_owner == getpid();
}

/// Says who may open the device. Called right after open failed.
void CDevice::ExplainRefusal(const char* path) {
    const int error = errno;
    struct stat status {};
    if (error != EACCES || stat(path, &status) != 0) {
        SetFailure("%s: %s", path, strerror(error));
        return;
    }
    constexpr mode_t groupMay = S_IRGRP | S_IWGRP;
    if ((status.st_mode & groupMay) != groupMay || status.st_gid == 0) {
        SetFailure("%s: %s; it needs root", path, strerror(error));
        return;
    }
    char texts[1024];
    group entry{};
    group* found = nullptr;
    if (getgrgid_r(status.st_gid, &entry, texts, sizeof texts, &found) == 0 && found)
        SetFailure("%s: %s; it needs root or the group %s", path, strerror(error), found->gr_name);
    else
        SetFailure("%s: %s; it needs root or the group %u", path, strerror(error), status.st_gid);
}

TRANSFER CDevice::Send(const DESTINATION& destination, const REQUEST& request, long& id) {
    ipmi_system_interface_addr bmc{};
    bmc.addr_type = IPMI_SYSTEM_INTERFACE_ADDR_TYPE;
    bmc.channel = IPMI_BMC_CHANNEL;
    bmc.lun = destination.lun;
    ipmi_ipmb_addr controller{};
    controller.addr_type = IPMI_IPMB_ADDR_TYPE;
    controller.channel = destination.channel;
    controller.slave_addr = destination.address;
    controller.lun = destination.lun;

    // Never 0, which belongs to no request.
    m_lastId = m_lastId == INT_MAX ? 1 : m_lastId + 1;
    id = m_lastId;
    ipmi_req_settime message{};
    message.req.addr =
        destination.isOnIpmb ? reinterpret_cast<unsigned char*>(&controller) : reinterpret_cast<unsigned char*>(&bmc);
    message.req.addr_len = destination.isOnIpmb ? sizeof controller : sizeof bmc;
    message.req.msgid = id;
    message.req.msg.netfn = request.netFn;
    message.req.msg.cmd = request.cmd;
    message.req.msg.data_len = static_cast<unsigned short>(request.data.size());
    // The kernel only reads them.
    message.req.msg.data = const_cast<unsigned char*>(request.data.data());
    message.retries = RETRIES;
    message.retry_time_ms = static_cast<unsigned int>(std::max(request.patience, 0) / PATIENCE_PER_TRY);
    int result = 0;
    do
        result = ioctl(m_descriptor, IPMICTL_SEND_COMMAND_SETTIME, &message);
    while (result < 0 && errno == EINTR);
    if (result >= 0)
        return TRANSFER::DONE;
    const int error = errno;
    Fail(error);
    return error == EINVAL || error == EMSGSIZE ? TRANSFER::REFUSED : TRANSFER::FAILED;
}

TRANSFER CDevice::Receive(ANSWER& answer, const CDeadline& deadline) {
    do {
        pollfd waiting{.fd = m_descriptor, .events = POLLIN, .revents = 0};
        const int ready = poll(&waiting, 1, deadline.Remaining());
        if (ready == 0)
            return TRANSFER::NOTHING;
        if (ready < 0 && errno != EINTR)
            return Fail(errno);
        if (ready > 0) {
            const TRANSFER taken = (waiting.revents & POLLIN) != 0 ? Take(answer) : Fail(ENODEV);
            if (taken != TRANSFER::NOTHING)
                return taken;
        }
    } while (deadline.Remaining() > 0);
    return TRANSFER::NOTHING;
}

TRANSFER CDevice::Take(ANSWER& answer) {
    ipmi_addr sender{};
    ipmi_recv message{};
    message.addr = reinterpret_cast<unsigned char*>(&sender);
    message.addr_len = sizeof sender;
    message.msg.data = answer.bytes;
    message.msg.data_len = sizeof answer.bytes;
    const int result = ioctl(m_descriptor, IPMICTL_RECEIVE_MSG_TRUNC, &message);
    if (result < 0 && (errno == EAGAIN || errno == EINTR))
        return TRANSFER::NOTHING;
    // The kernel cuts a message that does not fit and reports that, but hands it over.
    answer.isCut = result < 0 && errno == EMSGSIZE;
    if (result < 0 && !answer.isCut)
        return Fail(errno);
    answer.id = message.recv_type == IPMI_RESPONSE_RECV_TYPE ? message.msgid : 0;
    answer.length = std::min<UINT16>(message.msg.data_len, sizeof answer.bytes);
    return TRANSFER::DONE;
}

TRANSFER CDevice::Fail(int error) {
    SetFailure("%s: %s", m_path, strerror(error));
    return TRANSFER::FAILED;
}

void CDevice::SetFailure(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(m_failure, sizeof m_failure, format, arguments);
    va_end(arguments);
}

} // namespace Frudata_OpenIpmi
