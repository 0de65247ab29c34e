// FRU images of every shape that the standard allows: shown, converted, grown, made from nothing, repaired.
#include "tests/fructl/support.h"
#include "tests/fruimage/shapes.h"

#include <set>

namespace Fructl_Tests {

using namespace FruImage;

class CModelTest : public CFructlTest {};

namespace {

FRU ParsedFile(const std::string& name) {
    return Parse(ReadFile(name));
}

} // namespace

TEST_F(CModelTest, EverySoundShapeGoesThroughJsonAndText) {
    // More than 511 bytes of internal use, bytes in the padding or between areas, a list that ends early.
    const std::set<std::string> NO_TEXT = {"internal of 4 KiB", "internal last of 4096", "padding",
                                           "unknown bytes between", "list ends early"};
    for (const SHAPE& shape : Shapes()) {
        const FRU fru = Parse(shape.image);
        if (!fru.IsSound())
            continue;
        SCOPED_TRACE(shape.name);
        WriteFile("a.bin", shape.image);
        const RESULT shown = Fructl("show a.bin");
        EXPECT_EQ(shown.status, 0) << shown.errors;
        const RESULT again = Shell(FRUCTL_PROGRAM " show --json a.bin | " FRUCTL_PROGRAM " new --from - -o b.bin");
        EXPECT_EQ(again.status, 0) << again.errors;
        EXPECT_EQ(ReadFile("b.bin"), shape.image);
        const RESULT text = Fructl("save a.bin -o a.fru");
        EXPECT_EQ(text.status, NO_TEXT.contains(shape.name) ? 2 : 0) << text.errors;
        if (text.status != 0)
            continue;
        EXPECT_EQ(Fructl("save a.fru --binary -o c.bin").status, 0);
        for (const AREA& area : fru.areas)
            ExpectSameArea(fru, ParsedFile("c.bin"), area.id);
        EXPECT_EQ(Fructl("diff a.bin a.fru --exit-code").status, 0);
    }
}

TEST_F(CModelTest, FieldsAreAddedRemovedEncodedAndDated) {
    WriteFile("a.bin", Shape("every info area").image);
    const struct {
        const char* words;
        const char* get; ///< names to ask for then
        const char* output;
    } CASES[] = {{"product.custom+=Three", "product.custom1 product.custom3", "one\nThree\n"},
                 {"product.custom3=Three", "product.custom3", "Three\n"},
                 {"product.custom1-", "product.custom1", "two\n"},
                 {"--remove product.custom2", "product.custom1", "one\n"},
                 {"product.custom1- product.custom2- product.custom+=New", "product.custom1", "New\n"},
                 {"board.part-number:6-bit=AB-12", "board.part-number", "AB-12\n"},
                 {"board.part-number:bcd+=12-34 board.custom+:binary='00 FF'", "board.part-number board.custom2",
                  "12-34\n00 FF\n"},
                 {"board.serial-number=X", "board.serial-number", "X\n"},
                 {"chassis.type=28", "chassis.type", "Blade\n"},
                 {"chassis.type='rack mount chassis'", "chassis.type", "Rack mount chassis\n"},
                 {"board.mfg-date=2026-05-31T14:30Z", "board.mfg-date", "2026-05-31T14:30Z\n"},
                 {"product.language=8 product.name=\xC3\x89t\xC3\xA9", "product.name product.serial-number",
                  "\xC3\x89t\xC3\xA9\nPSN-12345\n"},
                 {"internal.data='01 02 03'", "internal.data", "01 02 03 00 00 00 00 00\n"},
                 {"multirecord.data='C0 82 01 FE BF 02'", "multirecord.data", "C0 82 01 FE BF 02\n"},
                 {"product- board-", "chassis.serial-number", "CSN-22\n"}};
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.words);
        const RESULT set = Fructl(std::string("set a.bin -o b.bin ") + one.words);
        ASSERT_EQ(set.status, 0) << set.errors;
        EXPECT_EQ(Fructl(std::string("get b.bin ") + one.get).output, one.output);
        EXPECT_TRUE(ParsedFile("b.bin").IsSound());
    }
    EXPECT_EQ(Fructl("set a.bin board.mfg-date=now").status, 0);
    EXPECT_GT(Fructl("get a.bin board.mfg-date").output, "2025");
    EXPECT_EQ(Fructl("get b.bin product.name").status, 2) << "removed with its area";
}

TEST_F(CModelTest, WhatDoesNotFitIsRefusedInNumbers) {
    BYTES full = Shape("no chassis").image;
    full.resize(full.size() - Parse(full).gaps.back().length);
    WriteFile("a.bin", full);
    const std::string value(63, 'x');
    const RESULT refused = Fructl("set a.bin board.custom+=" + value + " --size " + std::to_string(full.size()));
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("need " + std::to_string(full.size() + 64) + " bytes, the device has " +
                                          std::to_string(full.size())));
    EXPECT_EQ(ReadFile("a.bin"), full);
    const RESULT plan = Fructl("set a.bin board.custom+=" + value + " --dry-run");
    EXPECT_EQ(plan.status, 0);
    EXPECT_THAT(plan.output, HasSubstr("product area: moves from"));
    EXPECT_THAT(plan.output, HasSubstr("Nothing was written"));
    EXPECT_EQ(ReadFile("a.bin"), full);
    EXPECT_EQ(Fructl("set a.bin board.custom+=" + value + " --backup old.bin").status, 0);
    EXPECT_EQ(ReadFile("old.bin"), full);
}

