// The kernel's IPMI device as a way to the BMC: input is a sequence of requests, each with what the device does
// meanwhile. It stands in for the kernel as in the driver's tests.
#include "frudata/openipmi.h"
#include "fuzz/input.h"
#include "tests/drivers/openipmi/kernel.h"

#include <cerrno>

namespace {

using namespace Frudata_Fuzz;

constexpr UINT8 APPLICATION = 6, GET_MESSAGE = 0x33, SEND_MESSAGE = 0x34, NO_MESSAGE = 0x80;
constexpr int ERRORS[] = {0, 0, 0, ENOENT, EACCES, EINVAL, EMSGSIZE, EAGAIN};

/// The two low bits of a completion code say to which request an answer belongs.
STEP NextStep(CInput& input) {
    const UINT8 control = input.Byte();
    STEP step{.what = static_cast<ARRIVAL>((control & 0x0F) % (DEVICE_GONE + 1)), .isEndless = control >= 0xF0};
    step.bytes = input.Take(input.Byte());
    // Up to the most that the driver takes, and more.
    step.bytes.resize(step.bytes.size() + (control & 0x40 ? 900 : 0), 0);
    if (!step.bytes.empty())
        step.bytes[0] = static_cast<UINT8>((step.bytes[0] & 0xFC) | std::min<int>(step.what, ARRIVES_AS_EVENT));
    return step;
}

class CHost {
  public:
    explicit CHost(CInput& input) : m_input(input) {}

    void Next() {
        const UINT8 control = m_input.Byte();
        for (int count = control >> 6; count > 0; --count) {
            g_kernel.script.push_back(NextStep(m_input));
            m_arrived.push_back(g_kernel.script.back().bytes);
        }
        switch (control & 7) {
        case 0:
            OpenIpmiClose();
            break;
        case 1:
            g_kernel.errors["/dev/ipmi0"] = ERRORS[m_input.Byte() % std::size(ERRORS)];
            Require(OpenIpmiOpen() == 1 ? OpenIpmiDevice() != nullptr : *OpenIpmiFailure() != 0);
            break;
        case 2:
            g_kernel.sendError = ERRORS[m_input.Byte() % std::size(ERRORS)];
            break;
        case 3:
            ++g_kernel.process;
            break;
        case 4:
        case 5:
            Send(SEND_MESSAGE, APPLICATION, SendMessageData(m_input));
            break;
        case 6:
            Send(GET_MESSAGE, APPLICATION, {});
            break;
        default:
            const UINT8 netFn = m_input.Byte();
            Send(netFn & 0x0F, netFn, m_input.Take(m_input.Byte()));
        }
    }

  private:
    void Send(UINT8 command, UINT8 netFn, const BYTES& data) {
        CRoom room(m_input.Byte() * 4U);
        const _IMBPREQUESTDATA request{command, 0x20, 0, netFn, 0, data.data(), static_cast<int>(data.size())};
        const int timeout = static_cast<int>(m_input.Byte()) * 100 - 100;
        if (OpenIpmiSend(&request, timeout, room.Data(), &room.length, &room.completionCode) != OPENIPMI_OK)
            return Require(*OpenIpmiFailure() != 0 && room.IsUntouched());
        const UINT8 code = room.completionCode;
        if (command == SEND_MESSAGE)
            m_sent = code == 0 ? data : BYTES();
        else if (command != GET_MESSAGE)
            RequireArrived(code, room.Answer(), ARRIVES);
        else if (code == 0)
            TakeMessage(room.Answer());
        else
            Require(code == NO_MESSAGE && room.Answer().empty());
    }

    void TakeMessage(std::span<const UINT8> frame) {
        RequireBridgedAnswer(m_sent, frame);
        RequireArrived(frame[6], frame.subspan(7, frame.size() - 8), ARRIVES_FOR_PREVIOUS);
        m_sent.clear();
    }

    /// An answer of this completion code and data was given, to this request or to one up to `what` before.
    void RequireArrived(UINT8 code, std::span<const UINT8> data, ARRIVAL what) const {
        Require((code & 3) <= what);
        Require(std::any_of(m_arrived.begin(), m_arrived.end(), [&](const BYTES& bytes) {
            return !bytes.empty() && bytes[0] == code &&
                   std::equal(bytes.begin() + 1, bytes.end(), data.begin(), data.end());
        }));
    }

    CInput& m_input;
    std::vector<BYTES> m_arrived;
    BYTES m_sent;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    CInput input(data, size);
    g_kernel = {};
    g_kernel.errors["/dev/ipmi0"] = 0;
    // What arrives for an earlier request may come before there was one.
    g_kernel.ids = {0, 0};
    OpenIpmiOpen();
    CHost host(input);
    while (!input.IsEmpty())
        host.Next();
    OpenIpmiClose();
    return 0;
}
