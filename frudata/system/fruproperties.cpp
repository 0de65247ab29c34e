#include "frudata/system/fruproperties.h"

#include "common/allocate.h"
#include "common/stringresource.h"
#include "common/trace.h"
#include "frudata/system/messages.h"

#include <cwchar>

namespace Frudata_Private {

namespace {

constexpr std::size_t COUNT_TEXT_SIZE = 8;

constexpr CTraceSource TraceProperties(L"CFruProperties");

std::unique_ptr<WCHAR[]> CountText(int count) {
    std::unique_ptr<WCHAR[]> text = AllocateArray<WCHAR>(COUNT_TEXT_SIZE);
    if (text)
        std::swprintf(text.get(), COUNT_TEXT_SIZE, L"%i", count);
    return text;
}

} // namespace

UINT8 CFruProperties::GetIpmiVersion() const {
    return TraceProperties(L"GetIpmiVersion").Exit(m_ipmiVersion);
}

void CFruProperties::SetIpmiVersion(UINT8 version) {
    const CTrace trace = TraceProperties(L"SetIpmiVersion");
    m_ipmiVersion = version;
    trace.Exit();
}

UINT8 CFruProperties::GetNumberOfFrus() const {
    return TraceProperties(L"GetNumberOfFrus").Exit(m_numberOfFrus);
}

UINT8 CFruProperties::GetNumberOfIpmiFrus() const {
    return TraceProperties(L"GetNumberOfIpmiFrus").Exit(m_numberOfFrus);
}

void CFruProperties::SetNumberOfFrus(UINT8 count) {
    const CTrace trace = TraceProperties(L"SetNumberOfFrus");
    m_numberOfFrus = count;
    m_numberOfFrusString = CountText(m_numberOfFrus);
    trace.Exit();
}

void CFruProperties::SetNumberOfIpmiFrus(UINT8 count) {
    const CTrace trace = TraceProperties(L"SetNumberOfIpmiFrus");
    m_numberOfIpmiFrus = count;
    m_numberOfIpmiFrusString = CountText(m_numberOfFrus);
    trace.Exit();
}

void CFruProperties::IncrementNumberOfFrus() {
    const CTrace trace = TraceProperties(L"IncrementNumberOfFrus");
    SetNumberOfFrus(static_cast<UINT8>(m_numberOfFrus + 1));
    trace.Exit();
}

void CFruProperties::IncrementNumberOfIpmiFrus() {
    const CTrace trace = TraceProperties(L"IncrementNumberOfIpmiFrus");
    SetNumberOfIpmiFrus(static_cast<UINT8>(m_numberOfFrus + 1));
    trace.Exit();
}

const WCHAR* CFruProperties::GetIpmiVersionString() const {
    return TraceProperties(L"GetIpmiVersionString").Exit(m_ipmiVersionString.get());
}

const WCHAR* CFruProperties::GetNumberOfFrusString() const {
    return TraceProperties(L"GetNumberOfFrusString").Exit(m_numberOfFrusString.get());
}

const WCHAR* CFruProperties::GetNumberOfIpmiFrusString() const {
    return TraceProperties(L"GetNumberOfIpmiFrusString").Exit(m_numberOfIpmiFrusString.get());
}

void CFruProperties::SetIpmiVersionString(const WCHAR* text) {
    const CTrace trace = TraceProperties(L"SetIpmiVersionString");
    if (!text)
        return trace.Exit();
    const std::size_t size = std::wcslen(text) + 1;
    m_ipmiVersionString = AllocateArray<WCHAR>(size);
    if (m_ipmiVersionString)
        std::wmemcpy(m_ipmiVersionString.get(), text, size);
    trace.Exit();
}

UINT8 GetIPMIRevision() {
    const CTrace trace = TraceFruData(L"GetIPMIRevision");
    BuildRequest(BMC_ADDRESS, NETFN_APPLICATION, 0, COMMAND_GET_DEVICE_ID, {});
    // Without an answer the version byte is the 0 that the transport leaves behind.
    SendRequest();
    return trace.Exit(RespMsg->data[DEVICE_ID_IPMI_VERSION]);
}

EFI_STATUS InitializeFruProperties(CFruProperties& properties, unsigned int numberOfFrus,
                                   unsigned int numberOfIpmiFrus) {
    const CTrace trace = TraceFruData(L"InitializeFruProperties");
    properties.SetNumberOfFrus(0);
    properties.SetNumberOfIpmiFrus(0);
    properties.SetIpmiVersion(GetIPMIRevision());
    properties.SetNumberOfFrus(static_cast<UINT8>(numberOfFrus));
    properties.SetNumberOfIpmiFrus(static_cast<UINT8>(numberOfIpmiFrus));
    const bool isFirst = properties.GetIpmiVersion() == 1;
    properties.SetIpmiVersionString(GetText(isFirst ? STRING_IPMI_VERSION_FIRST : STRING_IPMI_VERSION_LATER));
    return trace.Exit(FRU_STATUS_SUCCESS);
}

} // namespace Frudata_Private
