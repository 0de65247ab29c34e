// What the table cannot reach: the properties record's own accessors, and arguments that must be there.
#include "frudata/image/fru.h"
#include "frudata/system/fruproperties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Frudata_Private {

namespace {

TEST(Properties, CountsAreOne) {
    CFruProperties properties;
    EXPECT_EQ(properties.GetNumberOfFrus() + properties.GetIpmiVersion(), 0);
    EXPECT_FALSE(properties.GetIpmiVersionString() || properties.GetNumberOfFrusString() ||
                 properties.GetNumberOfIpmiFrusString());
    properties.SetNumberOfFrus(200);
    properties.SetNumberOfIpmiFrus(7);
    EXPECT_EQ(properties.GetNumberOfIpmiFrus(), 200);
    EXPECT_STREQ(properties.GetNumberOfFrusString(), L"200");
    EXPECT_STREQ(properties.GetNumberOfIpmiFrusString(), L"200");
    properties.IncrementNumberOfFrus();
    EXPECT_EQ(properties.GetNumberOfFrus(), 201);
    EXPECT_STREQ(properties.GetNumberOfFrusString(), L"201");
    EXPECT_STREQ(properties.GetNumberOfIpmiFrusString(), L"200") << "until it is set itself";
    properties.IncrementNumberOfIpmiFrus();
    EXPECT_EQ(properties.GetNumberOfFrus(), 201);
    EXPECT_STREQ(properties.GetNumberOfIpmiFrusString(), L"201");
    properties.SetIpmiVersionString(L"first");
    properties.SetIpmiVersionString(nullptr);
    EXPECT_STREQ(properties.GetIpmiVersionString(), L"first");
}

TEST(Arguments, MustBeThere) {
    const auto says = [](const char* text) { return testing::HasSubstr(std::string(text) + "\n"); };
    FRU_LOCATOR locator;
    CFru fru;
    UINT8 bytes[8];
    EXPECT_DEATH(CFru::ReadDataFromFRU(nullptr, 0, 8, bytes), says("frureadsystem.cpp: assertion failed: locator"));
    EXPECT_DEATH(CFru::ReadDataFromFRU(&locator, 0, 8, nullptr), says("frureadsystem.cpp: assertion failed: data"));
    EXPECT_DEATH(fru.LoadFromSystem(nullptr), says("fru.cpp: assertion failed: locator"));
}

} // namespace

} // namespace Frudata_Private
