// Text files and binary images: shown, changed, converted, refused.
#include "tests/fructl/support.h"
#include "tests/fruimage/shapes.h"

namespace Fructl_Tests {

using namespace Frudata_Sim;

using CFileTest = CFructlTest;

TEST_F(CFileTest, ShowsEveryKindOfField) {
    WriteFile("types.bin", FruImage::Shape("every encoding").image);
    const RESULT shown = Fructl("show types.bin --json");
    ASSERT_EQ(shown.status, 0) << shown.errors;
    const json fields = shown.Json()["areas"][0]["fields"];
    const std::vector<std::array<const char*, 3>> expected = {{"00 01 FE", "binary", "0001FE"},
                                                              {"123 -.", "bcd+", "123ABC"},
                                                              {"IPMI", "6-bit", "29DCA6"},
                                                              {"L\u00E9", "text", "4CE9"}};
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_EQ(fields[index]["value"], expected[index][0]);
        EXPECT_EQ(fields[index]["type"], expected[index][1]);
        EXPECT_EQ(fields[index]["raw"], expected[index][2]);
    }
    // The rack mount chassis, for whose name the library has no text.
    const RESULT rack = Fructl("get server/bmc.bin chassis.type board.mfg-date product.language internal.data");
    EXPECT_EQ(rack.output,
              "Rack mount chassis\n2021-06-01T08:00Z\nEnglish\n01 10 20 30 40 50 60 70 80 90 A0 B0 00 00 00 00\n");
    EXPECT_THAT(Fructl("show server/bmc.bin --lang de-de").output, HasSubstr("Seriennummer"));
}

TEST_F(CFileTest, TextAndBinaryHoldTheSame) {
    ASSERT_EQ(Fructl("save server/bmc.bin -o a.fru --title 'Main board'").status, 0);
    ASSERT_EQ(Fructl("save a.fru --binary -o b.bin").status, 0);
    ASSERT_EQ(Fructl("save b.bin -o c.fru").status, 0);
    const BYTES original = ReadFile("server/bmc.bin");
    EXPECT_EQ(Part(ReadFile("b.bin"), 0, 0x164), Part(original, 0, 0x164));
    EXPECT_EQ(Fructl("diff a.fru c.fru --exit-code").status, 0);
    EXPECT_EQ(Fructl("show a.fru --json").Json()["source"]["title"], "Main board");
    // What a person wrote beside the values stays.
    Shell("sed -i \"s/'NW-2000 Mainboard'/& \\/\\/ the second one/\" a.fru");
    ASSERT_EQ(Fructl("set a.fru board.serial-number=OTHER-1 board.custom+=http://x").status, 0);
    EXPECT_THAT(ReadText("a.fru"), HasSubstr("'NW-2000 Mainboard' // the second one"));
    EXPECT_EQ(Fructl("get a.fru board.serial-number board.custom3").output, "OTHER-1\nhttp://x\n");
}

TEST_F(CFileTest, RefusesValuesBeforeAnythingChanges) {
    const struct {
        std::string assignments;
        int status;
        const char* reason;
    } CASES[] = {
        {"board.serial-number=x", 2, "end of the fields"},
        {"board.serial-number=\"$(printf 'a\\tb')\"", 2, "control character"},
        {"board.serial-number=\xE2\x82\xAC", 2, "outside Latin-1"},
        {"board.serial-number=" + std::string(64, 'x'), 2, "64 bytes"},
        {"board.serial-number:7-bit=AB", 1, "no such encoding"},
        {"board.serial-number=OK12 board.custom4=xx", 2, "2 custom fields"},
        {"board.custom9-", 2, "board.custom9"},
        {"board.part-number-", 2, "only custom fields"},
        {"chassis.type=castle", 2, "no chassis type"},
        {"board.mfg-date=2026-02-30", 2, "no date"},
        {"board.mfg-date=2027-11-24T20:16", 2, "outside"},
        {"board.language=castle", 2, "no language"},
        {"internal.data=00", 2, "internal"},
        {"internal.data=0G", 2, "not hexadecimal"},
        {"multirecord.data=00", 2, "multirecord"},
        {"header.data=00", 2, "cannot be replaced"},
        {"board.custom0=xx", 1, "no such field"},
        {"product.serial=xx", 1, "no such field"},
        {"board.file-id", 1, "AREA.FIELD=VALUE"},
        {"board.file-id=ab board.file-id=cd", 1, "set twice"},
        {"board.file-id=ab --commit", 1, "--commit"},
        {"board.file-id=ab -o x --backup y", 1, "--backup"},
        {"", 1, "missing"},
    };
    ASSERT_EQ(Fructl("save server/bmc.bin -o a.fru").status, 0);
    const BYTES image = ReadFile("server/bmc.bin");
    const BYTES text = ReadFile("a.fru");
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.assignments);
        for (const char* file : {"server/bmc.bin ", "a.fru "}) {
            const RESULT result = Fructl("set " + (file + one.assignments));
            EXPECT_EQ(result.status, one.status);
            EXPECT_THAT(result.errors, HasSubstr(one.reason));
            EXPECT_EQ(result.output, "");
        }
    }
    EXPECT_EQ(ReadFile("server/bmc.bin"), image);
    EXPECT_EQ(ReadFile("a.fru"), text);
}

