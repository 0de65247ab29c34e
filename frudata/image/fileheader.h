// The four header values of a FRU text file.
#pragma once

#include "common/trace.h"
#include "frudata/types.h"

#include <memory>

namespace Frudata_Private {

/// Keeps copies of the values. A setter returns false when it cannot allocate the copy; a null text is a fatal
/// assertion. A getter yields null before its setter ran.
class CFileHeader {
  public:
    bool SetLfName(const char* text) { return Store(L"SetLfName", m_lfName, text); }
    bool SetLfVersion(const char* text) { return Store(L"SetLfVersion", m_lfVersion, text); }
    bool SetLfFmtVersion(const char* text) { return Store(L"SetLfFmtVersion", m_lfFmtVersion, text); }
    bool SetIpmiVersion(const char* text) { return Store(L"SetIpmiVersion", m_ipmiVersion, text); }
    const char* GetLfName() const { return Get(L"GetLfName", m_lfName); }
    const char* GetLfVersion() const { return Get(L"GetLfVersion", m_lfVersion); }
    const char* GetLfFmtVersion() const { return Get(L"GetLfFmtVersion", m_lfFmtVersion); }
    const char* GetIpmiVersion() const { return Get(L"GetIpmiVersion", m_ipmiVersion); }

  private:
    static bool Store(const WCHAR* operation, std::unique_ptr<char[]>& value, const char* text);
    static const char* Get(const WCHAR* operation, const std::unique_ptr<char[]>& value) {
        return CTrace(L"CFileHeader", operation).Exit(static_cast<const char*>(value.get()));
    }

    std::unique_ptr<char[]> m_lfName;
    std::unique_ptr<char[]> m_lfVersion;
    std::unique_ptr<char[]> m_lfFmtVersion;
    std::unique_ptr<char[]> m_ipmiVersion;
};

} // namespace Frudata_Private
