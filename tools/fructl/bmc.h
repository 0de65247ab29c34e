// The BMC of this run, reached over one of the ways, or a simulated one in its place.
#pragma once

#include "tools/fructl/bytes.h"
#include "tools/fructl/way.h"

#include <memory>
#include <optional>
#include <string>

namespace Frudata_Sim {
class CSimulatedBmc;
}

namespace Fructl {

/// While one lives, the requests of frudata/bmclib.h have a way to go. One at a time.
class CBmc {
  public:
    /// `simulated`, or without one the BMC that the way of the settings leads to. For child processes, as that way may
    /// be the library's own. @throws CToolError where there is none
    explicit CBmc(std::unique_ptr<Frudata_Sim::CSimulatedBmc> simulated);
    ~CBmc();
    CBmc(const CBmc&) = delete;
    CBmc& operator=(const CBmc&) = delete;

    /// The BMC that the settings name, with the BMC layer started, in this process; null where the way to it is
    /// for a child process. @throws CToolError where it does not answer
    static std::unique_ptr<CBmc> Here();
    /// The simulated BMC that the settings name; null where they name none. @throws CToolError
    static std::unique_ptr<Frudata_Sim::CSimulatedBmc> Configured();

    /// Tells a machine without a usable BMC from a device that does not answer. The library, or the BMC layer alone,
    /// must have been started. @throws CToolError
    void Check() const;
    /// Null where it is a real one.
    const Frudata_Sim::CSimulatedBmc* Simulated() const { return m_simulated.get(); }

  private:
    CBmc(std::unique_ptr<Frudata_Sim::CSimulatedBmc> simulated, WAY_USER user);

    CWayCloser m_closer;
    std::unique_ptr<Frudata_Sim::CSimulatedBmc> m_simulated;
    bool m_isOpen = true;
};

/// One request, and the controller that is to carry it out.
struct BMC_REQUEST {
    struct BRIDGE {
        UINT8 channel;
        UINT8 target;
    };

    UINT8 controller; ///< any but 0x20, the BMC, is bridged on the channel that the library knows for it
    UINT8 netFn;
    UINT8 lun;
    UINT8 cmd;
    BYTES data{};
    std::optional<BRIDGE> bridge = std::nullopt; ///< bridged so, whatever the controller
};

struct BMC_ANSWER {
    UINT8 completionCode = 0;
    BYTES data{};
};

/// Sends a request. A CBmc must be there and started. @return 0, or a status for TransportText
int SendRequest(const BMC_REQUEST& request, BMC_ANSWER& answer);
/// Why a request got no answer, in the words of the way taken.
std::string TransportText(int status);

} // namespace Fructl
