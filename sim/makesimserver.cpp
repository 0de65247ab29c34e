// Writes a sample server as a directory for the simulated BMC.
#include "sim/samples.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

namespace {

using namespace Frudata_Sim;

constexpr const char* USAGE = "usage: makesimserver small DIR\n"
                              "       makesimserver large DIR COUNT [damaged]\n"
                              "\n"
                              "small: a BMC with all areas, a power supply, a riser EEPROM, a backplane controller\n"
                              "large: COUNT FRUs (at most 250); damaged: FRUs 1 to 5 each damaged in another way,\n"
                              "       FRU 6 dead\n";

int Make(int argc, char** argv) {
    const std::string kind = argc > 2 ? argv[1] : "";
    if (kind == "small" && argc == 3) {
        WriteSmallServer(argv[2]);
        return EXIT_SUCCESS;
    }
    const bool damaged = argc == 5 && std::string(argv[4]) == "damaged";
    if (kind != "large" || (argc != 4 && !damaged)) {
        std::cerr << USAGE;
        return EXIT_FAILURE;
    }
    const auto count = static_cast<unsigned int>(std::stoul(argv[3]));
    if (!damaged)
        WriteLargeServer(argv[2], count);
    else
        WriteLargeServer(argv[2], count,
                         {FRU_DAMAGE::NONE, FRU_DAMAGE::HEADER_CHECKSUM, FRU_DAMAGE::AREA_CHECKSUM,
                          FRU_DAMAGE::LENGTH_PAST_END, FRU_DAMAGE::LENGTH_ZERO, FRU_DAMAGE::NOT_FRU},
                         {6});
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Make(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "makesimserver: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
