// Shared by the benchmarks and the counted cost: a started library in a fresh directory, whose requests end in a
// simulated BMC, and FRU content of given sizes.
#pragma once

#include "frudata/frudata.h"
#include "frudata/sdrscan.h"
#include "sim/kcsmodel.h"

#include <filesystem>
#include <map>
#include <string>

namespace Frudata_Bench {

using Frudata_Sim::BYTES;

/// Sizes of FRU content, in bytes: a small board, a usual server, and the most that the info areas and the FRU
/// text file can hold.
inline constexpr std::size_t FRU_SIZES[] = {256, 1024, 2048};
inline constexpr std::size_t LARGEST_FRU = 2048;

/// An image of exactly `size` bytes, one of FRU_SIZES, every info area filled with fields.
BYTES FruImage(std::size_t size);
/// Where an area starts, by its byte in the common header, and the bytes of an info area.
std::size_t AreaStart(const BYTES& image, unsigned int area);
BYTES InfoArea(const BYTES& image, unsigned int area);
/// A multi-record area of two records.
BYTES MultiRecords();

/// Ends the program unless `status` is 0.
void Check(EFI_STATUS status, const char* what);

/// One started library. The access path is decided once a process: after a host with the IMB front there is none
/// with the KCS front.
class CHost {
  public:
    explicit CHost(Frudata_Sim::FRONT front);
    CHost(const CHost&) = delete;
    CHost& operator=(const CHost&) = delete;
    ~CHost();

    /// Starts anew, with empty lists.
    void Restart();
    /// Makes FRU device 0 of the BMC an image of `size` bytes.
    void FillDevice(std::size_t size);
    void LoadDevice();
    /// Loads the FRU text file of that content, as the library saves it.
    void LoadText(std::size_t size);
    /// Loads one of the largest content whose areas are all hexadecimal digits, as provisioning programs write them.
    void LoadDigits();
    /// Saves the selected FRU.
    void SaveText();
    /// Selects FRU `fru` of a list, and a field of the product area.
    void Select(int list, unsigned int fru);
    void SelectAssetTag();
    void SetAssetTag();
    /// Asks for every field of every area of the selected FRU as text. @return the characters
    std::size_t ReadAllFields();
    /// Fills the SDR repository with `records`, a quarter of them FRU locators.
    void FillRepository(unsigned int records);
    void Scan();
    void Commit();

    Frudata_Sim::CKcsModel& Kcs() { return m_kcs; }

  private:
    void WriteTextFile(std::size_t size, const std::wstring& name);
    void WriteDigits() const;

    Frudata_Sim::FRONT m_front;
    Frudata_Sim::CSimulatedBmc m_bmc;
    Frudata_Sim::CKcsModel m_kcs{m_bmc};
    _EFI_FRU_INTERFACE* m_table = GetFruDataInterface();
    std::filesystem::path m_before = std::filesystem::current_path();
    std::filesystem::path m_path;
    std::map<std::size_t, std::wstring> m_textFiles;
};

} // namespace Frudata_Bench
