// A simulated BMC as a directory: bmc.json and the devices' images. README.md describes the format.
#pragma once

#include "sim/simulatedbmc.h"

namespace Frudata_Sim {

/// Loads DIR/bmc.json; writes to devices go to their image files at once.
/// Throws std::runtime_error; its text names the file and the key, for example
/// `rack/bmc.json: fruDevices[1].image: psu.bin: cannot be read`.
std::unique_ptr<CSimulatedBmc> LoadBmcDirectory(const std::filesystem::path& directory);

} // namespace Frudata_Sim
