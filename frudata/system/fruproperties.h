// The system properties that the property operations show.
#pragma once

#include "frudata/types.h"

#include <memory>

namespace Frudata_Private {

/// IPMI version, number of FRUs and of IPMI FRUs, each also as text.
class CFruProperties {
  public:
    /// The version byte of Get Device ID, BCD with the minor digit in the high nibble.
    UINT8 GetIpmiVersion() const { return m_ipmiVersion; }
    void SetIpmiVersion(UINT8 version) { m_ipmiVersion = version; }
    // Both counts and both texts have always been the number of FRUs; hosts show them side by side.
    UINT8 GetNumberOfFrus() const { return m_numberOfFrus; }
    UINT8 GetNumberOfIpmiFrus() const { return m_numberOfFrus; }
    void SetNumberOfFrus(UINT8 count);
    void SetNumberOfIpmiFrus(UINT8 count);
    void IncrementNumberOfFrus() { SetNumberOfFrus(static_cast<UINT8>(m_numberOfFrus + 1)); }
    void IncrementNumberOfIpmiFrus() { SetNumberOfIpmiFrus(static_cast<UINT8>(m_numberOfFrus + 1)); }

    /// Texts owned by this object, null before they were set.
    const WCHAR* GetIpmiVersionString() const { return m_ipmiVersionString.get(); }
    const WCHAR* GetNumberOfFrusString() const { return m_numberOfFrusString.get(); }
    const WCHAR* GetNumberOfIpmiFrusString() const { return m_numberOfIpmiFrusString.get(); }
    /// Takes a copy; a null text changes nothing.
    void SetIpmiVersionString(const WCHAR* text);

  private:
    UINT8 m_ipmiVersion = 0;
    UINT8 m_numberOfFrus = 0;
    UINT8 m_numberOfIpmiFrus = 0;
    std::unique_ptr<WCHAR[]> m_ipmiVersionString;
    std::unique_ptr<WCHAR[]> m_numberOfFrusString;
    std::unique_ptr<WCHAR[]> m_numberOfIpmiFrusString;
};

/// The IPMI version byte that the BMC reports.
UINT8 GetIPMIRevision();

/// Fills `properties`: asks the BMC for its IPMI version and takes the two counts. @return 0
EFI_STATUS InitializeFruProperties(CFruProperties& properties, unsigned int numberOfFrus,
                                   unsigned int numberOfIpmiFrus);

} // namespace Frudata_Private
