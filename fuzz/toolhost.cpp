// What the tool's sources under test need of the rest of the tool: no run reads a file or prints.
#include "tools/fructl/files.h"
#include "tools/fructl/report.h"
#include "tools/fructl/titles.h"

namespace Fructl {

BYTES ReadFile(const std::string& path, std::size_t) {
    return {path.begin(), path.end()};
}

void PrintText(const std::string&) {}

std::string DeviceText(const SOURCE& device) {
    return device.label;
}

std::string AreaTitle(AREA_ID area) {
    return AreaRow(area).title;
}

std::string Title(const AREA_ROW& row, std::size_t position) {
    return position < row.fields.size() ? std::string(row.fields[position].title) : "Custom field";
}

} // namespace Fructl
