#include "fruimage/records/recordlines.h"

#include <utility>

namespace FruRecords {

namespace {

/// A pattern with its fields filled in.
struct FILLED_LINE {
    RECORD_LINE line;
    std::vector<const RECORD_FIELD*> fields;
};

std::optional<FILLED_LINE> Fill(const LINE_ROW& row, const std::vector<RECORD_FIELD>& fields) {
    FILLED_LINE filled{{row.title, {}, false}, {}};
    bool haveValues = true;
    for (std::string_view rest = row.pattern; !rest.empty();) {
        const std::size_t open = rest.find('{');
        const std::size_t close = rest.find('}');
        const auto field = std::ranges::find(fields, rest.substr(open + 1, close - open - 1), &RECORD_FIELD::key);
        if (field == fields.end())
            return {};
        filled.line.text.append(rest.substr(0, open)).append(field->display);
        filled.line.isContent |= field->isContent;
        filled.fields.push_back(&*field);
        haveValues &= field->HasValue();
        rest.remove_prefix(close + 1);
    }
    const RECORD_FIELD& first = *filled.fields.front();
    if (row.restNeedsFirst && !first.HasValue())
        filled.line.text = first.display;
    else if (!haveValues)
        return {};
    return filled;
}

} // namespace

std::vector<RECORD_LINE> MakeLines(std::span<const LINE_ROW> rows, const std::vector<RECORD_FIELD>& fields) {
    std::vector<FILLED_LINE> shared;
    for (const LINE_ROW& row : rows)
        if (auto filled = Fill(row, fields))
            shared.push_back(std::move(*filled));

    std::vector<RECORD_LINE> lines;
    for (const RECORD_FIELD& field : fields) {
        const auto holdsField = [&](const FILLED_LINE& filled) {
            return std::ranges::find(filled.fields, &field) != filled.fields.end();
        };
        const auto found = std::ranges::find_if(shared, holdsField);
        if (found == shared.end() && !field.display.empty())
            lines.push_back({field.title, field.display, field.isContent});
        // The first field of the record that shares the line stands for all of them.
        else if (found != shared.end() && !found->line.title.empty())
            lines.push_back(std::exchange(found->line, {}));
    }
    return lines;
}

} // namespace FruRecords
