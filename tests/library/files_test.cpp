// The files that a host or the current directory names: which are opened, and how.
#include "support.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Frudata_Tests {
namespace {

namespace fs = std::filesystem;

using CFilesTest = CLibraryTest;

void MakeSocket(const char* path) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
}

// None is waited for, and none is read: some never end, and one that is opened may already be used by it.
TEST_F(CFilesTest, WhatIsNoRegularFileIsRefusedAtOnce) {
    const fs::path table = "enus/frudata/str/frudata.str";
    const std::pair<const char*, void (*)(const fs::path& path)> kinds[] = {
        {"directory", [](const fs::path& path) { fs::create_directory(path); }},
        {"FIFO", [](const fs::path& path) { EXPECT_EQ(mkfifo(path.c_str(), 0600), 0); }},
        {"socket", [](const fs::path& path) { MakeSocket(path.c_str()); }},
        {"device", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }},
        {"full device", [](const fs::path& path) { fs::create_symlink("/dev/full", path); }},
        {"file of sysfs", [](const fs::path& path) { fs::create_symlink("/sys/devices/system/cpu/online", path); }}};
    ASSERT_EQ(Load(FruText(BoardFru())), 0U);
    alarm(30);
    for (const auto& [kind, make] : kinds) {
        SCOPED_TRACE(kind);
        for (const fs::path& path : {fs::path("in.fru"), table, fs::path("DBGLOG.txt")}) {
            fs::remove(path);
            make(path);
        }
        EXPECT_EQ(m_table->LoadConfigurationFromFile(m_table, L"in.fru", nullptr), FRU_STATUS_FILE_READ_ERROR);
        EXPECT_EQ(LastError(), L"T89 in.fru");
        EXPECT_EQ(m_table->SetLanguageLocale(m_table, L"en", L"us"), FRU_STATUS_STRING_RESOURCE_ERROR);
        EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, L"in.fru", nullptr), FRU_STATUS_FILE_CREATE_ERROR);
        EXPECT_EQ(LastError(), L"T100 in.fru");
        Dbg(L"lost", 1);
        fs::remove("DBGLOG.txt");
    }
    alarm(0);
}

TEST_F(CFilesTest, TheLogMayBeATerminal) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0)
        GTEST_SKIP() << "there are no terminals here";
    const int other = open(ptsname(terminal), O_RDWR | O_NOCTTY); // or the line would go when the log is closed
    fs::create_symlink(ptsname(terminal), "DBGLOG.txt");
    Dbg(L"line %u", 1, 7);
    char text[16] = {};
    EXPECT_EQ(read(terminal, text, sizeof text), 9); // the terminal makes CR LF of LF
    EXPECT_STREQ(text, "line 7\r\r\n");
    close(other);
    close(terminal);
}

TEST_F(CFilesTest, NoDescriptorIsInheritedByOtherPrograms) {
    bool isTableOpen = false;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (fs::read_symlink(entry, gone).filename() != "frudata.str")
            continue;
        isTableOpen = true;
        EXPECT_NE(fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_TRUE(isTableOpen);
}

} // namespace
} // namespace Frudata_Tests
