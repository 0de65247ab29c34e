// Devices of a simulated server: committed, verified, restored.
#include "tests/fructl/support.h"

#include <atomic>
#include <fstream>
#include <thread>

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
        DamageFruImage(broken, FRU_DAMAGE::NOT_FRU);
        WriteFile(FileOf(one.file), broken);
        EXPECT_EQ(Fructl("commit" + at + "board.serial-number=NEW-43").status, 4);
        ASSERT_EQ(Fructl(std::string("restore backup.bin --sim server --to ") + one.device).status, 0);
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
    EXPECT_EQ(Fructl("restore backup.bin --to system --sim server").status, 5);
}

TEST_F(CDeviceTest, APowerCutAtAnyWriteIsRepaired) {
    const std::string change = " --system --sim server chassis.serial-number=C-1 board.serial-number=B-42 --backup ";
    const BYTES before = ReadFile("server/bmc.bin");
    std::map<int, int> reloads;
    int status = 3;
    for (int cut = 0; status != 0; ++cut) {
        SCOPED_TRACE(cut);
        ASSERT_LT(cut, 100);
        const std::string backup = "cut" + std::to_string(cut) + ".bin";
        SetFaults("server", R"([{"cmd":"0x12","action":"cut","value":)" + std::to_string(cut) + "}]");
        status = Fructl("commit" + change + backup).status;
        EXPECT_TRUE(status == 0 || status == 3) << status;
        SetFaults("server", "[]");
        ++reloads[Fructl("show --sim server").status];
        ASSERT_EQ(Fructl("restore " + backup + " --to system --sim server").status, 0);
        EXPECT_EQ(ReadFile("server/bmc.bin"), before);
    }
    // What a cut leaves is whole or known to be damaged.
    EXPECT_EQ(reloads.size(), 2U);
    EXPECT_GT(reloads[0], 2);
    EXPECT_GT(reloads[4], 2);
    RecordProperty("loadable", reloads[0]);
    RecordProperty("damaged", reloads[4]);
}

TEST_F(CDeviceTest, AnotherWriterIsToldFromADeviceThatDropsTheWrite) {
    const BYTES image = ReadFile("server/bmc.bin");
    WriteFile("eeprom", image);
    std::atomic<bool> isDone = false;
    std::thread other([&isDone] {
        std::fstream file("eeprom", std::ios::binary | std::ios::in | std::ios::out);
        for (unsigned int value = 0; !isDone; ++value) {
            file.seekp(100);
            file.put(static_cast<char>(value)).flush();
        }
    });
    RESULT restore{};
    // The other one may happen to leave the byte as it was, or as it should be.
    for (int attempt = 0; attempt < 10 && restore.errors.find("someone else wrote") == std::string::npos; ++attempt)
        restore = Fructl("restore server/bmc.bin --to eeprom=eeprom");
    isDone = true;
    other.join();
    EXPECT_EQ(restore.status, 5);
    EXPECT_THAT(restore.errors, HasSubstr("at 064h"));
    EXPECT_THAT(restore.errors, HasSubstr("neither the old nor the new bytes are there: someone else wrote"));
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
    // Board before chassis, with unknown bytes between and behind them: the library would write them packed.
    const BYTES packed =
        CFruImageBuilder().Chassis({.serialNumber = "CH-1"}, 8).Board({.serialNumber = "BO-1"}, 8).Build();
    const std::size_t chassis = packed[2] * 8U, board = packed[3] * 8U;
    BYTES image(256, 0xEE);
    std::copy(packed.begin(), packed.begin() + 8, image.begin());
    std::copy(packed.begin() + static_cast<std::ptrdiff_t>(board), packed.end(), image.begin() + 16);
    std::copy(packed.begin() + static_cast<std::ptrdiff_t>(chassis),
              packed.begin() + static_cast<std::ptrdiff_t>(board), image.begin() + 128);
    image[7] = static_cast<UINT8>(image[7] + packed[2] - 16 + packed[3] - 2);
    image[2] = 16;
    image[3] = 2;
    WriteFile("server/psu.bin", image);
    WriteFile("copy.bin", image);
    const RESULT commit =
        Fructl("commit --at 'PSU 1' --sim server board.serial-number=BO-2 chassis.serial-number=CH-2 --no-backup");
    ASSERT_EQ(commit.status, 0) << commit.errors;
    ASSERT_EQ(Fructl("set copy.bin board.serial-number=BO-2 chassis.serial-number=CH-2").status, 0);
    const BYTES after = ReadFile("server/psu.bin");
    EXPECT_EQ(after, ReadFile("copy.bin"));
    int changed = 0;
    for (std::size_t offset = 0; offset < after.size(); ++offset)
        changed += after[offset] != image[offset] ? 1 : 0;
    EXPECT_EQ(changed, 4) << "one digit and one checksum in each area";
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
