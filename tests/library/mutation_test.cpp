// Damaged FRU text files: whatever they hold, they are read, refused, or end in a required assertion.
#include "support.h"

#include <fcntl.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace Frudata_Tests {
namespace {

std::string Damaged(unsigned int number) {
    std::minstd_rand random(number + 1);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    static const char* const pieces[] = {"'", "\n", ")",  "_SEE_BOARD", "//",        "00", "FF",   "C1",
                                         "#", "\t", "\r", "_FRU (",     "FFFFFFFFF", "''", "\xC3", "_SEE_MULTIREC\n"};
    std::string text = FruText(RichFru());
    for (std::size_t edits = 1 + below(3); edits > 0; --edits) {
        const std::size_t at = below(text.size()), kind = below(5);
        if (kind == 0)
            text[at] = static_cast<char>(below(256));
        else if (kind == 1)
            text.insert(at, pieces[below(std::size(pieces))]);
        else if (kind == 2)
            text.erase(at, 1 + below(8));
        else if (kind == 3)
            text.insert(at, text.substr(below(text.size()), below(400)));
        // Another byte value, so that lengths and types change and the text stays well formed.
        else if (text.find_first_not_of("0123456789ABCDEFabcdef", at) > at + 1)
            text[at] = "0123456789ABCDEF"[below(16)];
    }
    return text;
}

class CMutationTest : public CLibraryTest {
  protected:
    void LoadAndUse(const std::string& content) {
        if (Load(content) != 0)
            return;
        UINT8 buffer[700] = {'m'};
        const wchar_t* text = nullptr;
        unsigned int count = 0, size = sizeof buffer;
        for (unsigned int area = 0; m_table->SelectAreaInteger(m_table, area) == 0; ++area) {
            m_table->GetNumberOfFields(m_table, count);
            for (unsigned int field = 0; field < count; ++field) {
                m_table->SelectFieldInteger(m_table, field);
                m_table->SetFieldDataValue(m_table, buffer, static_cast<unsigned int>(content.size() % 64));
                m_table->GetFieldStringValue(m_table, text);
            }
            m_table->GetAreaData(m_table, buffer, size);
        }
        m_table->SaveConfigurationToFile(m_table, L"out.fru", nullptr);
        LastError();
    }
};

TEST_F(CMutationTest, NeverCrashes) {
    std::vector<std::string> texts;
    for (const char byte : {'\0', '\n', '0', '\'', '#', '\t'}) // a megabyte of each, with and without a start
        for (const char* start : {"", "_SEE_COMMON\n'", "_SEE_COMMON\n", "_FRU_TITLE '"})
            texts.push_back(WithLine(FruText(BoardFru()), "_SEE_COMMON", start + std::string(1 << 20, byte)));
    for (unsigned int number = 0; number < 1000; ++number)
        texts.push_back(Damaged(number));
    std::size_t assertions = 0;
    for (const std::string& text : texts) {
        std::filesystem::remove("stderr.txt");
        const pid_t child = fork();
        if (child == 0) {
            dup2(open("stderr.txt", O_CREAT | O_WRONLY, 0600), STDERR_FILENO);
            LoadAndUse(text);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT &&
                                    ReadFile("stderr.txt").find(".cpp: assertion failed: ") != std::string::npos))
            << text.substr(0, 4000) << ReadFile("stderr.txt");
        assertions += status != 0;
    }
    EXPECT_LT(assertions, texts.size() / 2) << "most damage must reach past the assertions to be of use";
}

} // namespace
} // namespace Frudata_Tests
