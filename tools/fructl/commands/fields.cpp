#include "tools/fructl/commands/commands.h"

#include "tools/fructl/titles.h"
#include "tools/fructl/words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

struct LISTED {
    std::string name;
    std::string title;
    std::string hint;
};

std::string Hint(const FIELD_ROW& field) {
    switch (field.kind) {
    case FIELD_KIND::CHASSIS_TYPE:
        return Say("a name or number, see below");
    case FIELD_KIND::DATE:
        return Say("2026-05-31, 2026-05-31T14:30Z (UTC), now or unspecified");
    default:
        return {};
    }
}

std::vector<LISTED> AllFields() {
    std::vector<LISTED> all = {{"header.data", Say("Common header"), Say("read only")}};
    for (const AREA_ROW& row : Areas()) {
        if (!row.IsInfo()) {
            all.push_back({fmt::format("{}.data", row.name), AreaTitle(row.id), Say("hexadecimal bytes, or @FILE")});
            continue;
        }
        for (std::size_t position = 0; position < row.fields.size(); ++position)
            all.push_back(
                {FieldNameText(FruImage::FieldAt(row.id, position)), Title(row, position), Hint(row.fields[position])});
        all.push_back({FieldNameText(FruImage::FieldAt(row.id, row.fields.size())), Title(row, row.fields.size()),
                       Say("and so on; {}.custom+=VALUE adds one", row.name)});
        if (row.hasLanguage)
            all.push_back(
                {fmt::format("{}.language", row.name), Say("Language"), Say("a number, or a name such as English")});
    }
    return all;
}

std::string TypesText(const FruRecords::RECORD_DESCRIPTION& record) {
    if (record.firstType == record.lastType)
        return Say("type {:02X}h", record.firstType);
    return Say("types {:02X}h to {:02X}h", record.firstType, record.lastType);
}

std::string RecordFieldsText() {
    std::string text =
        "\n" + Say("Fields of records: multirecord.N.FIELD, N from 1 on; multirecord.N.type=TYPE makes a new one") +
        "\n";
    for (const FruRecords::RECORD_DESCRIPTION& record : FruRecords::DescribeAllRecords()) {
        std::vector<std::vector<std::string>> rows;
        for (const FruRecords::FIELD_DESCRIPTION& field : record.fields)
            rows.push_back({field.key, std::string(Word(field.title)), Colored(COLOR::DIM, Spoken(field.accepts))});
        text += fmt::format("{}, {}\n{}", Word(record.title), TypesText(record), Table(rows));
    }
    return text;
}

nlohmann::json JsonRecordFields() {
    nlohmann::json records = nlohmann::json::array();
    for (const FruRecords::RECORD_DESCRIPTION& record : FruRecords::DescribeAllRecords()) {
        nlohmann::json fields = nlohmann::json::array();
        for (const FruRecords::FIELD_DESCRIPTION& field : record.fields)
            fields.push_back({{"name", field.key}, {"title", Word(field.title)}, {"accepts", Spoken(field.accepts)}});
        records.push_back({{"title", Word(record.title)},
                           {"firstType", record.firstType},
                           {"lastType", record.lastType},
                           {"fields", std::move(fields)}});
    }
    return records;
}

void PrintFieldsText() {
    std::vector<std::vector<std::string>> rows;
    for (const LISTED& field : AllFields())
        rows.push_back({field.name, field.title, Colored(COLOR::DIM, field.hint)});
    PrintText(Say("Fields") + "\n" + Table(rows) + "\n" + Say("Chassis types") + "\n");
    std::vector<std::vector<std::string>> types;
    constexpr UINT8 HALF = 18;
    const auto name = [](UINT8 type) { return std::string(Word(FruImage::ChassisTypeName(type))); };
    for (UINT8 type = 1; type <= HALF; ++type) {
        const auto second = static_cast<UINT8>(type + HALF);
        types.push_back({fmt::format("{:2}", type), name(type), fmt::format("{}", second), name(second)});
    }
    PrintText(Table(types) + RecordFieldsText());
}

void ListFields(bool namesOnly) {
    if (Settings().json) {
        nlohmann::json fields = nlohmann::json::array();
        for (const LISTED& field : AllFields())
            fields.push_back({{"name", field.name}, {"title", field.title}});
        PrintJson({{"fields", std::move(fields)}, {"records", JsonRecordFields()}});
    } else if (namesOnly) {
        for (const LISTED& field : AllFields())
            PrintText(field.name + "\n");
    } else {
        PrintFieldsText();
    }
}

} // namespace

void AddFields(CLI::App& app) {
    CLI::App& command = NewCommand(app, "fields", "List the names of all fields",
                                   "  fructl fields                     names, titles, and the values that they take\n"
                                   "  fructl fields --lang de-de        with German titles\n"
                                   "  fructl fields --names             names only, for scripts");
    const auto namesOnly = std::make_shared<bool>(false);
    command.add_flag("--names", *namesOnly, "Names only");
    command.callback([namesOnly] { ListFields(*namesOnly); });
}

} // namespace Fructl
