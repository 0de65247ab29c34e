#include "tools/fructl/settings.h"

namespace Fructl {

SETTINGS& Settings() {
    static SETTINGS settings;
    return settings;
}

} // namespace Fructl
