// JSON as the description of an image: the reverse of JsonReport.
#pragma once

#include "tools/fructl/edit.h"

#include "fruimage/description.h"

#include <string>

namespace Fructl {

/// The contents of a JSON document.
struct JSON_IMAGE {
    FruImage::DESCRIPTION description;
    CHANGES changes; ///< of the image that the description builds
};

/// Reads the document of `show --json` (docs/json.md) or a short one: an object of areas, each an object of fields, or
/// an object of AREA.FIELD names. If a field's value and raw bytes disagree, the value counts.
/// @throws CToolError that names the wrong part of the document
JSON_IMAGE ReadJsonImage(const std::string& text, const std::string& source);

} // namespace Fructl
