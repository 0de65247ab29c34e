// The four header values of a FRU text file.
#pragma once

#include <memory>

namespace Frudata_Private {

/// Keeps copies of the values. A setter returns false when the copy cannot be allocated; a null text is a
/// fatal assertion. A getter yields null before the value was set.
class CFileHeader {
  public:
    bool SetLfName(const char* text) { return Store(m_lfName, text); }
    bool SetLfVersion(const char* text) { return Store(m_lfVersion, text); }
    bool SetLfFmtVersion(const char* text) { return Store(m_lfFmtVersion, text); }
    bool SetIpmiVersion(const char* text) { return Store(m_ipmiVersion, text); }
    const char* GetLfName() const { return m_lfName.get(); }
    const char* GetLfVersion() const { return m_lfVersion.get(); }
    const char* GetLfFmtVersion() const { return m_lfFmtVersion.get(); }
    const char* GetIpmiVersion() const { return m_ipmiVersion.get(); }

  private:
    static bool Store(std::unique_ptr<char[]>& value, const char* text);

    std::unique_ptr<char[]> m_lfName;
    std::unique_ptr<char[]> m_lfVersion;
    std::unique_ptr<char[]> m_lfFmtVersion;
    std::unique_ptr<char[]> m_ipmiVersion;
};

} // namespace Frudata_Private
