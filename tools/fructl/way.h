#pragma once
#include <string>
namespace Fructl {
std::string WayKey();
}
