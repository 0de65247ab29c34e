#include "tools/fructl/source.h"

#include "tools/fructl/eeprom.h"
#include "tools/fructl/filekind.h"
#include "tools/fructl/files.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/words/words.h"

namespace Fructl {

SOURCE EepromSource(const std::string& path) {
    return {SOURCE::DEVICE, path, {}, {}, {}, true};
}

std::string ShownLabel(const SOURCE& source) {
    const bool isOwn = source.kind == SOURCE::DEVICE && source.label == "system FRU";
    return isOwn ? Say("system FRU") : source.label;
}

std::string DeviceText(const SOURCE& device) {
    return device.isEeprom ? EEPROM_KEY + device.label : AddressText(device.address);
}

SOURCE FileSource(const std::string& path) {
    if (IsEepromPath(path))
        return EepromSource(path);
    BYTES bytes = ReadStart(path, FILE_LIMIT + 1);
    if (bytes.empty())
        throw CToolError(EXIT_REFUSED, path, "is empty");
    const SOURCE::KIND kind = LooksLikeImage(bytes) ? SOURCE::IMAGE : SOURCE::TEXT;
    CheckSize(path, bytes, kind == SOURCE::IMAGE ? IMAGE_LIMIT : FILE_LIMIT);
    return {kind, path, {}, {}, std::move(bytes)};
}

} // namespace Fructl
