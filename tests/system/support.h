// Shared by the tests of device access: a started library whose requests end in a simulated BMC, and the
// requests that it should send, written down from IPMI 2.0 (sections 22.11, 33, 34).
#pragma once

#include "fruimage/imagebuilder.h"
#include "sim/kcsmodel.h"
#include "sim/samples.h"
#include "tests/support/tablehost.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <optional>
#include <string>

namespace Frudata_Tests {

using namespace Frudata_Sim;

/// A FRU with all areas.
inline const BYTES IMAGE = SampleBmcFru();
/// The way of this executable's requests.
extern const FRONT g_front;
/// The address of a FRU device, in the order of the table's operations.
struct ADDRESS {
    FRU_TYPE type = FRU_TYPE_IMBDEVICE;
    UINT8 lun = 0;
    UINT8 deviceAddress = 0x20;
    UINT8 bus = 0xFF;
    UINT8 controller = 0x20;
    UINT8 deviceId = 0;
};
/// How a device is asked: with the FRU commands, or with Master Write-Read.
enum class ACCESS {
    FRU,
    EEPROM,
    THERMOMETER
};
/// Requests as slave address, network function, LUN, command and data.
using REQUESTS = std::vector<BYTES>;
inline const REQUESTS GET_DEVICE_ID{{0x20, 0x06, 0, 0x01}};
/// The requests that read `count` bytes from `offset` on, in pieces of 8 and a rest.
REQUESTS Reads(const ADDRESS& address, ACCESS access, std::size_t offset, std::size_t count);
REQUESTS Writes(const ADDRESS& address, ACCESS access, std::size_t offset, const BYTES& data);
/// The requests that load `image`.
REQUESTS Load(const ADDRESS& address, ACCESS access, const BYTES& image);
REQUESTS operator+(REQUESTS left, const REQUESTS& right);

/// Areas by their byte in the common header.
enum : unsigned int {
    INTERNAL = 1,
    CHASSIS,
    BOARD,
    PRODUCT,
    MULTIRECORD
};
BYTES Slice(const BYTES& bytes, std::size_t offset, std::size_t count);
/// `image` with other bytes from `offset` on and, where that is in it, a good common header again.
BYTES With(BYTES image, std::size_t offset, const BYTES& bytes);
/// Where an area starts, and the bytes of an info area.
std::size_t Start(const BYTES& image, unsigned int area);
BYTES InfoArea(const BYTES& image, unsigned int area);

/// The text `id` of the compiled table, read without the library.
std::wstring Format(unsigned int id);
/// The same with its arguments filled in.
template <typename... ARGUMENTS> std::wstring Text(unsigned int id, ARGUMENTS... arguments) {
    wchar_t text[512] = {};
    std::swprintf(text, 512, Format(id).c_str(), arguments...);
    return text;
}
/// The text by which a FRU without a name is shown.
std::wstring Identifier(const ADDRESS& address);

/// In the codes of `Answer`: the BMC's own answer; success with no byte moved.
inline constexpr int OWN_ANSWER = -1;
inline constexpr int NOTHING_MOVED = -2;

/// A started library in a fresh directory.
class CSystemTest : public CTableHost {
  protected:
    CSystemTest();
    ~CSystemTest() override;
    /// Makes `image` FRU device `address.deviceId` of the BMC and loads it.
    EFI_STATUS LoadImage(const BYTES& image, const ADDRESS& address = {}) {
        m_bmc.AddFruDevice(address.deviceId, image);
        return LoadAt(address);
    }
    EFI_STATUS LoadAt(const ADDRESS& a) {
        return m_table->LoadFruAtAddress(m_table, a.type, a.lun, a.deviceAddress, a.bus, a.controller, a.deviceId, 0xFF,
                                         0);
    }
    EFI_STATUS Find(const ADDRESS& a) {
        return m_table->FindFruAtAddressAndChecksumHeader(m_table, a.type, a.lun, a.deviceAddress, a.bus, a.controller,
                                                          a.deviceId);
    }
    EFI_STATUS CommitIt() { return m_table->CommitConfigurationToSystem(m_table); }
    EFI_STATUS Set(FRU_AREA area, FRU_FIELD field, const std::string& value);
    /// The requests since the last call, of this executable's front or those that reached other controllers.
    REQUESTS Requests(FRONT front = g_front);
    /// Answers the requests `cmd` in turn with these completion codes, then as the BMC does.
    void Answer(UINT8 cmd, std::vector<int> codes);
    /// The status that the front makes of an IMB driver's.
    static EFI_STATUS TransportStatus(UINT16 status) { return g_front == FRONT::IMB ? status : 1; }

    CSimulatedBmc m_bmc;
    CKcsModel m_kcs{m_bmc};
};

/// The calls of the progress callback, as type, text and the two numbers.
extern std::vector<std::wstring> g_progress;

} // namespace Frudata_Tests
