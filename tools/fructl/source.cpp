#include "tools/fructl/source.h"

#include "tools/fructl/files.h"
#include "tools/fructl/textfile.h"

namespace Fructl {

SOURCE FileSource(const std::string& path) {
    const BYTES bytes = ReadFile(path);
    return {LooksLikeImage(bytes) ? SOURCE::IMAGE : SOURCE::TEXT, path, {}, {}};
}

} // namespace Fructl
