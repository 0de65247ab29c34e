// Gives any host, unchanged, a simulated BMC: LD_PRELOAD=libfru_sim_preload.so with, in the environment,
//
//   FRU_SIM        the directory of the BMC
//   FRU_SIM_FRONT  imb (the default): a driver of the host; kcs: registers at the default port
#include "sim/directory.h"
#include "sim/fronts.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string_view>

namespace {

using namespace Frudata_Sim;

class CPreloadedBmc {
  public:
    CPreloadedBmc() noexcept {
        const char* const directory = std::getenv("FRU_SIM");
        const char* const front = std::getenv("FRU_SIM_FRONT");
        if (!directory)
            return;
        try {
            m_bmc = LoadBmcDirectory(directory);
            if (front && front == std::string_view("kcs"))
                SetCurrentKcs(&m_kcs.emplace(*m_bmc));
            else
                SetCurrentBmc(m_bmc.get());
        } catch (const std::exception& error) {
            std::cerr << "FRU_SIM: " << error.what() << '\n';
            std::exit(EXIT_FAILURE);
        }
    }

  private:
    std::unique_ptr<CSimulatedBmc> m_bmc;
    std::optional<CKcsModel> m_kcs;
};

const CPreloadedBmc g_preloaded;

} // namespace

/// Simulated ports need no privilege.
extern "C" int iopl(int) noexcept {
    return 0;
}
