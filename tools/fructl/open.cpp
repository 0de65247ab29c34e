#include "tools/fructl/open.h"

#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"

#include "frudata/frudata.h"

#include <fmt/format.h>

namespace Fructl {

namespace {

void OpenText(CONTENTS& contents) {
    contents.text = ReadFruText(std::string(contents.bytes.begin(), contents.bytes.end()),
                                Settings().platform == FRU_PLATFORM_MBMC);
    if (!contents.text.faults.empty()) {
        const TEXT_FAULT& fault = contents.text.faults.front();
        const std::string line = fault.line == 0 ? std::string() : fmt::format(", line {}", fault.line);
        throw CToolError(EXIT_REFUSED, contents.source.label + line, fault.text);
    }
    contents.source.title = contents.text.title;
    contents.fru = FruImage::Parse(contents.text.image);
}

void OpenDevice(CONTENTS& contents, READING reading, const PROGRESS& progress) {
    DEVICE_BYTES device = ReadDevice(contents.source, reading, 0, progress);
    contents.fru = FruImage::Parse(device.bytes, device.read);
    contents.bytes = std::move(device.bytes);
    contents.sizeKnown = device.sizeKnown;
    contents.failure = device.failure;
}

} // namespace

CONTENTS Open(const SOURCE& source, READING reading, const PROGRESS& progress) {
    CONTENTS contents{source, {}, {}};
    if (source.kind == SOURCE::DEVICE) {
        OpenDevice(contents, reading, progress);
        return contents;
    }
    contents.bytes = std::move(contents.source.bytes);
    if (source.kind == SOURCE::TEXT)
        OpenText(contents);
    else
        contents.fru = FruImage::Parse(contents.bytes);
    return contents;
}

} // namespace Fructl
