// Shared by the fuzzers of the library: the way a failed assertion ends a run, files in memory, a BMC whose faults come
// from the input, and a host that uses everything an image offers.
#pragma once

#include "frudata/frudata.h"
#include "frudata/frudatastate.h"
#include "fuzz/input.h"
#include "sim/fronts.h"

#include <memory>
#include <span>

namespace Frudata_Fuzz {

/// Thrown in the place of a failed assertion's abort().
struct FailedAssertion {};

/// The table's operation, in front of a BMC: the discovery must find a driver, or requests go to the ports.
EFI_STATUS Initialize(_EFI_FRU_INTERFACE* This, int platform);
/// The started library without any FRU, as at the beginning of a run. The first call starts it.
_EFI_FRU_INTERFACE* EmptyLibrary();
/// Runs `body` to its end or to a failed assertion, which is an end that the library promises. No FRU outlives the
/// run, so that memory it leaks is found.
template <typename BODY> int Run(const UINT8* data, std::size_t size, BODY body) {
    try {
        CInput input(data, size);
        body(EmptyLibrary(), input);
    } catch (const FailedAssertion&) {
    }
    Frudata_Private::g_FruData.reset();
    return 0;
}

/// Puts `fru` on the file list and selects it.
void SelectNewFru(std::unique_ptr<Frudata_Private::CFru> fru);

/// Paths that the library opens in memory: the input, and the file that a save leaves behind. No other file's name
/// begins with "fuzz:".
inline constexpr WCHAR INPUT_PATH[] = L"fuzz:in";
inline constexpr WCHAR OUTPUT_PATH[] = L"fuzz:out";
/// All stay in place until replaced.
void SetInputFile(std::span<const UINT8> content);
/// The string table of the language "fuzz:" and the country "texts".
void SetTextsFile(std::span<const UINT8> content);
std::span<const UINT8> OutputFile();
/// A string table of `count` texts that are all `text`, which keeps it short.
BYTES StringTable(std::size_t count, const BYTES& text);
/// Appends the word that completes the sum of a string table.
void CompleteSum(BYTES& table);

/// The faults of a simulated BMC, from a stream of instructions; one or more an answer. At the stream's end
/// answers are true ones, up to a number that ends every loop.
class CFaultyBmc {
  public:
    /// `faults` must stay.
    explicit CFaultyBmc(CInput& faults);
    CFaultyBmc(const CFaultyBmc&) = delete;
    CFaultyBmc& operator=(const CFaultyBmc&) = delete;
    ~CFaultyBmc() { Frudata_Sim::SetCurrentBmc(nullptr); }

    Frudata_Sim::CSimulatedBmc& Bmc() { return m_bmc; }

  private:
    Frudata_Sim::IpmiAnswer Answer(const Frudata_Sim::IpmiRequest& request);

    Frudata_Sim::CSimulatedBmc m_bmc;
    CInput& m_faults;
    unsigned int m_trueAnswers = 0;
    unsigned int m_answers = 0;
};

/// Reads a text, or bytes, to the end.
inline void Read(const WCHAR* text) {
    Require(!text || std::char_traits<WCHAR>::length(text) < 10000);
}
inline void Read(const UINT8* data, std::size_t length) {
    for (std::size_t index = 0; index < length; ++index)
        static_cast<void>(*static_cast<const volatile UINT8*>(data + index));
}
/// A host's callback.
unsigned int Progress(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current, unsigned int total);
/// Reads everything at the cursor's FRU and changes what `input` says.
void UseSelectedFru(_EFI_FRU_INTERFACE* table, CInput& input);
/// Saves the cursor's FRU and, where `input` says so, loads what was saved.
void SaveAndReload(_EFI_FRU_INTERFACE* table, CInput& input);

} // namespace Frudata_Fuzz
