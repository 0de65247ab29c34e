#include "tools/fructl/way.h"
namespace Fructl {
std::string WayKey() {
    return "bmc";
}
} // namespace Fructl
