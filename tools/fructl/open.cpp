#include "tools/fructl/open.h"

#include "tools/fructl/devicesession.h"
#include "tools/fructl/imagesession.h"
#include "tools/fructl/textfile.h"

namespace Fructl {

CONTENTS Open(const SOURCE& source) {
    CONTENTS contents{source, {}, {}};
    if (source.kind == SOURCE::DEVICE)
        contents.bytes = ReadDevice(source, 0);
    else
        contents.bytes = std::move(contents.source.bytes);
    if (source.kind == SOURCE::TEXT) {
        TEXT_FRU text = ParseTextFile(std::string(contents.bytes.begin(), contents.bytes.end()));
        contents.fru = std::move(text.fru);
        contents.source.title = text.title;
    } else {
        contents.fru = ParseImage(contents.bytes);
    }
    // The library ends its process over a wrong checksum: it is asked only where the bytes are sound. A text
    // file it must judge itself.
    if (source.kind == SOURCE::TEXT || !contents.fru.IsDamaged())
        LoadWithLibrary(contents);
    return contents;
}

} // namespace Fructl
