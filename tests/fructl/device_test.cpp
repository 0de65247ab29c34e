// Devices of a simulated server: committed, verified, restored.
#include "tests/fructl/support.h"
#include "tests/fruimage/shapes.h"

namespace Fructl_Tests {

using namespace Frudata_Sim;

using CDeviceTest = CFructlTest;

namespace {

constexpr struct {
    const char* device;
    const char* file;
} DEVICES[] = {
    {"system", "bmc"}, {"'PSU 1'", "psu"}, {"type=at24,bus=1,address=0xA0", "riser"}, {"Backplane", "backplane"}};

std::string FileOf(const char* file) {
    return std::string("server/") + file + ".bin";
}

} // namespace

TEST_F(CDeviceTest, CommitChangesWhatItSaysAndRestoreBringsItBack) {
    for (const auto& one : DEVICES) {
        SCOPED_TRACE(one.device);
        const BYTES before = ReadFile(FileOf(one.file));
        const std::string at = std::string(" --at ") + one.device + " --sim server ";
        const RESULT commit =
            Fructl("commit" + at + "board.serial-number=NEW-42 board.mfg-date=2026-05-31 --backup backup.bin");
        ASSERT_EQ(commit.status, 0) << commit.errors;
        EXPECT_THAT(commit.output, HasSubstr("\" -> \"NEW-42\"\n"));
        EXPECT_THAT(commit.output, HasSubstr("Written and verified."));
        // The same change made to the image as a file.
        WriteFile("expected.bin", before);
        ASSERT_EQ(Fructl("set expected.bin board.serial-number=NEW-42 board.mfg-date=2026-05-31").status, 0);
        EXPECT_EQ(ReadFile(FileOf(one.file)), ReadFile("expected.bin"));
        EXPECT_EQ(Fructl("get" + at + "board.serial-number").output, "NEW-42\n");
        const BYTES backup = ReadFile("backup.bin");
        EXPECT_EQ(backup, Part(before, 0, backup.size()));
        // To a device whose contents no longer load.
        BYTES broken = ReadFile(FileOf(one.file));
        DamageFruImage(broken, FRU_DAMAGE::HEADER_CHECKSUM);
        WriteFile(FileOf(one.file), broken);
        EXPECT_EQ(Fructl("commit" + at + "board.serial-number=NEW-43").status, 4);
        ASSERT_EQ(Fructl(std::string("restore backup.bin --yes --sim server --to ") + one.device).status, 0);
        EXPECT_EQ(Part(ReadFile(FileOf(one.file)), 0, backup.size()), backup);
        std::filesystem::remove("backup.bin");
    }
}

TEST_F(CDeviceTest, CustomFieldsReachTheDevice) {
    // A change of nothing but custom fields is written in every area, the product area too.
    const RESULT commit =
        Fructl("commit --system --sim server chassis.custom1=C-1 board.custom2=B-2 product.custom1=P-1 "
               "--no-backup");
    ASSERT_EQ(commit.status, 0) << commit.errors;
    WriteFile("copy.bin", ReadFile("server/bmc.bin"));
    EXPECT_EQ(Fructl("get copy.bin chassis.custom1 chassis.custom2 board.custom1 board.custom2 product.custom1 "
                     "product.custom2")
                  .output,
              "C-1\nSlot 30\nMAC 02:00:00:00:00:01\nB-2\nP-1\nOwner B\n");
}

TEST_F(CDeviceTest, VerificationTellsTheTruth) {
    const struct {
        const char* fault;
        int status;
        bool changed;
    } CASES[] = {
        {R"([{"cmd":"0x12","action":"dropWrite"}])", 5, false},
        {R"([{"cmd":"0x12","action":"acknowledgeNone"}])", 5, false},
        {R"([{"cmd":"0x12","action":"dropWrite","occurrence":6,"times":1}])", 5, true},
        {R"([{"cmd":"0x12","action":"cut","value":18}])", 3, true},
        {R"([{"cmd":"0x12","action":"completionCode","value":"0x80","occurrence":18}])", 3, true},
        {R"([{"cmd":"0x11","action":"completionCode","value":"0xC3","occurrence":9}])", 3, false},
        {R"([{"cmd":"0x11","action":"transportError"}])", 3, false},
        {R"([{"cmd":"0x11","action":"nodeBusy","times":2},{"cmd":"0x12","action":"nodeBusy","times":3}])", 0, true},
        {R"([{"cmd":"0x11","action":"completionCode","value":"0xCA","times":1}])", 0, true}};
    const BYTES before = ReadFile("server/bmc.bin");
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.fault);
        std::filesystem::remove("backup.bin");
        SetFaults("server", one.fault);
        const RESULT commit = Fructl("commit --system --sim server board.serial-number=NEW-42 product.asset-tag=A-1 "
                                     "--backup backup.bin");
        EXPECT_EQ(commit.status, one.status) << commit.errors;
        EXPECT_EQ(ReadFile("server/bmc.bin") != before, one.changed);
        if (!std::filesystem::exists("backup.bin"))
            continue;
        if (commit.status != 0) {
            EXPECT_THAT(commit.errors, HasSubstr("fructl restore 'backup.bin' --to system"));
        }
        SetFaults("server", "[]");
        EXPECT_EQ(Fructl("restore backup.bin --to system --sim server").status, 0);
        EXPECT_EQ(ReadFile("server/bmc.bin"), before);
    }
    // Writing bytes, the tool sees for itself that none were taken.
    SetFaults("server", CASES[1].fault);
    EXPECT_EQ(Fructl("restore backup.bin --to system --sim server").status, 3);
    SetFaults("server", CASES[0].fault);
    WriteFile("server/bmc.bin", BYTES(before.size()));
    EXPECT_EQ(Fructl("restore backup.bin --to system --sim server").status, 2) << "nobody to ask about a blank device";
    EXPECT_EQ(Fructl("restore backup.bin --to system --sim server --yes").status, 5);
}

