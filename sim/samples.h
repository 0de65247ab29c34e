// Sample servers for tests, the demonstration and benchmarks, written as directories.
#pragma once

#include "fruimage/imagebuilder.h"
#include "sim/damage.h"

#include <filesystem>

namespace Frudata_Sim {

/// The image of the small server's BMC: all five areas, two custom fields each in chassis, board, product.
BYTES SampleBmcFru();
/// The image of a power supply: board, product and two multi-records.
BYTES SamplePsuFru(unsigned int number);
/// The image of a riser: a board.
BYTES SampleRiserFru();

/// Writes the small server into `directory` (created): the BMC (FRU 0: bmc.bin), a power supply (FRU 1:
/// psu.bin), a riser EEPROM (bus 1, address 0xA0: riser.bin), a hot-swap controller (channel 0, address
/// 0xC0, FRU 0: backplane.bin), and SDRs for them among sensor records. Throws std::runtime_error.
void WriteSmallServer(const std::filesystem::path& directory);

/// Writes a server with `count` FRU devices at the BMC (ids 0 on, fru000.bin on, at most 250). FRU i has
/// the damage `damages[i]`, as far as given; the ids in `dead` answer every command with 0xCB.
void WriteLargeServer(const std::filesystem::path& directory, unsigned int count,
                      const std::vector<FRU_DAMAGE>& damages = {}, const std::vector<UINT8>& dead = {});

} // namespace Frudata_Sim
