#include "tests/drivers/lan/lanserver.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Lan_Test {

namespace {

constexpr const char* PROGRAM = "/usr/bin/ipmi_sim";
// ASF Presence Ping, which a BMC answers without a session (IPMI 2.0, section 13.2.3).
constexpr UINT8 PING[] = {0x06, 0x00, 0xFF, 0x06, 0x00, 0x00, 0x11, 0xBE, 0x80, 0x00, 0x00, 0x00};
constexpr int PINGS = 200;
constexpr int PING_MILLISECONDS = 50;

sockaddr_in Address(UINT16 port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int Socket(int (*attach)(int, const sockaddr*, socklen_t), UINT16 port) {
    const int result = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Address(port);
    if (result < 0 || attach(result, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("no UDP socket on 127.0.0.1");
    return result;
}

UINT16 PortOf(int bound) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(bound, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

std::string Line(std::string words, const BYTES& bytes) {
    for (const UINT8 byte : bytes)
        words += " " + std::to_string(byte);
    return words + "\n";
}

} // namespace

UINT16 FreePort() {
    const int bound = Socket(bind, 0);
    const UINT16 port = PortOf(bound);
    close(bound);
    return port;
}

std::string FruDevice(UINT8 address, UINT8 id, const BYTES& contents) {
    return Line("mc_add_fru_data " + std::to_string(address) + " " + std::to_string(id) + " " +
                    std::to_string(contents.size()) + " data",
                contents);
}

std::string Sdr(const BYTES& record) {
    return Line("main_sdr_add 0x20", record);
}

bool CIpmiSim::IsInstalled() {
    return access(PROGRAM, X_OK) == 0;
}

CIpmiSim::CIpmiSim(const std::string& commands) {
    std::string name = (std::filesystem::temp_directory_path() / "ipmisimXXXXXX").string();
    m_directory = mkdtemp(name.data());
    // Between the choice of a port and its use another process may take it.
    for (int attempt = 0; attempt < 3; ++attempt) {
        m_port = FreePort();
        Write(commands);
        if (Start())
            return;
    }
    throw std::runtime_error("ipmi_sim does not answer on 127.0.0.1: " + m_directory.string());
}

CIpmiSim::~CIpmiSim() {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    std::filesystem::remove_all(m_directory);
}

void CIpmiSim::Write(const std::string& commands) const {
    std::ofstream configuration(m_directory / "lan.conf");
    configuration << "name \"frudata\"\nset_working_mc 0x20\nstartlan 1\n  addr 127.0.0.1 " << m_port
                  << "\n  priv_limit admin\n";
    for (const char* level : {"callback", "user", "operator", "admin"})
        configuration << "  allowed_auths_" << level << " none md2 md5\n";
    // RMCP+ needs a name for the server.
    configuration << "  guid a123456789abcdefa123456789abcdef\nendlan\nuser 2 true \"" << USER << "\" \"" << PASSWORD
                  << "\" admin 10\nuser 3 true \"" << GUEST << "\" \"" << GUEST_PASSWORD << "\" user 10\n";
    std::ofstream(m_directory / "commands")
        << "mc_setbmc 0x20\n"
           "mc_add 0x20 0 no-device-sdrs 0x23 9 8 0x9f 0x1291 0xf02 persist_sdr\nmc_enable 0x20\n"
           "mc_add 0x30 1 no-device-sdrs 0x23 9 8 0x9f 0x1291 0xf03\nmc_enable 0x30\n"
        << commands;
}

bool CIpmiSim::Start() {
    m_process = fork();
    if (m_process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int log = open((m_directory / "log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(log, STDOUT_FILENO);
        dup2(log, STDERR_FILENO);
        if (chdir(m_directory.c_str()) == 0)
            execl(PROGRAM, PROGRAM, "-c", "lan.conf", "-f", "commands", "-s", ".", "-n", nullptr);
        _exit(EXIT_FAILURE);
    }
    const int pinging = Socket(connect, m_port);
    bool answered = false;
    for (int ping = 0; ping < PINGS && !answered && waitpid(m_process, nullptr, WNOHANG) == 0; ++ping) {
        pollfd waiting{.fd = pinging, .events = POLLIN, .revents = 0};
        UINT8 pong[64];
        // Where nobody listens yet, that comes back as an error at once.
        if (send(pinging, PING, sizeof PING, 0) < 0 || poll(&waiting, 1, PING_MILLISECONDS) != 1 ||
            recv(pinging, pong, sizeof pong, 0) < 0)
            usleep(PING_MILLISECONDS * 1000 / 5);
        else
            answered = true;
    }
    close(pinging);
    return answered;
}

void CIpmiSim::Stop() const {
    kill(m_process, SIGSTOP);
    siginfo_t ignored;
    waitid(P_PID, static_cast<id_t>(m_process), &ignored, WSTOPPED);
}

void CIpmiSim::Continue() const {
    kill(m_process, SIGCONT);
}

CRelay::CRelay(UINT16 serverPort, SPOILER spoiler)
    : m_spoiler(std::move(spoiler)), m_client(Socket(bind, 0)), m_server(Socket(connect, serverPort)),
      m_port(PortOf(m_client)), m_thread(&CRelay::Pass, this) {}

CRelay::~CRelay() {
    m_stopping = true;
    m_thread.join();
    close(m_client);
    close(m_server);
}

void CRelay::Pass() {
    sockaddr_in client{};
    unsigned int numbers[2] = {};
    pollfd waiting[] = {{.fd = m_client, .events = POLLIN, .revents = 0},
                        {.fd = m_server, .events = POLLIN, .revents = 0}};
    while (!m_stopping) {
        poll(waiting, std::size(waiting), 10);
        for (const pollfd& ready : waiting) {
            if (ready.revents == 0)
                continue;
            const bool toServer = ready.fd == m_client;
            socklen_t size = sizeof client;
            BYTES packet(65536);
            const auto length =
                recvfrom(ready.fd, packet.data(), packet.size(), 0,
                         toServer ? reinterpret_cast<sockaddr*>(&client) : nullptr, toServer ? &size : nullptr);
            packet.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
            m_spoiler(packet, toServer, ++numbers[toServer]);
            if (packet.empty())
                continue;
            if (toServer)
                send(m_server, packet.data(), packet.size(), 0);
            else
                sendto(m_client, packet.data(), packet.size(), 0, reinterpret_cast<sockaddr*>(&client), sizeof client);
        }
    }
}

} // namespace Lan_Test
