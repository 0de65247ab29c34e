// The system properties that the property operations show.
#pragma once

#include "frudata/types.h"

#include <memory>

namespace Frudata_Private {

/// IPMI version, number of FRUs and of IPMI FRUs, each also as text.
class CFruProperties {
  public:
    /// The version byte of Get Device ID, BCD with the minor digit in the high nibble.
    UINT8 GetIpmiVersion() const;
    void SetIpmiVersion(UINT8 version);
    // Compatibility: the getters of both counts return the number of FRUs, and both texts show it.
    UINT8 GetNumberOfFrus() const;
    UINT8 GetNumberOfIpmiFrus() const;
    void SetNumberOfFrus(UINT8 count);
    void SetNumberOfIpmiFrus(UINT8 count);
    /// Set the number of FRUs, or of IPMI FRUs, to the number of FRUs and one.
    void IncrementNumberOfFrus();
    void IncrementNumberOfIpmiFrus();

    /// Texts owned by this object, null before they were set.
    const WCHAR* GetIpmiVersionString() const;
    const WCHAR* GetNumberOfFrusString() const;
    const WCHAR* GetNumberOfIpmiFrusString() const;
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
