// FRU text files line by line: every fault with its line, edits that keep what they do not change.
#include "tools/fructl/text/frutext.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace Fructl_Tests {

using namespace Fructl;
using namespace FruImage;

namespace {

/// A file with comments everywhere, a board area of 48 bytes and a record.
constexpr const char* SAMPLE = "// a part\n"
                               "_LF_NAME	'a.fru' // its name\n"
                               "_LF_VERSION	'1.02'\n"
                               "_LF_FMT_VER	'1.50'\n"
                               "_IPMI_VERSION	'1.00'\n"
                               "_FRU (\n"
                               "_FRU_TITLE	'Riser'\n"
                               "_START_ADDR	0000\n"
                               "_DATA_LEN	003F // of the image\n"
                               "_NVS_TYPE	'IMBDEVICE'\n"
                               "_DEV_ID		01\n"
                               "_DEV_CNTR	20\n"
                               "_NVS_LUN	00\n"
                               "_DEV_BUS	FF\n"
                               "_DEV_ADDRESS	20\n"
                               "_SEE_COMMON\n"
                               "	01 00 00 01 00 07 00 F7\n"
                               "// the board\n"
                               "_SEE_BOARD\n"
                               "01 06 19 // version, length, language\n"
                               "5F 29 F1\n"
                               "C9 // maker\n"
                               "'Northwind' // in text\n"
                               "\n"
                               "C8\n"
                               "'Riser 1U'\n"
                               "C7 // serial\n"
                               "'RS-0815' // number\n"
                               "00\n"
                               "C0\n"
                               "C1\n"
                               "_SEE_MULTIREC\n"
                               "C0 82 02 FC C0 // its header\n"
                               "01 03\n"
                               ")\n";

/// SAMPLE with `from` replaced; an empty `from` cuts it behind `to`.
std::string Changed(const std::string& from, const std::string& to, std::string text = SAMPLE) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

/// The bytes of `text`'s image with `change` made, and the checksum of the board area put right.
FruImage::FRU Image(const std::string& text, const std::function<void(BYTES&)>& change) {
    BYTES image = ReadFruText(text, false).image;
    change(image);
    image[0x37] = ZeroChecksum(Slice(image, 8, 0x2F));
    return Parse(image);
}

} // namespace

TEST(FruText, EveryFaultHasItsLine) {
    const struct {
        const char* from;
        const char* to;
        std::size_t line;
        const char* text;
    } ROWS[] = {
        {"_LF_NAME	'a.fru'", "_LF_NAME a.fru", 2, "_LF_NAME has no value in single quotes"},
        {"'Riser'", "'a//b'", 7, "_FRU_TITLE has no value in single quotes"},
        {"003F", "10000", 9, "_DATA_LEN is 10000 and may be at most FFFF"},
        {"003F", "", 9, "_DATA_LEN has no hexadecimal number"},
        {"'IMBDEVICE'", "'AT24C02'", 10,
         "_NVS_TYPE is 'AT24C02', which is none of AT24CO2, DS1624S, IMBDEVICE, MBMC_FRU"},
        {"_DEV_ID		01", "_DEV_ID 100", 11, "_DEV_ID is 100 and may be at most FF"},
        {"_DEV_ID		01", "x _DEV_ID 1", 11, "_DEV_ID does not begin its line"},
        {"_DEV_CNTR	20", "_DEV_CNTR 100", 12, "_DEV_CNTR is 100 and may be at most FF"},
        {"_NVS_LUN	00", "_NVS_LUN 100", 13, "_NVS_LUN is 100 and may be at most FF"},
        {"_DEV_BUS	FF", "_DEV_BUS 100", 14, "_DEV_BUS is 100 and may be at most FF"},
        {"_DEV_ADDRESS	20", "_DEV_ADDRESS 100", 15, "_DEV_ADDRESS is 100 and may be at most FF"},
        {"'IMBDEVICE'", "'MBMC_FRU'", 10, "a FRU of the type MBMC_FRU is taken with the platform code 3 only"},
        {"07 00 F7", "07 00", 16, "the block _SEE_COMMON has 7 bytes and must have 8"},
        {"5F 29 F1", "5F 29 F", 21, "it has an odd number of hexadecimal digits"},
        {"5F 29 F1", "5F 29 G1", 21, "'G' is no hexadecimal digit"},
        {"_SEE_MULTIREC", "_SEE_MULTI", 0, "it ends before _SEE_MULTIREC"},
        {"_FRU (", "_FRU", 0, "it ends before _FRU"},
        {"C0 82 02 FC C0", "C0", 32, "the block _SEE_MULTIREC has 3 bytes, fewer than the 5 of a record's header"},
        {"01 06 19", "01 07 19", 32, "its 7 bytes at 038h overlap the 56 bytes of _SEE_BOARD at 008h"},
    };
    for (const auto& row : ROWS) {
        const FRU_TEXT read = ReadFruText(Changed(row.from, row.to), false);
        ASSERT_EQ(read.faults.size(), 1U) << row.text;
        EXPECT_EQ(read.faults[0].text, row.text);
        EXPECT_EQ(read.faults[0].line, row.line) << row.text;
    }
    const std::string tooLong = Changed("'Riser 1U'", "'" + std::string(512, 'x') + "'");
    EXPECT_EQ(ReadFruText(tooLong, false).faults.at(0).text, "the block _SEE_BOARD has more than 511 bytes");
    EXPECT_FALSE(ReadFruText("", false).faults.empty());
}

