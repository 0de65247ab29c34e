// A host of the library: its table, in a directory of the test's own.
#pragma once

#include "frudata/frudata.h"
#include "tests/support/directory.h"

#include <gtest/gtest.h>

namespace Frudata_Tests {

inline unsigned int IgnoreProgress(PROGRESS_CALLBACK_TYPE, const WCHAR*, unsigned int, unsigned int) {
    return 0;
}

class CTableHost : public testing::Test {
  protected:
    EFI_STATUS SetSelected(const std::string& value) {
        return m_table->SetFieldDataValue(m_table, reinterpret_cast<const UINT8*>(value.data()),
                                          static_cast<unsigned int>(value.size()));
    }
    EFI_STATUS Set(unsigned int field, const std::string& value) {
        EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
        return SetSelected(value);
    }
    /// The last error, "" where there is none.
    std::wstring LastError() {
        const wchar_t* message = nullptr;
        m_table->GetLastErrorMessage(m_table, message);
        return message ? message : L"";
    }
    /// What was logged since the last call.
    static std::string TakeLog() {
        const std::string log = ReadFile("DBGLOG.txt");
        std::filesystem::remove("DBGLOG.txt");
        return log;
    }

    CFreshDirectory m_directory;
    _EFI_FRU_INTERFACE* m_table = GetFruDataInterface();
};

} // namespace Frudata_Tests
