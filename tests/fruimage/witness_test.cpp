// A reader that is not ours: FreeIPMI's ipmi-fru reads what edits and growth make.
#include "tests/fruimage/shapes.h"
#include "tests/fruimage/witness.h"

namespace FruImage {

namespace {

TEST(Witness, FreeIpmiReadsEditedImages) {
    if (!HasWitness())
        GTEST_SKIP() << "ipmi-fru (package freeipmi-tools) is not installed";
    const std::string tag = "Tag of thirty characters, abcd";
    const std::pair<std::string, std::string> fields[] = {
        {"product.asset-tag", "FRU Product Asset Tag: " + tag},
        {"product.serial-number", "FRU Product Serial Number: PSN-12345"},
        {"product.name", "FRU Product Name: Server 9"},
        {"board.manufacturer", "FRU Board Manufacturer: Maker"},
        {"board.part-number", "FRU Board Part Number: BPN-77"},
        {"chassis.serial-number", "FRU Chassis Serial Number: CSN-22"}};
    for (const SHAPE& shape : Shapes()) {
        const FRU fru = Parse(shape.image);
        const EDIT edit = Set("product.asset-tag", tag);
        const Result<PLAN> plan = Apply(fru, {&edit, 1}, {.deviceSize = std::max<std::size_t>(512, fru.bytes.size())});
        // Of two-byte text, another format version and what stays damaged it shows nothing.
        if (!plan || !shape.damages.empty() || shape.name == "two-byte text" || shape.name == "another format version")
            continue;
        const std::string text = Witness(plan->bytes);
        const FRU after = Parse(plan->bytes);
        for (const auto& [name, line] : fields)
            if (const FIELD* field = after.Find(Name(name)); field && line.ends_with(": " + field->text)) {
                EXPECT_NE(text.find(line), std::string::npos) << shape.name << ": " << line << " in\n" << text;
            }
        EXPECT_EQ(text.find("hecksum"), std::string::npos) << shape.name << text;
    }
}

} // namespace

} // namespace FruImage