TEST(FruText, WhatIsOptionalMayBeMissing) {
    std::string text = Changed("_FRU_TITLE	'Riser'\n", "");
    text = Changed("_NVS_TYPE	'IMBDEVICE'\n", "", Changed(")\n", "", text));
    const FRU_TEXT read = ReadFruText(text, false);
    EXPECT_TRUE(read.faults.empty());
    EXPECT_TRUE(Parse(read.image).IsSound());
    for (const char* type : {"AT24CO2", "DS1624S"})
        EXPECT_TRUE(ReadFruText(Changed("IMBDEVICE", type), false).faults.empty()) << type;
    const std::string miniBmc = "_NVS_TYPE 'MBMC_FRU'\n_MBMC_SIZE_ADRS 10\n_MBMC_SIZE_DATA 0x20\n_DEV_BUS 0\n";
    const std::size_t begin = text.find("_DEV_ID");
    text.replace(begin, text.find("_DEV_ADDRESS") - begin, miniBmc);
    EXPECT_TRUE(ReadFruText(text, true).faults.empty());
}

TEST(FruText, AnEditKeepsEveryOtherLineAndEveryComment) {
    const FRU_TEXT before = ReadFruText(SAMPLE, false);
    ASSERT_TRUE(before.faults.empty());
    EXPECT_EQ(before.title, "Riser");
    EXPECT_EQ(EditFruText(before, Parse(before.image)), SAMPLE);

    const auto sameLength = Image(SAMPLE, [](BYTES& image) { image[0x0F + 0] = 'S'; });
    EXPECT_EQ(EditFruText(before, sameLength), Changed("'Northwind'", "'Sorthwind'"));

    // The serial number loses its last three bytes; a part number of BCD plus and a binary custom field come.
    const auto fields = Image(SAMPLE, [](BYTES& image) {
        const BYTES rest = {0xC4, 'R', 'S', '-', '0', 0x42, 0x12, 0x34, 0xC0, 0x02, 0xFE, 0xFF, 0xC1};
        std::fill(image.begin() + 0x21, image.begin() + 0x38, BYTE{0});
        std::copy(rest.begin(), rest.end(), image.begin() + 0x21);
    });
    ASSERT_TRUE(fields.IsSound());
    const std::string expected = Changed("C7 // serial\n'RS-0815' // number\n00\nC0\n",
                                         "C4 // serial\n'RS-0' // number\n42\n12 34  // 1234\nC0\n02\nFE FF\n");
    EXPECT_EQ(EditFruText(before, fields), expected);
}

TEST(FruText, AreasComeAndGo) {
    // Without its record, then with it again, at another place.
    const auto removed = Image(SAMPLE, [](BYTES& image) {
        image.resize(0x38);
        image[5] = 0;
        image[7] = ZeroChecksum(Slice(image, 0, 7));
    });
    std::string text = EditFruText(ReadFruText(SAMPLE, false), removed);
    EXPECT_EQ(text.find("MULTIREC"), std::string::npos);
    EXPECT_NE(text.find("_DATA_LEN	0038 // of the image\n"), std::string::npos);
    text.pop_back(); // a last line without an end
    const FRU_TEXT second = ReadFruText(text, false);
    EXPECT_EQ(second.image, removed.bytes);
    EXPECT_EQ(ReadFruText(EditFruText(second, Parse(ReadFruText(SAMPLE, false).image)), false).image,
              ReadFruText(SAMPLE, false).image);
}

TEST(FruText, ComposedAndEditedFilesHoldTheirImages) {
    // Any printable or unprintable bytes in any encoding, in a file composed for them and in one edited to them.
    std::mt19937 random(20260101);
    FRU_TEXT previous = ReadFruText(SAMPLE, false);
    for (int round = 0; round < 300; ++round) {
        BYTES image = ReadFruText(SAMPLE, false).image;
        BYTES fields;
        while (fields.size() < 30) {
            const std::size_t length = random() % 9;
            const BYTE type = static_cast<BYTE>((random() % 4) << 6);
            if ((type | length) == 0xC1 || fields.size() + length > 34)
                continue;
            fields.push_back(static_cast<BYTE>(type | length));
            for (std::size_t index = 0; index < length; ++index)
                fields.push_back(random() % 3 == 0 ? static_cast<BYTE>(random())
                                                   : static_cast<BYTE>("'/_SEE_FRUab)"[random() % 13]));
        }
        fields.resize(41, 0);
        fields[std::size_t{34} + random() % 7] = 0xC1;
        std::copy(fields.begin(), fields.end(), image.begin() + 0x0E);
        image[0x37] = ZeroChecksum(Slice(image, 8, 0x2F));
        const FruImage::FRU fru = Parse(image);
        const FRU_TEXT composed = ReadFruText(ComposeFruText({.name = "it's//", .title = "a/'/b"}, fru), false);
        EXPECT_TRUE(composed.faults.empty());
        EXPECT_EQ(composed.image, image);
        EXPECT_EQ(composed.blocks.at(1).bytes.size() + 1, fru.Find(AREA_ID::BOARD)->used)
            << "padding, checksum: implied";
        const std::string edited = EditFruText(previous, fru);
        EXPECT_EQ(ReadFruText(edited, false).image, image) << edited;
        previous = ReadFruText(edited, false);
    }
}

TEST(FruText, SaysWhyTextCannotHoldAnImage) {
    BYTES image = ReadFruText(SAMPLE, false).image;
    EXPECT_EQ(TextObstacle(Parse(image)), "");
    image.resize(0x48, 0x55);
    EXPECT_EQ(TextObstacle(Parse(image)), "the 9 bytes at 03Fh belong to no area and are not empty");
    BYTES internal = {1, 1, 0, 0, 0, 0, 0, 0xFE};
    internal.resize(8 + 512, 1);
    EXPECT_EQ(TextObstacle(Parse(internal)), "internal: its 512 bytes are more than the 511 of a block");
}

} // namespace Fructl_Tests
