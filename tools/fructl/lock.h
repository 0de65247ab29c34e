// One writer of a device at a time.
#pragma once

#include "tools/fructl/source.h"

#include <string>

namespace Fructl {

/// While one lives, no other fructl writes the device. The kernel ends it with the process, so none is ever stale.
class CDeviceLock {
  public:
    /// Waits for another writer as long as the settings say, and says for whom. @throws CToolError after that
    explicit CDeviceLock(const SOURCE& device);
    ~CDeviceLock();
    CDeviceLock(const CDeviceLock&) = delete;
    CDeviceLock& operator=(const CDeviceLock&) = delete;

  private:
    /// What the writer that holds it has left about itself.
    std::string Holder() const;
    void Wait(const std::string& what);

    int m_file = -1;
    bool m_isOwnFile; ///< the file is there for nothing else, so that a holder can sign it
};

} // namespace Fructl
