// Text files and binary images: shown, changed, converted, refused.
#include "tests/fructl/support.h"

namespace Fructl_Tests {

using namespace Frudata_Sim;

using CFileTest = CFructlTest;

namespace {

ProductArea ProductWith(std::vector<FruField> custom) {
    return {
        .manufacturer = "Maker", .productName = "Thing", .serialNumber = "S1234", .customFields = std::move(custom)};
}

/// Chassis, board and product with three custom fields each.
BYTES ThreeCustoms(const std::vector<FruField>& chassis, const std::vector<FruField>& board,
                   const std::vector<FruField>& product) {
    return CFruImageBuilder()
        .Chassis({.partNumber = "CP", .customFields = chassis}, 16)
        .Board({.minutes = 1, .manufacturer = "Maker", .customFields = board}, 16)
        .Product(ProductWith(product), 16)
        .Build();
}

/// Every type of field: 6-bit "IPMI!!" (as in the standard's example, then more), BCD plus, binary, Latin-1.
BYTES EveryType() {
    return CFruImageBuilder()
        .Board({.minutes = 0xCBFAC0,
                .manufacturer = {FIELD_TYPE::PACKED_ASCII, "\x29\xDC\xA6"},
                .productName = {FIELD_TYPE::BCD_PLUS, "\x12\x3B\xC9"},
                .serialNumber = {FIELD_TYPE::BINARY, std::string("\x00\xFE", 2)},
                .partNumber = "Gr\xFC\xDF"
                              "e",
                .fileId = "f.fru"},
               40)
        .Build();
}

} // namespace

TEST_F(CFileTest, ShowsEveryKindOfFieldFromImageAndText) {
    WriteFile("types.bin", EveryType());
    const RESULT shown = Fructl("show types.bin --json");
    ASSERT_EQ(shown.status, 0) << shown.errors;
    const json fields = shown.Json()["areas"][0]["fields"];
    const std::vector<std::array<const char*, 3>> expected = {{"2021-06-01T08:00Z", "date", "C0FACB"},
                                                              {"IPMI", "6-bit", "29DCA6"},
                                                              {"123-.9", "bcd+", "123BC9"},
                                                              {"00 FE", "binary", "00FE"},
                                                              {"Gr\xC3\xBC\xC3\x9F"
                                                               "e",
                                                               "text", "4772FCDF65"}};
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
    // What the text format drops is refused, kept in an image, or written as text on demand.
    WriteFile("types.bin", EveryType());
    const RESULT dropped = Fructl("save types.bin -o types.fru");
    EXPECT_EQ(dropped.status, 2);
    EXPECT_THAT(dropped.errors, HasSubstr("board.manufacturer, board.serial-number"));
    EXPECT_FALSE(std::filesystem::exists("types.fru"));
    ASSERT_EQ(Fructl("save types.bin -o types.fru --force").status, 0);
    EXPECT_EQ(Fructl("get types.fru board.manufacturer board.product-name board.serial-number").output,
              "IPMI\n123-.9\n00 FE\n");
}

TEST_F(CFileTest, CustomFieldsAreTheSameShownSetAndSaved) {
    const std::vector<FruField> before = {"one-1", "two-2", "three"};
    for (int position = 0; position < 3; ++position) {
        std::vector<FruField> after = before;
        after[static_cast<std::size_t>(position)] = "NEW-X";
        const std::string number = std::to_string(position + 1);
        for (const char* area : {"chassis", "board", "product"}) {
            SCOPED_TRACE(area + number);
            const std::string name = area + (".custom" + number);
            const BYTES expected = ThreeCustoms(*area == 'c' ? after : before, *area == 'b' ? after : before,
                                                *area == 'p' ? after : before);
            WriteFile("x.bin", ThreeCustoms(before, before, before));
            ASSERT_EQ(Fructl("save x.bin -o x.fru").status, 0);
            EXPECT_EQ(Fructl("get x.bin " + name).output,
                      std::string(before[static_cast<std::size_t>(position)].bytes) + "\n");
            ASSERT_EQ(Fructl("set x.bin " + name + "=NEW-X").status, 0);
            EXPECT_EQ(ReadFile("x.bin"), expected);
            ASSERT_EQ(Fructl("set x.fru " + name + "=NEW-X").status, 0);
            EXPECT_EQ(Fructl("get x.fru " + name).output, "NEW-X\n");
            ASSERT_EQ(Fructl("save x.fru --binary -o y.bin").status, 0);
            EXPECT_EQ(ReadFile("y.bin"), expected);
        }
    }
}

TEST_F(CFileTest, RefusesValuesBeforeAnythingChanges) {
    const struct {
        std::string assignments;
        int status;
        const char* reason;
    } CASES[] = {
        {"board.serial-number=X", 2, "C1h"},
        {"board.serial-number=\"$(printf 'a\\tb')\"", 2, "control character"},
        {"board.serial-number=\xE2\x82\xAC", 2, "outside Latin-1"},
        {"board.serial-number=\xFF", 2, "argument 3: "},
        {"board.serial-number=" + std::string(64, 'x'), 2, "64 bytes"},
        {"board.serial-number=" + std::string(38, 'x'), 2, "room for 37"},
        {"board.serial-number=" + std::string(24, 'x') + " board.file-id=" + std::string(20, 'x'), 2, "28 more bytes"},
        {"board.serial-number=OK12 board.custom3=xx", 2, "2 custom fields"},
        {"board.serial-number=OK12 chassis.type=24", 2, "types 1 to 23"},
        {"chassis.type=0", 2, "types 1 to 23"},
        {"chassis.type=castle", 2, "no chassis type"},
        {"board.mfg-date=2026-02-30", 2, "no date"},
        {"board.mfg-date=2026-02-+3", 2, "no date"},
        {"board.mfg-date=2026-02-03Thh:ii", 2, "no date"},
        {"board.mfg-date=2026-02-03T10:00:30Z", 2, "whole minutes"},
        {"board.mfg-date=1996-01-01", 2, "outside"},
        {"board.mfg-date=2027-11-24T20:16", 2, "outside"},
        {"board.language=3", 2, "not set"},
        {"internal.data=00", 2, "fructl load"},
        {"board.custom0=xx", 1, "no such field"},
        {"product.serial=xx", 1, "no such field"},
        {"board.file-id", 1, "AREA.FIELD=VALUE"},
        {"board.file-id=ab board.file-id=cd", 1, "set twice"},
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
    // These a text file alone cannot hold.
    for (const char* value : {"\"it's\"", "http://x", "X --force"}) {
        EXPECT_EQ(Fructl(std::string("set a.fru board.serial-number=") + value).status, 2) << value;
    }
    EXPECT_EQ(ReadFile("server/bmc.bin"), image);
    EXPECT_EQ(ReadFile("a.fru"), text);
    EXPECT_EQ(Fructl("set server/bmc.bin board.serial-number=X --force").status, 0);
}

TEST_F(CFileTest, SetReplacesTheFileAndNothingElse) {
    ASSERT_EQ(Fructl("save server/bmc.bin -o a.fru").status, 0);
    namespace fs = std::filesystem;
    fs::permissions("a.fru", fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    // One value shrinks for the other: together they fit.
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
    ASSERT_EQ(Fructl("save server/bmc.bin -o good.fru").status, 0);
    const struct {
        const char* edit; ///< sed script
        int status;
        const char* reason;
    } TEXTS[] = {{"s/'NW-2000 Mainboard'/'NW-2000 Main/", 2, "Board"},
                 {"s/^_DEV_ID.*/_DEV_ID 100/", 2, "bad.fru"},
                 {"s/^_LF_FMT_VER.*/_LF_FMT_VER/", 4, "quoted"},
                 {"/_SEE_COMMON/,/_SEE_INTERNAL/s/^.AA$/AA 00/", 4, "8 bytes"},
                 {"/_SEE_BOARD/,$s/^0F$/0F0/", 4, "odd number"},
                 {"/_SEE_COMMON/,/_SEE_INTERNAL/s/^.AA$/AB/", 4, "checksum is ABh and should be AAh"},
                 {"/_SEE_MULTIREC/,$d", 2, "bad.fru"}};
    for (const auto& one : TEXTS) {
        SCOPED_TRACE(one.edit);
        WriteText("edit.sed", one.edit);
        Shell("sed -f edit.sed good.fru > bad.fru");
        const RESULT result = Fructl("get bad.fru product.name");
        EXPECT_EQ(result.status, one.status) << result.errors;
        EXPECT_THAT(result.errors, HasSubstr(one.reason));
        EXPECT_EQ(result.output, "");
    }
    const struct {
        FRU_DAMAGE damage;
        const char* code;
        const char* reason;
    } IMAGES[] = {{FRU_DAMAGE::HEADER_CHECKSUM, "header-checksum", "should be"},
                  {FRU_DAMAGE::AREA_CHECKSUM, "area-checksum", "should be"},
                  {FRU_DAMAGE::LENGTH_PAST_END, "area-past-end", "passes the end"},
                  {FRU_DAMAGE::LENGTH_ZERO, "area-length-zero", "length is 0"},
                  {FRU_DAMAGE::NOT_FRU, "not-a-fru", "format version"}};
    for (const auto& one : IMAGES) {
        BYTES image = SamplePsuFru(1);
        DamageFruImage(image, one.damage);
        WriteFile("bad.bin", image);
        const RESULT result = Fructl("show bad.bin --json");
        EXPECT_EQ(result.status, 4);
        EXPECT_EQ(result.Json()["status"], "damaged");
        EXPECT_EQ(result.Json()["problems"][0]["code"], one.code);
        EXPECT_THAT(result.errors, HasSubstr(one.reason));
        EXPECT_EQ(Fructl("set bad.bin product.asset-tag=12").status, 4);
        EXPECT_EQ(ReadFile("bad.bin"), image);
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

TEST_F(CFileTest, HelpExamplesAndCompletionAreRight) {
    for (const char* command : {"show", "get", "set", "fields", "save", "commit", "restore", "apply", "diff", "map",
                                "dump", "load", "scan", "probe", "info"}) {
        const RESULT help = Fructl(std::string(command) + " --help");
        EXPECT_EQ(help.status, 0);
        EXPECT_THAT(help.output, HasSubstr(std::string("Examples:\n  fructl ") + command));
    }
    EXPECT_EQ(Fructl("bogus").status, 1);
    EXPECT_EQ(Fructl("show --bogus").status, 1);
    EXPECT_EQ(Fructl("show server/bmc.bin server/psu.bin").status, 1);
    const std::string complete = "bash -c 'source " FRUCTL_COMPLETION "; COMP_WORDS=(" FRUCTL_PROGRAM " set a.fru "
                                 "board.s); COMP_CWORD=3; _fructl; echo ${COMPREPLY[@]}'";
    EXPECT_EQ(Shell(complete).output, "board.serial-number=\n");
}

} // namespace Fructl_Tests
