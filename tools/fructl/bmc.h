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
    /// `simulated`, or if it is null the BMC that the settings name. For child processes, as its way may be the
    /// library's. @throws CToolError if there is none
    explicit CBmc(std::unique_ptr<Frudata_Sim::CSimulatedBmc> simulated);
    ~CBmc();
    CBmc(const CBmc&) = delete;
    CBmc& operator=(const CBmc&) = delete;

    /// The BMC that the settings name, with the BMC layer started, for this process; null if the way to it is for a
    /// child process. @throws CToolError if it does not answer
    static std::unique_ptr<CBmc> Here();
    /// The simulated BMC that the settings name; null if they name none. @throws CToolError
    static std::unique_ptr<Frudata_Sim::CSimulatedBmc> Configured();

    /// Tells a machine without a usable BMC from a device that does not answer. The library, or the BMC layer alone,
    /// must have been started. @throws CToolError
    void Check() const;
    /// Null if the BMC is a real one.
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

    UINT8 controller; ///< the BMC, or one that the library bridges to on its channel
    UINT8 netFn;
    UINT8 lun;
    UINT8 cmd;
    BYTES data{};
    std::optional<BRIDGE> bridge = std::nullopt; ///< the channel and the controller behind the BMC
};

struct BMC_ANSWER {
    UINT8 completionCode = 0;
    BYTES data{};
};

/// Sends a request. A CBmc must be there and started. @return 0, or a status for TransportText
int SendRequest(const BMC_REQUEST& request, BMC_ANSWER& answer);
/// Why a request got no answer, in the words of the way.
std::string TransportText(int status);

} // namespace Fructl
