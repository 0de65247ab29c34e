// Shared by the tests of device access: a started library whose requests end in a simulated BMC, and the
// requests that it should send, written down from IPMI 2.0 (sections 22.11, 33, 34).
#pragma once

#include "frudata/frudata.h"
#include "sim/fruimagebuilder.h"
#include "sim/kcsmodel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cwchar>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Frudata_Tests {

using namespace Frudata_Sim;

using LINES = std::vector<std::string>;

/// The way of this executable's requests.
extern const FRONT g_front;
/// Puts the BMC where the start-up discovery and the driver find it.
void PrepareFront(CSimulatedBmc& bmc, CKcsModel& kcs);
/// What a host does between starting the library and its first request.
void OpenFront();
void CloseFront();

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

/// Requests as `slave address netFn/LUN command: data`.
std::string Line(unsigned int controller, unsigned int netFn, unsigned int lun, unsigned int cmd, const BYTES& data);
/// The requests that read `count` bytes from `offset` on, in pieces of 8 and a rest.
LINES Reads(const ADDRESS& address, ACCESS access, std::size_t offset, std::size_t count);
LINES Writes(const ADDRESS& address, ACCESS access, std::size_t offset, const BYTES& data);
/// The requests that load `image`.
LINES Load(const ADDRESS& address, ACCESS access, const BYTES& image);
LINES operator+(LINES left, const LINES& right);
BYTES Slice(const BYTES& bytes, std::size_t offset, std::size_t count);
/// `image` with other bytes from `offset` on and, where that is in it, a good common header again.
BYTES With(BYTES image, std::size_t offset, const BYTES& bytes);
/// Where area `area` (its byte in the common header) starts, and the bytes of an info area.
std::size_t Start(const BYTES& image, unsigned int area);
BYTES InfoArea(const BYTES& image, unsigned int area);
/// Areas by their byte in the common header.
enum : unsigned int {
    INTERNAL = 1,
    CHASSIS,
    BOARD,
    PRODUCT,
    MULTIRECORD
};

/// The text `id` of the compiled table, read without the library.
const std::wstring& Format(unsigned int id);
/// The same with its arguments filled in.
template <typename... ARGUMENTS> std::wstring Text(unsigned int id, ARGUMENTS... arguments) {
    wchar_t text[512] = {};
    std::swprintf(text, 512, Format(id).c_str(), arguments...);
    return text;
}
/// The text by which a FRU without a name is shown.
std::wstring Identifier(const ADDRESS& address);

/// A started library in a fresh directory.
class CSystemTest : public testing::Test {
  protected:
    CSystemTest();
    ~CSystemTest() override;
    void Restart(int platform);

    /// Makes `image` FRU device `address.deviceId` of the BMC and loads it.
    EFI_STATUS LoadImage(const BYTES& image, const ADDRESS& address = {});
    EFI_STATUS LoadAt(const ADDRESS& address);
    EFI_STATUS Find(const ADDRESS& address);
    /// Selects a FRU of the system list.
    void Select(unsigned int fru);
    EFI_STATUS Set(FRU_AREA area, FRU_FIELD field, const std::string& value);
    std::wstring Value(FRU_AREA area, FRU_FIELD field);
    unsigned int NumberOfFrus();
    /// The last error, "" where there is none.
    std::wstring LastError();
    /// The requests since the last call, of this executable's front or those that reached other controllers.
    LINES Requests(FRONT front = g_front);
    /// The trace log since the last call.
    std::string TakeLog();
    /// Answers the requests `cmd` in turn with these completion codes, then as the BMC does.
    void Answer(UINT8 cmd, std::vector<int> codes);
    /// The status that the front makes of an IMB driver's.
    static EFI_STATUS TransportStatus(UINT16 status) { return g_front == FRONT::IMB ? status : 1; }

    CSimulatedBmc m_bmc;
    CKcsModel m_kcs{m_bmc};
    _EFI_FRU_INTERFACE* m_table = GetFruDataInterface();

  private:
    std::filesystem::path m_before;
    std::filesystem::path m_path;
};
/// In the codes of `Answer`: the BMC's own answer; success with no byte moved.
inline constexpr int OWN_ANSWER = -1;
inline constexpr int NOTHING_MOVED = -2;

/// The calls of `Progress`, as type, text and the two numbers.
extern std::vector<std::wstring> g_progress;
unsigned int Progress(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current, unsigned int total);

/// The process ends with this line on standard error.
#define EXPECT_ASSERTION(action, file, condition)                                                                      \
    EXPECT_DEATH(action, testing::HasSubstr(std::string("frudata: ") + (file) +                                        \
                                            ".cpp: assertion failed: " + (condition) + "\n"))

} // namespace Frudata_Tests
