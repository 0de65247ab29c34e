// A BMC on the loopback's LAN for tests: OpenIPMI's ipmi_sim, and a relay in front of it that loses or spoils packets.
#pragma once

#include "frudata/types.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace Lan_Test {

using BYTES = std::vector<UINT8>;

constexpr const char* USER = "operator"; ///< may be administrator
constexpr const char* PASSWORD = "Secret-4711";
constexpr const char* GUEST = "guest"; ///< may be no more than a user
constexpr const char* GUEST_PASSWORD = "Look-only";

/// The line of ipmi_sim's language that gives the controller at `address` the FRU inventory device `id`.
std::string FruDevice(UINT8 address, UINT8 id, const BYTES& contents);
/// The line that adds a record to the BMC's repository.
std::string Sdr(const BYTES& record);

/**
 * ipmi_sim, until the object goes, which its files do, too. It has a BMC at 0x20 and a controller at 0x30; IPMI 1.5
 * and 2.0 on 127.0.0.1, of the cipher suites 3 but not 17.
 */
class CIpmiSim {
  public:
    /// Whether the Debian package "openipmi" is there.
    static bool IsInstalled();
    /// Starts it with `commands` and waits for its first answer. @throw std::runtime_error where there is none
    explicit CIpmiSim(const std::string& commands = "");
    CIpmiSim(const CIpmiSim&) = delete;
    CIpmiSim& operator=(const CIpmiSim&) = delete;
    ~CIpmiSim();
    UINT16 Port() const { return m_port; }
    /// A BMC that has stopped working, until `Continue`.
    void Stop() const;
    void Continue() const;

  private:
    void Write(const std::string& commands) const;
    bool Start();

    std::filesystem::path m_directory;
    UINT16 m_port = 0;
    pid_t m_process = -1;
};

/// A packet on its way; `number` counts those of its direction from 1. What is left of it goes on, if anything is.
using SPOILER = std::function<void(BYTES& packet, bool toServer, unsigned int number)>;

/// Passes UDP packets between one client and a port, both on 127.0.0.1.
class CRelay {
  public:
    CRelay(UINT16 serverPort, SPOILER spoiler);
    CRelay(const CRelay&) = delete;
    CRelay& operator=(const CRelay&) = delete;
    ~CRelay();
    UINT16 Port() const { return m_port; }

  private:
    void Pass();

    SPOILER m_spoiler;
    int m_client;
    int m_server;
    UINT16 m_port;
    std::atomic<bool> m_stopping = false;
    std::thread m_thread;
};

/// A UDP port of 127.0.0.1 that nobody listens on.
UINT16 FreePort();

} // namespace Lan_Test
