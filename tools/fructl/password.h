// The password of a LAN session: asked once, kept out of arguments, messages, logs and core dumps.
#pragma once

#include <array>
#include <string>

namespace Fructl {

/// Room for the standard's longest (IPMI 2.0, section 22.30), overwritten at its end.
class CPassword {
  public:
    static constexpr std::size_t SIZE = 20;

    CPassword() = default;
    CPassword(const CPassword&) = default;
    CPassword& operator=(const CPassword&) = default;
    ~CPassword();

    /// Copies a text and overwrites the original. @throws CToolError if it is too long
    void Take(char* text, std::size_t length);
    char* Text() { return m_text.data(); }

  private:
    std::array<char, SIZE + 1> m_text{};
};

/// Takes the password from the first line of `file`; without a file from IPMI_PASSWORD, else from the terminal without
/// showing it. From then on this process and its children write no core dump. @throws CToolError
void AskPassword(const std::string& file, const std::string& prompt);
/// The password.
CPassword& Password();

} // namespace Fructl
