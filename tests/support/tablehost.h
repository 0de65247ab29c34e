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
    /// Selects a FRU of the system list.
    void Select(unsigned int fru) {
        EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_SYSTEM), 0U);
        EXPECT_EQ(m_table->SelectFru(m_table, fru), 0U);
    }
    /// Of the system list.
    unsigned int NumberOfFrus() {
        unsigned int locators = 99, frus = 99;
        if (m_table->SelectList(m_table, FRU_LIST_SYSTEM) == FRU_STATUS_NOT_LOADED)
            return 0;
        EXPECT_EQ(m_table->GetNumberOfFrus(m_table, locators, frus), 0U);
        EXPECT_EQ(locators, 0U);
        return frus;
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

    ~CTableHost() override { m_table->DeInitialize(m_table); }

    CFreshDirectory m_directory;
    _EFI_FRU_INTERFACE* m_table = GetFruDataInterface();
};

} // namespace Frudata_Tests
