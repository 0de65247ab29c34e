// Several fructl at once on one device, and some of them killed: what was reported as written stays, and the image is
// never one that nobody wrote.
#include "tests/fructl/support.h"

#include "fruimage/image.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace Fructl_Tests {
namespace {

struct DEVICE {
    const char* name;
    const char* image;
    unsigned int writes;             ///< at least as many has one commit
    std::vector<const char*> fields; ///< one a writer, each with room for six bytes
};

struct WRITER {
    pid_t process;
    std::string field;
    std::string value;
    std::string backup;
    int status = 0; ///< as wait() has it
};

/// Ends tests that a writer hangs in.
constexpr unsigned int MOST_SECONDS = 60;

pid_t StartFructl(const std::vector<std::string>& arguments, const std::string& log) {
    const pid_t process = fork();
    if (process != 0)
        return process;
    std::vector<char*> words;
    for (const std::string& word : arguments)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const int file = open(log.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    alarm(MOST_SECONDS);
    if (std::getenv("DIES_AT"))
        setenv("LD_PRELOAD", FRUCTL_DIES, 1);
    execv(words.front(), words.data());
    _exit(126);
}

class CWritersTest : public CFructlTest, public testing::WithParamInterface<DEVICE> {
  protected:
    WRITER Start(std::size_t number) {
        WRITER writer{0, GetParam().fields[number], "v" + std::to_string(10000 + m_number++), {}};
        writer.backup = "before-" + writer.value + ".bin";
        writer.process = StartFructl({FRUCTL_PROGRAM, "--sim", "server", "commit", "--at", GetParam().name,
                                      writer.field + "=" + writer.value, "--backup", writer.backup},
                                     "log-" + writer.value);
        return writer;
    }
    /// Starts one writer a field, and ends one of them by `signal`: at a random time, or where `inWrite` says so, at a
    /// random write to the device.
    std::vector<WRITER> RunRound(int signal, bool inWrite = false) {
        std::vector<WRITER> writers;
        m_victim = m_random() % GetParam().fields.size();
        for (std::size_t number = 0; number < GetParam().fields.size(); ++number) {
            setenv("DIES_IMAGE", GetParam().image, 1);
            if (inWrite && number == m_victim)
                setenv("DIES_AT", std::to_string(1 + m_random() % GetParam().writes).c_str(), 1);
            writers.push_back(Start(number));
            unsetenv("DIES_AT");
        }
        // In the first round at once, however fast the writers are: one at least does not get to its end.
        const bool isFirst = m_number == writers.size();
        usleep(inWrite || isFirst ? 0 : static_cast<useconds_t>(m_random() % m_mostMicroseconds));
        if (!inWrite)
            kill(writers[m_victim].process, signal);
        for (WRITER& writer : writers)
            EXPECT_EQ(waitpid(writer.process, &writer.status, 0), writer.process);
        return writers;
    }
    /// Notes what the writers have reported, and expects each field as it was reported last, or as a writer that did
    /// not get to report wanted it.
    void CheckReports(const std::vector<WRITER>& writers) {
        for (const WRITER& writer : writers) {
            const std::string now = Fructl("get " + m_image + " " + writer.field).output;
            const std::string& before = m_reported[writer.field];
            const bool mayBeOld = writer.status != 0 && (before.empty() || now == before);
            EXPECT_TRUE(mayBeOld || now == writer.value + "\n")
                << writer.field << " is " << now << ReadText("log-" + writer.value);
            m_reported[writer.field] = now;
        }
    }
    bool IsSound() const { return FruImage::Parse(ReadFile(m_image)).IsSound(); }

    const std::string m_image = std::string("server/") + GetParam().image;
    std::size_t m_victim = 0; ///< of the last round
    unsigned int m_number = 0;
    unsigned int m_mostMicroseconds = 30'000 * static_cast<unsigned int>(GetParam().fields.size());
    std::map<std::string, std::string> m_reported;
    std::minstd_rand m_random{17};
};

TEST_P(CWritersTest, AskedToEnd) {
    unsigned int ended = 0;
    for (unsigned int round = 0; round < 12; ++round) {
        const std::vector<WRITER> writers = RunRound(SIGTERM);
        EXPECT_TRUE(IsSound()) << round;
        for (const WRITER& writer : writers) {
            ended += WIFSIGNALED(writer.status);
            EXPECT_TRUE(writer.status == 0 || (WIFSIGNALED(writer.status) && WTERMSIG(writer.status) == SIGTERM))
                << ReadText("log-" + writer.value);
        }
        CheckReports(writers);
    }
    EXPECT_GT(ended, 0U);
}

TEST_P(CWritersTest, Killed) {
    unsigned int torn = 0;
    for (unsigned int round = 0; round < 12; ++round) {
        const std::vector<WRITER> writers = RunRound(SIGKILL, FRUCTL_DIES[0] != 0 && round % 3 != 0);
        if (!IsSound()) {
            ++torn;
            // The write of one writer has ended in its middle: its backup goes back. Changes of other areas, which the
            // damage did not lock, go with it.
            const WRITER& killed = writers[m_victim];
            ASSERT_NE(killed.status, 0);
            const std::size_t size = ReadFile(m_image).size();
            ASSERT_EQ(ReadFile(killed.backup).size(), size);
            EXPECT_EQ(Fructl("--sim server restore " + killed.backup + " --to '" + GetParam().name + "'").status, 0);
            EXPECT_EQ(ReadFile(m_image), ReadFile(killed.backup));
            EXPECT_TRUE(IsSound());
            m_reported.clear();
            continue;
        }
        CheckReports(writers);
    }
    EXPECT_TRUE(FRUCTL_DIES[0] == 0 || torn > 0);
}

INSTANTIATE_TEST_SUITE_P(
    , CWritersTest,
    testing::Values(DEVICE{"PSU 1", "psu.bin", 19, {"product.serial-number", "product.manufacturer"}},
                    DEVICE{"system",
                           "bmc.bin",
                           31,
                           {"chassis.part-number", "chassis.serial-number", "board.manufacturer", "board.serial-number",
                            "board.part-number", "product.manufacturer", "product.serial-number",
                            "product.asset-tag"}}),
    [](const auto& row) { return std::to_string(row.param.fields.size()); });

} // namespace
} // namespace Fructl_Tests