TEST_F(CModelTest, MakesAFruFromNothing) {
    ASSERT_EQ(Fructl("new -o n.bin --size 256 board.mfg-date=2026-05-31 board.serial-number=AB123 "
                     "product.custom+=\xC3\x84rger chassis.type=17")
                  .status,
              0);
    const FRU fru = ParsedFile("n.bin");
    EXPECT_TRUE(fru.IsSound());
    EXPECT_EQ(fru.bytes.size(), 256U);
    EXPECT_EQ(Fructl("get n.bin board.mfg-date product.custom1 chassis.type").output,
              "2026-05-31T00:00Z\n\xC3\x84rger\nMain server chassis\n");
    ASSERT_EQ(Fructl("new -o s.bin --spare 40 board.serial-number=AB123").status, 0);
    EXPECT_GE(ParsedFile("s.bin").areas[0].Free(), 40U);
    WriteText("short.json", R"({"board": {"serial-number": "AB123", "custom": ["one", "two"]}, "chassis.type": 23})");
    ASSERT_EQ(Fructl("new --from short.json -o j.bin board.custom2=three").status, 0);
    EXPECT_EQ(Fructl("get j.bin board.serial-number board.custom1 board.custom2 chassis.type").output,
              "AB123\none\nthree\nRack mount chassis\n");
    // A value that was changed in the document counts, although the old bytes stand beside it.
    ASSERT_EQ(Shell(FRUCTL_PROGRAM " show --json n.bin | sed 's/\"AB123\"/\"AB124\"/' | " FRUCTL_PROGRAM
                                   " new --from - -o m.bin")
                  .status,
              0);
    EXPECT_EQ(Fructl("get m.bin board.serial-number").output, "AB124\n");
    const struct {
        const char* document;
        const char* reason;
    } WRONG[] = {{"[1]", "no JSON object"},
                 {"{\"areas\": [{\"name\": \"castle\"}]}", "castle"},
                 {"{\"areas\": [{\"name\": \"board\", \"offset\": \"x\"}]}", "offset"},
                 {"{\"areas\": 3}", "json"},
                 {"{\"areas\": [], \"status\": \"blank\"}", "blank"},
                 {"{\"areas\": [], \"header\": {\"checksum\": {\"ok\": false}}}", "repair"},
                 {"{\"board\": {\"colour\": \"red\"}}", "board.colour"},
                 {"{", "parse error"}};
    for (const auto& one : WRONG) {
        WriteText("wrong.json", one.document);
        const RESULT result = Fructl("new --from wrong.json -o w.bin");
        EXPECT_NE(result.status, 0) << one.document;
        EXPECT_THAT(result.errors, HasSubstr(one.reason));
        EXPECT_FALSE(std::filesystem::exists("w.bin"));
    }
}

TEST_F(CModelTest, DamageLocksOnlyWhatIsDamaged) {
    BYTES image = Shape("every info area").image;
    const FRU sound = Parse(image);
    image[sound.Find(AREA_ID::BOARD)->offset + 7] ^= 0x01; // a letter of the manufacturer
    WriteFile("a.bin", image);
    const struct {
        const char* arguments;
        int status;
        const char* output;
    } CASES[] = {{"get a.bin product.serial-number", 0, "PSN-12345"},
                 {"get a.bin board.serial-number", 4, "BSN0001"},
                 {"get a.bin board.custom7", 4, ""},
                 {"show a.bin", 4, "CSN-22"},
                 {"map a.bin", 4, "CCCC"},
                 {"dump a.bin header", 0, "0000  01"},
                 {"diff a.bin server/bmc.bin", 4, "chassis.serial-number"},
                 {"set a.bin product.asset-tag=Other -o b.bin", 0, ""},
                 {"set a.bin board.serial-number=Other -o c.bin", 4, ""},
                 {"save a.bin -o a.fru", 4, ""}};
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.arguments);
        const RESULT result = Fructl(one.arguments);
        EXPECT_EQ(result.status, one.status);
        EXPECT_THAT(result.output, HasSubstr(one.output));
        EXPECT_THAT(result.errors, HasSubstr("board"));
    }
    ExpectSameArea(Parse(image), ParsedFile("b.bin"), AREA_ID::CHASSIS);
    ExpectSameArea(Parse(image), ParsedFile("b.bin"), AREA_ID::BOARD);
    EXPECT_FALSE(std::filesystem::exists("c.bin"));
    const json report = Fructl("show a.bin --json").Json();
    EXPECT_EQ(report["status"], "damaged");
    EXPECT_EQ(report["findings"][0]["severity"], "damage");
    EXPECT_EQ(report["findings"][0]["code"], "area-checksum");
    EXPECT_EQ(Fructl("save a.bin --binary -o copy.bin").status, 0);
    EXPECT_EQ(ReadFile("copy.bin"), image);
}

