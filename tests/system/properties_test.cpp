// The system properties: their texts, and what a BMC that answers little makes of them.
#include "tests/system/support.h"

#include "sim/samples.h"

namespace Frudata_Tests {

namespace {

using testing::ElementsAre;

class Properties : public CSystemTest {
  protected:
    std::vector<std::wstring> Values() {
        std::vector<std::wstring> values;
        for (unsigned int index = 0; index < 3; ++index) {
            const wchar_t* text = nullptr;
            EXPECT_EQ(m_table->SelectProperty(m_table, index), 0U);
            EXPECT_EQ(m_table->GetPropertyTitle(m_table, text), 0U);
            values.push_back(text + std::wstring(L"="));
            EXPECT_EQ(m_table->GetPropertyValue(m_table, text), 0U);
            values.back() += text;
        }
        return values;
    }
};

TEST_F(Properties, NeedLoadingAndSelecting) {
    const wchar_t* text = nullptr;
    unsigned int count = 0;
    for (const EFI_STATUS status : {m_table->GetNumberOfProperties(m_table, count), m_table->SelectProperty(m_table, 0),
                                    m_table->GetPropertyTitle(m_table, text), m_table->GetPropertyValue(m_table, text)})
        EXPECT_EQ(status, FRU_STATUS_NOT_LOADED);
    EXPECT_EQ(LastError(), Text(125));
    EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
    EXPECT_THAT(Requests(), ElementsAre(Line(0x20, 6, 0, 1, {})));
    EXPECT_EQ(m_table->GetNumberOfProperties(m_table, count), 0U);
    EXPECT_EQ(count, 3U);
    EXPECT_EQ(m_table->GetPropertyValue(m_table, text), FRU_STATUS_NOT_SELECTED);
    EXPECT_EQ(m_table->SelectProperty(m_table, 2), 0U);
    EXPECT_EQ(m_table->SelectProperty(m_table, 3), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_EQ(LastError(), Text(125));
    EXPECT_EQ(m_table->GetPropertyTitle(m_table, text), FRU_STATUS_NOT_SELECTED);
    bool loaded = true;
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), 0U);
    EXPECT_FALSE(loaded) << "properties are no configuration";
}

TEST_F(Properties, Texts) {
    ASSERT_EQ(LoadImage(SampleRiserFru()), 0U);
    ASSERT_EQ(LoadAt({}), 0U);
    // Both counts are that of the listed FRU devices, of which there are none.
    const std::vector<std::wstring> counts = {Format(30) + L"=0", Format(31) + L"=0"};
    for (const auto& [version, text] : {std::pair(UINT8{0x01}, 33U), {0x51, 32U}, {0x02, 32U}, {0x00, 32U}}) {
        m_bmc.SetIdentity({.ipmiVersion = version});
        EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
        EXPECT_THAT(Values(), ElementsAre(Format(29) + L"=" + Format(text), counts[0], counts[1]));
    }
    // Neither the status nor the completion code counts, only what came as the fifth byte.
    m_bmc.SetIdentity({.ipmiVersion = 0x01});
    for (const FAULT_ACTION action :
         {FAULT_ACTION::TRANSPORT_ERROR, FAULT_ACTION::COMPLETION_CODE, FAULT_ACTION::SHORT_ANSWER}) {
        m_bmc.ClearFaults();
        m_bmc.AddFault({.action = action, .value = 0x0B});
        EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
        EXPECT_EQ(Values()[0], Format(29) + L"=" + Format(32));
    }
    m_bmc.SetScript([](const IpmiRequest&) {
        return std::optional(IpmiAnswer{.completionCode = 0xC1, .data = {0, 0, 0, 0, 0x01}});
    });
    EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
    EXPECT_EQ(Values()[0], Format(29) + L"=" + Format(33));
}

} // namespace

} // namespace Frudata_Tests