TEST_F(CDeviceTest, APowerCutAtAnyWriteIsRepaired) {
    const std::string text(60, 'z');
    const struct {
        std::string words;
        const char* shown; ///< in the difference
    } CHANGES[] = {{"commit board.serial-number=B-42 chassis.serial-number=C-1", "-> \"B-42\""},
                   {"commit chassis.custom+=" + text, "board area: moves"},
                   {"commit board.custom+=" + text, "product area: moves"},
                   {"commit product- board.custom2-", "product area: removed"},
                   {"set --commit product.name:6-bit=NW-2 product.asset-tag=" + text, "multirecord area: moves"}};
    const BYTES before = ReadFile("server/bmc.bin");
    for (const auto& change : CHANGES) {
        int whole = 0;
        int status = 3;
        for (int cut = 0; status != 0; ++cut) {
            SCOPED_TRACE(change.words + " " + std::to_string(cut));
            ASSERT_LT(cut, 100);
            std::filesystem::remove("cut.bin");
            SetFaults("server", R"([{"cmd":"0x12","action":"cut","value":)" + std::to_string(cut) + "}]");
            const RESULT commit = Fructl(change.words + " --system --sim server --backup cut.bin");
            status = commit.status;
            EXPECT_TRUE(status == 0 || status == 3) << commit.errors;
            EXPECT_THAT(commit.output, HasSubstr(change.shown));
            SetFaults("server", "[]");
            const int left = Fructl("show --sim server").status;
            EXPECT_TRUE(left == 0 || left == 4) << "whole, or known to be damaged";
            whole += left == 0;
            ASSERT_EQ(Fructl("restore cut.bin --to system --sim server --no-backup").status, 0);
            EXPECT_EQ(ReadFile("server/bmc.bin"), before);
        }
        EXPECT_GT(whole, 1);
    }
}

TEST_F(CDeviceTest, RepairsAndRescuesDevices) {
    const BYTES sound = ReadFile("server/psu.bin");
    BYTES damaged = sound;
    DamageFruImage(damaged, FRU_DAMAGE::AREA_CHECKSUM);
    WriteFile("server/psu.bin", damaged);
    const std::string at = " --at 'PSU 1' --sim server ";
    EXPECT_EQ(Fructl("save" + at + "--binary -o copy.bin").status, 0);
    EXPECT_EQ(ReadFile("copy.bin"), damaged);
    EXPECT_EQ(Fructl("repair" + at).status, 1) << "only with --commit";
    ASSERT_EQ(Fructl("repair --commit" + at + "--backup old.bin").status, 0);
    EXPECT_EQ(ReadFile("old.bin"), damaged);
    EXPECT_EQ(Fructl("show" + at).status, 0);
    // One that can be read only in part is kept in part, and blank ones are what they are.
    SetFaults("server", R"([{"cmd":"0x11","action":"completionCode","value":"0xC3","occurrence":9}])");
    const RESULT part = Fructl("save" + at + "--binary -o part.bin");
    EXPECT_EQ(part.status, 3);
    const BYTES read = ReadFile("part.bin");
    EXPECT_GT(read.size(), 0U);
    EXPECT_EQ(read, Part(ReadFile("server/psu.bin"), 0, read.size()));
    SetFaults("server", "[]");
    WriteFile("server/psu.bin", BYTES(512, 0xFF));
    EXPECT_THAT(Fructl("scan --load --sim server").output, HasSubstr("blank"));
    EXPECT_EQ(Fructl("commit" + at + "board.serial-number=AB123 --no-backup --yes").status, 0);
    EXPECT_EQ(Fructl("get" + at + "board.serial-number").output, "AB123\n");
}

