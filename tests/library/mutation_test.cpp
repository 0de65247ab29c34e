// Damaged FRU text files: whatever they hold, they are read, refused, or end in a required assertion.
#include "support.h"

#include <fcntl.h>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Frudata_Tests {
namespace {

class CMutationTest : public CLibraryTest {
  protected:
    /// Loads text `number` of the sequence and uses what was read.
    virtual std::string Text(unsigned int number) = 0;

    void LoadAndUse(unsigned int number) {
        if (Load(Text(number)) != 0)
            return;
        const wchar_t* text = nullptr;
        unsigned int count = 0, size = sizeof m_buffer;
        m_table->GetFruName(m_table, text);
        for (unsigned int area = 0; m_table->SelectAreaInteger(m_table, area) == 0; ++area) {
            m_table->GetNumberOfFields(m_table, count);
            for (unsigned int field = 0; field < count; ++field) {
                m_table->SelectFieldInteger(m_table, field);
                m_table->SetFieldDataValue(m_table, m_buffer, number % 64);
                m_table->GetFieldStringValue(m_table, text);
            }
            m_table->GetAreaData(m_table, m_buffer, size);
        }
        m_table->SaveConfigurationToFile(m_table, L"out.fru", nullptr);
        LastError();
    }

    /// Runs texts 0 to `count` - 1, in a new process after each one that ended in an assertion.
    void Run(unsigned int count) {
        void* shared = mmap(nullptr, sizeof(unsigned int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(shared, MAP_FAILED);
        volatile unsigned int& next = *static_cast<unsigned int*>(shared);
        unsigned int assertions = 0;
        while (next < count) {
            std::filesystem::remove("stderr.txt");
            const pid_t child = fork();
            if (child == 0) {
                dup2(open("stderr.txt", O_CREAT | O_WRONLY, 0600), STDERR_FILENO);
                LIBDBG_DEBUG_LEVEL = 0;
                while (next < count) {
                    next = next + 1;
                    LoadAndUse(next - 1);
                }
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
                break;
            ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT &&
                        ReadFile("stderr.txt").find(".cpp: assertion failed: ") != std::string::npos)
                << "text " << next - 1 << ":\n"
                << ReadFile("in.fru").substr(0, 4000) << ReadFile("stderr.txt");
            ++assertions;
        }
        EXPECT_EQ(next, count);
        EXPECT_LT(assertions, count / 2) << "most damage must reach past the assertions to be of use";
        munmap(shared, sizeof(unsigned int));
    }

    UINT8 m_buffer[700] = {'m'};
};

class CDamagedTest : public CMutationTest {
  protected:
    std::string Text(unsigned int number) override {
        std::minstd_rand random(number + 1);
        const auto below = [&random](std::size_t limit) { return random() % limit; };
        static const char* const pieces[] = {
            "'", "\n", ")",  "_SEE_BOARD", "//",        "00", "FF",   "C1",
            "#", "\t", "\r", "_FRU (",     "FFFFFFFFF", "''", "\xC3", "_SEE_MULTIREC\n"};
        std::string text = FruText(RichFru());
        for (std::size_t edits = 1 + below(3); edits > 0; --edits) {
            const std::size_t at = below(text.size());
            switch (below(5)) {
            case 0:
                text[at] = static_cast<char>(below(256));
                break;
            case 1:
                text.insert(at, pieces[below(std::size(pieces))]);
                break;
            case 2:
                text.erase(at, 1 + below(8));
                break;
            case 3: // another byte value, so that lengths and types change and the text stays well formed
                if (text.find_first_not_of("0123456789ABCDEFabcdef", at) > at + 1)
                    text[at] = "0123456789ABCDEF"[below(16)];
                break;
            default:
                text.insert(at, text.substr(below(text.size()), below(400)));
            }
        }
        return text;
    }
};

class CStrangeTest : public CMutationTest {
  protected:
    std::string Text(unsigned int number) override {
        if (number < 256)
            return std::string(1, static_cast<char>(number));
        const std::string start = FruText({}).substr(0, FruText({}).find("_SEE_COMMON"));
        const std::size_t megabyte = 1 << 20;
        switch (number - 256) {
        case 0:
            return std::string(megabyte, '\0');
        case 1:
            return std::string(megabyte, '\n');
        case 2:
            return start + "_SEE_COMMON\n" + std::string(megabyte, '0');
        case 3:
            return start + "_SEE_COMMON\n'" + std::string(megabyte, 'x') + "'";
        case 4:
            return start + "_SEE_COMMON\n" + std::string(megabyte, '#');
        case 5:
            return WithLine(FruText(BoardFru()), "_FRU_TITLE", "_FRU_TITLE '" + std::string(megabyte, 'T') + "'");
        default:
            return WithLine(FruText(BoardFru()), "_DEV_ID", "_DEV_ID" + std::string(megabyte, '\t') + "5");
        }
    }
};

TEST_F(CDamagedTest, NeverCrashes) {
    Run(2000);
}

TEST_F(CStrangeTest, NeverCrashes) {
    Run(256 + 7);
}

} // namespace
} // namespace Frudata_Tests
