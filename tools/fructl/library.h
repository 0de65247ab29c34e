// The library inside a child process: its start, its state and its failures. For child processes only.
#pragma once

#include "tools/fructl/address.h"
#include "tools/fructl/bmc.h"
#include "tools/fructl/bytes.h"
#include "tools/fructl/toolerror.h"

#include <string>

namespace Fructl {

/// The library, started with the settings of this run.
class CLibrary {
  public:
    enum BMC {
        NO_BMC,    ///< none: work on files
        SYSTEM_BMC ///< the BMC of the machine, or the simulated one in its place
    };
    /// @throws CToolError if the BMC or the library cannot be started
    explicit CLibrary(BMC bmc);
    /// With a simulated BMC of one FRU device that holds `image`.
    explicit CLibrary(BYTES image);
    ~CLibrary();
    CLibrary(const CLibrary&) = delete;
    CLibrary& operator=(const CLibrary&) = delete;

    _EFI_FRU_INTERFACE* operator->() const { return m_table; }
    _EFI_FRU_INTERFACE* Table() const { return m_table; }

    /// Throws the library's reason for a failed `status`.
    void Check(EFI_STATUS status, EXIT_STATUS exitStatus, const std::string& what) const;
    /// Loads one device; the caller judges the status.
    EFI_STATUS Load(const ADDRESS& address) const;
    /// Loads a FRU text file and selects it.
    void LoadFile(const std::string& path) const;
    /// Selects the FRU that was loaded from a device.
    void SelectDevice() const;
    /// The bytes that the simulated device holds now.
    BYTES Image() const;

  private:
    void Start();
    void LoadTexts() const;

    CBmc m_bmc;
    _EFI_FRU_INTERFACE* m_table;
};

/// UTF-8 of a text of the library; empty for null.
std::string Utf8(const WCHAR* text);

} // namespace Fructl