TEST_F(CModelTest, RepairsWhatLeavesNoDoubt) {
    const BYTES sound = Shape("server").image;
    BYTES image = sound;
    image[3] ^= 0x55;
    WriteFile("a.bin", image);
    const RESULT dry = Fructl("repair a.bin --dry-run");
    EXPECT_EQ(dry.status, 0) << dry.errors;
    EXPECT_THAT(dry.output, HasSubstr("Nothing was written"));
    EXPECT_EQ(ReadFile("a.bin"), image);
    EXPECT_EQ(Fructl("repair a.bin").status, 0);
    EXPECT_EQ(ReadFile("a.bin"), sound);
    EXPECT_EQ(Fructl("repair a.bin").status, 2) << "it is sound now";
    WriteFile("blank.bin", BYTES(256, 0xFF));
    EXPECT_EQ(Fructl("repair blank.bin").status, 4);
}

TEST_F(CModelTest, RecordsHaveFields) {
    ASSERT_EQ(
        Fructl("new -o r.bin --size 256 multirecord.1.type=0 multirecord.1.rated-capacity=750 multirecord.2.type=1")
            .status,
        0);
    EXPECT_EQ(Fructl("get r.bin multirecord.1.rated-capacity multirecord.2.type").output, "750\n0x01\n");
    EXPECT_THAT(Fructl("show r.bin").output, HasSubstr("750 W\n"));
    EXPECT_THAT(Fructl("set r.bin multirecord.1.rated-capacity=800 --dry-run").output,
                HasSubstr("multirecord.1.rated-capacity  \"750 W\" -> \"800 W\"\n"));
    const RESULT built =
        Shell(FRUCTL_PROGRAM " show --json r.bin | sed '/\"rated-capacity\"/,/}/s/: 750/: 800/' | " FRUCTL_PROGRAM
                             " new --from - -o j.bin");
    ASSERT_EQ(built.status, 0) << built.errors;
    ASSERT_EQ(Fructl("set r.bin multirecord.1.rated-capacity=800").status, 0);
    EXPECT_EQ(ReadFile("j.bin"), ReadFile("r.bin"));
    ASSERT_EQ(Fructl("set r.bin multirecord.1- -o s.bin").status, 0);
    EXPECT_EQ(Fructl("diff r.bin s.bin --exit-code").status, 5);
    EXPECT_EQ(Fructl("get s.bin multirecord.1.type").output, "0x01\n");
    for (const char* wrong : {"multirecord.5.type=0", "multirecord.1.colour=1", "multirecord.1.rated-capacity=99999",
                              "multirecord.3.rated-capacity=1", "multirecord.1.type=256"}) {
        EXPECT_EQ(Fructl(std::string("set r.bin ") + wrong).status, 2) << wrong;
    }
}

TEST_F(CModelTest, TellsBlankFromDamagedAndImageFromText) {
    WriteFile("blank.bin", BYTES(256, 0xFF));
    const RESULT blank = Fructl("show blank.bin --json");
    EXPECT_EQ(blank.status, 4);
    EXPECT_EQ(blank.Json()["status"], "blank");
    EXPECT_THAT(blank.errors, HasSubstr("it is blank: every byte is FFh"));
    EXPECT_EQ(Fructl("save blank.bin --binary -o copy.bin").status, 0);
    EXPECT_EQ(ReadFile("copy.bin"), BYTES(256, 0xFF));
    ASSERT_EQ(Fructl("set blank.bin board.serial-number=AB123").status, 0);
    EXPECT_EQ(Fructl("get blank.bin board.serial-number").output, "AB123\n");
    // A header that begins with a letter is a damaged one, not a text.
    BYTES image = Shape("no chassis").image;
    image[0] = 'A';
    WriteFile("letter.bin", image);
    EXPECT_EQ(Fructl("show letter.bin --json").Json()["source"]["kind"], "image");
    EXPECT_EQ(Fructl("get letter.bin product.serial-number").output, "PSN-12345\n");
    WriteText("letter.txt", "Dear Sirs, this is no FRU.\n");
    EXPECT_EQ(Fructl("show letter.txt").status, 2);
}

TEST_F(CModelTest, ChangesOfOneFileAtOnceAreAllKept) {
    WriteFile("shared.bin", Shape("server").image);
    Shell("for n in 1 2 3 4 5 6; do " FRUCTL_PROGRAM " set shared.bin product.custom+=VALUE-$n & done; wait");
    const std::string after = Fructl("get shared.bin 'product.custom*'").output;
    for (const char* value : {"VALUE-1", "VALUE-2", "VALUE-3", "VALUE-4", "VALUE-5", "VALUE-6"})
        EXPECT_THAT(after, HasSubstr(value));
}

} // namespace Fructl_Tests
