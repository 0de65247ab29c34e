// The string table compiler, run as the build runs it, and a table that it made for this build. The tables' layout is
// what the library takes, and what tests/system reads by itself.
#include "tests/support/directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Frudata_Tests;

/// Replaces the first `from` of `text`, which must be there.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

struct RUN {
    int status;
    std::string output;
};

RUN RunCompiler(const std::string& arguments) {
    std::FILE* pipe = popen((std::string(STRC_PROGRAM) + " " + arguments + " 2>&1").c_str(), "r");
    std::string output;
    for (int character; (character = std::fgetc(pipe)) != EOF;)
        output += static_cast<char>(character);
    return {WEXITSTATUS(pclose(pipe)), output};
}

class CStringsTest : public testing::Test {
  protected:
    void SetUp() override { m_source = ReadFile(STRC_SOURCE); }
    void TearDown() override {
        std::remove("in.txt");
        std::remove("out.str");
        EXPECT_TRUE(std::filesystem::is_empty(m_directory.Path())) << "a temporary file was left behind";
    }
    RUN Compile(const std::string& source) {
        WriteFile("in.txt", source);
        return RunCompiler("in.txt -o out.str");
    }
    CFreshDirectory m_directory;
    std::string m_source;
};

TEST_F(CStringsTest, RefusesFaultySources) {
    const struct {
        const char* from;
        const char* to;
        const char* message;
    } cases[] = {
        {"138  INVALID_MFG", "# 138  INVALID_MFG", "text 138 INVALID_MFG_DATE_TIME is missing"},
        {"5    AREA_BOARD  ", "4    AREA_CHASSIS  ", "text 4 is there twice"},
        {"5    AREA_BOARD  ", "45   AREA_BOARD  ", "there is no text 45"},
        {"5    AREA_BOARD  ", "4294967301 AREA_BOARD  ", "a line begins with the number"},
        {"5    AREA_BOARD  ", "5    AREA_PRODUCT  ", "text 5 AREA_BOARD has the wrong name"},
        {"\"Board Info Area\"", "\"\"", "text 5 AREA_BOARD is empty"},
        {"\"Board Info Area\"", "\"Board %u\"", "text 5 AREA_BOARD has the wrong placeholders; it takes none"},
        {"\"Board Info Area\"", "\"100 %\"", "text 5 AREA_BOARD has the wrong placeholders"},
        {"\"Writing %ls\"", "\"Writing %s\"", "text 64 PROGRESS_WRITING_FRU has the wrong placeholders; it takes %ls"},
        {"\"Writing %ls\"", "\"Writing %.9ls\"",
         "text 64 PROGRESS_WRITING_FRU has the wrong placeholders; it takes %ls"},
        {"%02u/%02u/%04u %02u:%02u:%02u", "%2$02u.%1$02u.%3$04u %4$02u:%5$02u",
         "text 35 DATE_TIME_FORMAT has the wrong placeholders; it takes %u, %u, %u, %u, %u, %u"},
        {"%02X, bus 0x%02X", "%02X, bus",
         "text 134 FRU_IDENTIFIER has the wrong placeholders; it takes %u, %u, %u, %u"},
        {"\"Board Info Area\"", "\"Board \xF0\x9F\x98\x80\"", "the text contains a character above U+FFFF"},
        {"\"Board Info Area\"", "\"Board \xED\xA0\x80\"", "the text is not valid UTF-8"},
        {"\"Board Info Area\"", "\"Board \xC1\x81\"", "the text is not valid UTF-8"},
        {"\"Board Info Area\"", "\"Board \xE4\"", "the text is not valid UTF-8"},
        {"\"Board Info Area\"", "\"Board", "the closing double quote is missing"},
        {"\"Board Info Area\"", "\"Board\\n\"", "a backslash stands before"},
        {"\"Board Info Area\"", "\"Board\" Area", "there is something after the text"},
        {"\"Board Info Area\"", "Board", "the text must follow in double quotes"},
    };
    for (const auto& faulty : cases) {
        SCOPED_TRACE(faulty.message);
        const auto line =
            1 + std::count_if(m_source.begin(), m_source.begin() + static_cast<long>(m_source.find(faulty.from)),
                              [](char character) { return character == '\n'; });
        const std::string expected = "in.txt:" + std::to_string(line) + ": " + faulty.message;
        const RUN run = Compile(Replaced(m_source, faulty.from, faulty.to));
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output.substr(0, expected.size()), expected);
        EXPECT_NE(access("out.str", F_OK), 0) << "a table was written";
    }
}

TEST_F(CStringsTest, KeepsWhatTheSourceSays) {
    ASSERT_EQ(Compile(Replaced(m_source, "\"Board Info Area\"", "\"\\\"\\\\ 5 %% \xC3\xA4\xE2\x82\xAC\"")).status, 0);
    const RUN list = RunCompiler("--list out.str");
    EXPECT_EQ(list.status, 0);
    EXPECT_NE(list.output.find("\n5\t\"\\ 5 %% \xC3\xA4\xE2\x82\xAC\n6\tProduct Info Area\n"), std::string::npos);
}

TEST(CompiledTables, TheGermanDateStandsDayFirst) {
    const RUN list = RunCompiler("--list " STRC_TABLES "/dede/frudata/str/frudata.str");
    EXPECT_NE(list.output.find("\n35\t%2$02u.%1$02u.%3$04u %4$02u:%5$02u:%6$02u\n"), std::string::npos);
}

} // namespace
