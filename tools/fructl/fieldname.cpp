#include "tools/fructl/fieldname.h"

#include "tools/fructl/toolerror.h"

namespace Fructl {

FIELD_NAME NamedField(std::string_view text) {
    if (const auto name = FruImage::ParseFieldName(text))
        return *name;
    throw CToolError(EXIT_USAGE, std::string(text), "there is no such field",
                     "'fructl fields' lists the names, such as board.serial-number or product.custom1");
}

AREA_ID NamedArea(std::string_view text) {
    if (const auto area = FruImage::AreaFromName(text))
        return *area;
    throw CToolError(EXIT_USAGE, std::string(text), "there is no such area",
                     "areas: header, internal, chassis, board, product, multirecord");
}

} // namespace Fructl
