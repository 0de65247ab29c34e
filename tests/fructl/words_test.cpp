// German output is German throughout: what the tool and fruimage say has words for it, and no English one is left.
#include "tests/fructl/support.h"
#include "tools/fructl/words/words.h"

#include "fruimage/records/records.h"
#include "fruimage/repair.h"

#include <cstring>
#include <set>
#include <sstream>

namespace Fructl_Tests {

using namespace Fructl;

class CWordsTest : public CFructlTest {};

namespace {

/// Runs of letters; a name such as product.serial-number, or type=imb, is one.
std::set<std::string> WordsOf(std::string_view text) {
    std::string bare(text);
    for (const std::string quote : {"„", "“"})
        for (std::size_t place; (place = bare.find(quote)) != std::string::npos;)
            bare.replace(place, quote.size(), " ");
    std::set<std::string> words;
    std::string word;
    for (const char character : bare + " ") {
        const bool isLetter = (character & 0x80) != 0 || std::isalpha(character);
        if (isLetter || (!word.empty() && (std::isdigit(character) || std::strchr(".-=", character) != nullptr))) {
            word += character;
            continue;
        }
        word.erase(word.find_last_not_of(".-=") + 1);
        if (word.size() > 1)
            words.insert(word);
        word.clear();
    }
    return words;
}

/// Words of the table that are English only, as far as `text` has them.
std::string EnglishIn(std::string_view text) {
    static const std::set<std::string> english = [] {
        std::set<std::string> words;
        for (const PHRASE_ROW& row : DE_DE)
            words.merge(WordsOf(row.english));
        for (const PHRASE_ROW& row : DE_DE)
            for (const std::string& word : WordsOf(row.words))
                words.erase(word);
        // A unit, and names as they are typed.
        for (const char* word : {"VA", "FRU", "chassis", "data", "header", "server", "version"})
            words.erase(word);
        return words;
    }();
    std::string found;
    for (const std::string& word : WordsOf(text))
        found += english.contains(word) ? word + " " : "";
    return found;
}

/// Whether a word is the same in every language: a hexadecimal number, a unit, an area, a field.
bool IsForAll(const std::string& word) {
    static const std::set<std::string> units = {"A", "Hz", "MHz", "VA", "mA", "mV", "ms"};
    const auto isField = [&](const char* area) { return FruImage::ParseFieldName(area + word).has_value(); };
    return word.find_first_not_of("0123456789ABCDEFh") == std::string::npos || units.contains(word) ||
           FruImage::AreaFromName(word) || isField("chassis.") || isField("board.") || isField("product.");
}

/// Each word of what fruimage composes is German: a phrase without a row would stay as it is.
void ExpectGerman(const std::string& english) {
    static const std::set<std::string> german = [] {
        std::set<std::string> words;
        for (const PHRASE_ROW& row : DE_DE)
            words.merge(WordsOf(row.words));
        return words;
    }();
    for (const std::string& word : WordsOf(Spoken(english)))
        EXPECT_TRUE(german.contains(word) || IsForAll(word)) << word << ": " << Spoken(english);
}

} // namespace

TEST(Words, OfTheStandardAreThereAndLeadBack) {
    ChooseWords("de-de");
    for (const FruRecords::RECORD_DESCRIPTION& record : FruRecords::DescribeAllRecords()) {
        EXPECT_LT(FindRow(DE_DE, record.title), std::size(DE_DE)) << record.title;
        for (const FruRecords::FIELD_DESCRIPTION& field : record.fields) {
            EXPECT_LT(FindRow(DE_DE, field.title), std::size(DE_DE)) << field.title;
            ExpectGerman(field.accepts);
        }
    }
    for (UINT8 type = 1; !FruImage::ChassisTypeName(type).empty(); ++type) {
        const std::string name(FruImage::ChassisTypeName(type));
        EXPECT_LT(FindRow(DE_DE, name), std::size(DE_DE)) << name;
        EXPECT_EQ(FruImage::ChassisTypeFromName(InEnglish(Spoken(name))), type) << name;
        EXPECT_EQ(FruImage::ChassisTypeFromName(InEnglish(name)), type) << name;
    }
    for (UINT8 code = 0; !FruImage::LanguageName(code).empty(); ++code) {
        const std::string name(FruImage::LanguageName(code));
        EXPECT_LT(FindRow(DE_DE, name), std::size(DE_DE)) << name;
        EXPECT_EQ(InEnglish(Spoken(name)), name);
    }
}

TEST(Words, ForEveryFindingAndRepair) {
    ChooseWords("de-de");
    const BYTES sound = Frudata_Sim::SampleBmcFru();
    std::set<std::string> codes;
    for (std::size_t offset = 0; offset < 0x170; ++offset)
        for (const UINT8 value : BYTES{0x00, 0x01, 0x13, 0x1B, 0x82, 0xC1, 0xFF}) {
            BYTES image = sound;
            image[offset] = value;
            image.resize(offset % 5 == 4 ? offset : image.size());
            const FruImage::FRU fru = FruImage::Parse(image);
            for (const FruImage::FINDING& finding : fru.findings) {
                codes.insert(finding.code);
                ExpectGerman(finding.text);
            }
            const FruImage::PLAN plan = FruImage::Repair(fru).Value();
            for (const FruImage::CHANGE& change : plan.changes)
                ExpectGerman(change.text);
            for (const std::string& note : plan.notes)
                ExpectGerman(note);
        }
    EXPECT_GE(codes.size(), 17U);
}

TEST_F(CWordsTest, AreGermanInWhateverIsPrinted) {
    std::string records;
    int number = 0;
    for (const int type : {0, 1, 2, 3, 4, 5, 9, 10, 0xC0, 0xFA})
        records += " multirecord." + std::to_string(++number) + ".type=" + std::to_string(type);
    ASSERT_EQ(Fructl("new -o rich.bin --lang de-de board.language=deutsch chassis.type=Handgerät "
                     "board.mfg-date='ohne Angabe' internal.data=0102" +
                     records +
                     " multirecord.1.autoswitch=ja multirecord.1.peak-wattage=12 multirecord.1.combined-wattage=5")
                  .status,
              0);
    Frudata_Sim::WriteLargeServer("rack", 10,
                                  {Frudata_Sim::FRU_DAMAGE::NONE, Frudata_Sim::FRU_DAMAGE::HEADER_CHECKSUM,
                                   Frudata_Sim::FRU_DAMAGE::LENGTH_PAST_END},
                                  {6});
    Shell("cp rack/fru002.bin x1; cp rich.bin x2; printf X | dd of=x2 bs=1 conv=notrunc");
    WriteFile("x3", BYTES(64, 0xFF));
    for (const char* arguments :
         {"show rich.bin",
          "map rich.bin",
          "map --system --sim server",
          "get rich.bin '*' --with-names",
          "fields",
          "diff rich.bin server/bmc.bin",
          "scan --sim server",
          "scan --load --sim rack",
          "info --sim server",
          "probe --system --sim server",
          "show x1",
          "show x2",
          "show x3",
          "repair x2 --dry-run",
          "dump rich.bin header",
          "set rich.bin --dry-run chassis.type=Tower board- multirecord.2.standby=ja multirecord.3-",
          "commit --system --sim server --dry-run board.custom+=1234567890123456789012345678901234567890 "
          "board.mfg-date=jetzt multirecord.1- internal-",
          "restore rich.bin --to system --sim server --dry-run",
          "commit --system --sim server --yes board.file-id=a1",
          "commit --system --sim server board.file-id=a1"}) {
        const RESULT result = Shell(std::string("EDITOR=cat LC_ALL=de_DE.UTF-8 " FRUCTL_PROGRAM " ") + arguments);
        EXPECT_NE(result.output, "") << arguments << result.errors;
        std::istringstream lines(result.output);
        for (std::string line; std::getline(lines, line);)
            EXPECT_EQ(EnglishIn(line), "") << arguments << ": " << line;
    }
    const RESULT edit = Shell("EDITOR=cat " FRUCTL_PROGRAM " edit --lang de-de rich.bin");
    EXPECT_EQ(EnglishIn(edit.output), "") << edit.output;
    // What it shows it takes back.
    const RESULT same =
        Shell("export LC_ALL=de_DE; " FRUCTL_PROGRAM " get rich.bin --with-names '[cbp]*' 'm*.[0-9]*.*' | "
              "xargs -d '\\n' " FRUCTL_PROGRAM " set rich.bin");
    EXPECT_THAT(edit.errors + same.errors,
                HasSubstr("nothing to change: every field has its value already\nfructl: n"));
    // JSON has the same values in any language.
    EXPECT_EQ(Fructl("show --json --lang de-de rich.bin | " FRUCTL_PROGRAM " new -q --from - -o again.bin").status, 0);
    EXPECT_EQ(ReadFile("again.bin"), ReadFile("rich.bin"));
}

} // namespace Fructl_Tests