TEST_F(CFileTest, SetReplacesTheFileAndNothingElse) {
    ASSERT_EQ(Fructl("save server/bmc.bin -o a.fru").status, 0);
    namespace fs = std::filesystem;
    fs::permissions("a.fru", fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_EQ(Fructl("set a.fru board.serial-number=" + std::string(45, 'x') +
                     " board.product-name= board.mfg-date=2026-05-31T14:30Z chassis.type='mini tower' "
                     "product.custom2=\xC3\x84rger")
                  .status,
              0);
    EXPECT_EQ(fs::status("a.fru").permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_THAT(ReadText("a.fru"), testing::StartsWith("_LF_NAME\t'a.fru'\n"));
    const json differences = Fructl("diff server/bmc.bin a.fru --json").Json();
    std::vector<std::string> names;
    for (const json& one : differences["differences"])
        names.push_back(one["name"]);
    EXPECT_THAT(names, testing::ElementsAre("chassis.type", "board.mfg-date", "board.product-name",
                                            "board.serial-number", "product.custom2"));
    EXPECT_EQ(Fructl("get a.fru board.mfg-date --raw").output, "E615F4\n");
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 4) << "server, a.fru, streams";
    fs::create_symlink("a.fru", "link.fru");
    ASSERT_EQ(Fructl("set link.fru board.custom1=behind").status, 0);
    EXPECT_TRUE(fs::is_symlink("link.fru"));
    EXPECT_EQ(Fructl("get a.fru board.custom1").output, "behind\n");
}

TEST_F(CFileTest, NamesWhatIsWrongWithAFile) {
    const struct {
        FRU_DAMAGE damage;
        const char* code;
        const char* reason;
        int set; ///< status of a change of the product area
    } IMAGES[] = {{FRU_DAMAGE::HEADER_CHECKSUM, "header-checksum", "should be", 4},
                  {FRU_DAMAGE::AREA_CHECKSUM, "area-checksum", "should be", 0},
                  {FRU_DAMAGE::LENGTH_PAST_END, "area-past-end", "passes the end", 0},
                  {FRU_DAMAGE::LENGTH_ZERO, "area-length-zero", "length is 0", 0}};
    for (const auto& one : IMAGES) {
        BYTES image = SamplePsuFru(1);
        DamageFruImage(image, one.damage);
        WriteFile("bad.bin", image);
        const RESULT result = Fructl("show bad.bin --json");
        EXPECT_EQ(result.status, 4);
        EXPECT_EQ(result.Json()["status"], "damaged");
        EXPECT_EQ(result.Json()["problems"][0]["code"], one.code);
        EXPECT_THAT(result.errors, HasSubstr(one.reason));
        EXPECT_EQ(Fructl("set bad.bin product.asset-tag=12").status, one.set);
        EXPECT_EQ(Fructl("set bad.bin board.file-id=12").status, 4);
    }
    EXPECT_EQ(Fructl("show nowhere.fru").status, 2);
    EXPECT_EQ(Fructl("show .").status, 2);
}

TEST_F(CFileTest, DumpsAndLoadsRawAreas) {
    ASSERT_EQ(Fructl("dump server/bmc.bin internal -o internal.bin").status, 0);
    EXPECT_EQ(ReadFile("internal.bin"), Part(ReadFile("server/bmc.bin"), 8, 16));
    WriteFile("work.bin", ReadFile("server/bmc.bin"));
    WriteText("new.hex", Fructl("dump work.bin internal").output);
    Shell("sed -i 's/ 10 20 / AA BB /' new.hex");
    ASSERT_EQ(Fructl("load work.bin internal new.hex").status, 0);
    EXPECT_EQ(Fructl("get work.bin internal.data").output, "01 AA BB 30 40 50 60 70 80 90 A0 B0 00 00 00 00\n");
    WriteText("short.hex", "01 02");
    EXPECT_EQ(Fructl("load work.bin internal short.hex").status, 2);
    // A longer chain of records may use the room behind it; one with a wrong checksum may not.
    WriteText("records.hex", "C0 82 20 00 9E " + std::string(64, '0'));
    ASSERT_EQ(Fructl("load work.bin multirecord records.hex").status, 0);
    EXPECT_EQ(Fructl("show work.bin --json").Json()["areas"][4]["records"][0]["data"], std::string(64, '0'));
    WriteText("records.hex", "C0 82 02 00 BC 01 02");
    EXPECT_EQ(Fructl("load work.bin multirecord records.hex").status, 2);
    EXPECT_EQ(Fructl("load work.bin header internal.bin").status, 2);
    EXPECT_EQ(Fructl("dump work.bin board").status, 1);
    EXPECT_EQ(Fructl("map work.bin").status, 0);
}

} // namespace Fructl_Tests
