// Whole servers: found, read, counted; and the purity of what programs read.
#include "tests/fructl/support.h"

namespace Fructl_Tests {

using namespace Frudata_Sim;

using CScanTest = CFructlTest;

TEST_F(CScanTest, OneBadFruHidesNoOther) {
    // The BMC's own FRU is one of the 40.
    const std::vector<FRU_DAMAGE> damages = {FRU_DAMAGE::NONE,          FRU_DAMAGE::HEADER_CHECKSUM,
                                             FRU_DAMAGE::AREA_CHECKSUM, FRU_DAMAGE::LENGTH_PAST_END,
                                             FRU_DAMAGE::LENGTH_ZERO,   FRU_DAMAGE::NONE};
    WriteLargeServer("large", 40, damages, {5});
    const RESULT scan = Fructl("scan --load --json --sim large");
    EXPECT_EQ(scan.status, 6);
    const json report = scan.Json();
    EXPECT_EQ(report["total"], 40);
    EXPECT_EQ(report["readable"], 35);
    std::map<std::string, std::string> problems;
    for (const json& fru : report["frus"])
        if (fru["status"] != "ok")
            problems[fru["source"]["name"]] = fru["problems"][0]["code"];
    const std::map<std::string, std::string> expected = {{"FRU 001", "header-checksum"},
                                                         {"FRU 002", "area-checksum"},
                                                         {"FRU 003", "area-past-end"},
                                                         {"FRU 004", "area-length-zero"},
                                                         {"FRU 005", "unreadable"}};
    EXPECT_EQ(problems, expected);
    const RESULT info = Fructl("info --json --sim large");
    EXPECT_EQ(info.Json()["frus"], 40);
    EXPECT_EQ(info.Json()["validFrus"], 38) << "without the bad header and the dead device";
}

TEST_F(CScanTest, StandardOutputIsForPrograms) {
    ASSERT_EQ(Fructl("save server/bmc.bin -o a.fru").status, 0);
    EXPECT_TRUE(json::accept(Fructl("info --sim server --json --debug 3").output));
    EXPECT_THAT(ReadText("DBGLOG.txt"), HasSubstr("[ENTRY]"));
    EXPECT_EQ(Fructl("commit --system --sim server board.file-id=newer --no-backup --quiet").errors, "");
    // The directory of the texts may have any name; without texts the names of the fields remain.
    std::filesystem::create_directories("d\xC3\xA4ta/enus/frudata/str");
    std::filesystem::copy(std::filesystem::path(FRUCTL_PROGRAM).parent_path() / "../enus/frudata/str/frudata.str",
                          "d\xC3\xA4ta/enus/frudata/str/frudata.str");
    const RESULT moved = Shell("FRUDATA_DATADIR=d\xC3\xA4ta " FRUCTL_PROGRAM " show a.fru --lang en-us");
    EXPECT_EQ(moved.output, Fructl("show a.fru").output);
    EXPECT_EQ(moved.errors, "");
}

TEST_F(CScanTest, NamesAFaultyServer) {
    const RESULT missing = Fructl("scan --sim nowhere");
    EXPECT_EQ(missing.status, 2);
    EXPECT_THAT(missing.errors, HasSubstr("nowhere"));
    // A name from the repository must not steer the terminal, and still names its device.
    ASSERT_EQ(Shell("sed -i 's/\"Riser\"/\"\\\\u009b\\\\u001b[2J\\\\u00a0\"/' server/bmc.json").status, 0);
    EXPECT_THAT(Fructl("scan --sim server").output, HasSubstr("\n  \\xC2\\x9B\\x1B[2J\u00A0 "));
    EXPECT_EQ(Fructl("probe --at '\\xC2\\x9B\\x1B[2J\u00A0' --sim server").status, 0);
    SetFaults("server", R"([{"netFn":"0x06","cmd":"0x01","action":"transportError"}])");
    const RESULT dead = Fructl("info --sim server");
    EXPECT_EQ(dead.status, 3);
    EXPECT_THAT(dead.errors, HasSubstr("Get Device ID"));
}

} // namespace Fructl_Tests