TEST_F(CDeviceTest, RestoreShowsWhatItWritesAndKeepsWhatWasThere) {
    const BYTES old = ReadFile("server/bmc.bin");
    ASSERT_EQ(Fructl("set server/bmc.bin product.asset-tag=Other -o other.bin").status, 0);
    const RESULT dry = Fructl("restore other.bin --to system --sim server --dry-run");
    EXPECT_THAT(dry.output, HasSubstr("product.asset-tag  \"ASSET-0042\" -> \"Other\""));
    EXPECT_EQ(ReadFile("server/bmc.bin"), old);
    ASSERT_EQ(Fructl("restore other.bin --to system --sim server --backup kept.bin").status, 0);
    EXPECT_EQ(ReadFile("kept.bin"), old);
    EXPECT_EQ(ReadFile("server/bmc.bin"), ReadFile("other.bin"));
}

TEST_F(CDeviceTest, RestoreRefusesWhatIsNoSoundImage) {
    BYTES damaged = ReadFile("server/bmc.bin");
    DamageFruImage(damaged, FRU_DAMAGE::AREA_CHECKSUM);
    WriteFile("damaged.bin", damaged);
    ASSERT_EQ(Fructl("save server/bmc.bin -o text.fru").status, 0);
    const std::string to = " --sim server --to ";
    EXPECT_EQ(Fructl("restore damaged.bin" + to + "system").status, 2);
    EXPECT_EQ(Fructl("restore text.fru" + to + "system").status, 2);
    EXPECT_EQ(Fructl("restore server/bmc.bin" + to + "'PSU 1'").status, 2) << "1024 bytes into a device of 512";
    EXPECT_EQ(Fructl("restore server/bmc.bin" + to + "Nobody").status, 2);
    EXPECT_EQ(Fructl("restore server/bmc.bin" + to + "type=imb,colour=3").status, 1);
    EXPECT_EQ(ReadFile("server/bmc.bin"), SampleBmcFru());
    EXPECT_EQ(Fructl("restore damaged.bin --force" + to + "system").status, 0);
    EXPECT_EQ(ReadFile("server/bmc.bin"), damaged);
}

TEST_F(CDeviceTest, AreasKeepTheirPlacesWhateverTheirOrder) {
    // The library would write them packed, in its own order.
    for (const FruImage::SHAPE& shape : FruImage::Shapes()) {
        const FruImage::FRU fru = FruImage::Parse(shape.image);
        const bool hasBoard = fru.Find(FruImage::Name("board.part-number"));
        if (!fru.IsSound() || (!hasBoard && !fru.Find(FruImage::Name("chassis.part-number"))))
            continue;
        SCOPED_TRACE(shape.name);
        const std::string change = hasBoard ? "board.part-number=BPN-78" : "chassis.part-number=CPN-2";
        WriteFile("server/psu.bin", shape.image);
        WriteFile("copy.bin", shape.image);
        const RESULT commit = Fructl("commit --at 'PSU 1' --sim server --no-backup " + change);
        ASSERT_EQ(commit.status, 0) << commit.errors;
        ASSERT_EQ(Fructl("set copy.bin " + change).status, 0);
        EXPECT_EQ(ReadFile("server/psu.bin"), ReadFile("copy.bin"));
    }
}

TEST_F(CDeviceTest, AppliesLoadsAndDumps) {
    ASSERT_EQ(Fructl("save server/bmc.bin -o values.fru").status, 0);
    ASSERT_EQ(Fructl("set values.fru product.custom2=changed chassis.type=17 board.mfg-date=2026-05-31").status, 0);
    const BYTES before = ReadFile("server/bmc.bin");
    EXPECT_THAT(Fructl("apply values.fru --to system --sim server --dry-run").output, HasSubstr("Nothing was written"));
    EXPECT_EQ(ReadFile("server/bmc.bin"), before);
    ASSERT_EQ(Fructl("apply values.fru --to system --sim server --no-backup").status, 0);
    EXPECT_EQ(Fructl("diff values.fru --system --sim server --exit-code").status, 0);
    EXPECT_EQ(Fructl("apply values.fru --to 'PSU 1' --sim server --no-backup").status, 2) << "it has no chassis area";
    EXPECT_EQ(Fructl("set --system --sim server product.asset-tag=77").status, 1) << "only with --commit";
    EXPECT_EQ(Fructl("set --system --sim server product.asset-tag=77 --commit --no-backup").status, 0);
    EXPECT_EQ(Fructl("get --system --sim server product.asset-tag").output, "77\n");
    WriteText("records.hex", "C0 82 20 00 9E " + std::string(64, '0'));
    ASSERT_EQ(Fructl("load --system --sim server multirecord records.hex --commit --no-backup").status, 0);
    EXPECT_EQ(Fructl("dump --system --sim server multirecord --json").Json()["raw"],
              "C08220009E" + std::string(64, '0'));
    const RESULT saved = Fructl("save --at Backplane --sim server -o backplane.fru");
    ASSERT_EQ(saved.status, 0) << saved.errors;
    EXPECT_THAT(ReadText("backplane.fru"), HasSubstr("_FRU_TITLE\t'Backplane'\n"));
    EXPECT_THAT(ReadText("backplane.fru"), HasSubstr("_DEV_ADDRESS\tC0\n"));
}

} // namespace Fructl_Tests
