// JSON as the description of an image: the other direction of JsonReport.
#pragma once

#include "tools/fructl/edit.h"

#include "fruimage/description.h"

#include <string>

namespace Fructl {

/// What a JSON document describes.
struct JSON_IMAGE {
    FruImage::DESCRIPTION description;
    CHANGES changes; ///< made to what the description builds
};

/// Reads the document of `show --json` (docs/json.md) or a short one: an object of areas, each an object of fields, or
/// an object of AREA.FIELD names. Where a field's value is not what its raw bytes read as, the value counts.
/// @throws CToolError that names the part of the document which is wrong
JSON_IMAGE ReadJsonImage(const std::string& text, const std::string& source);

} // namespace Fructl
