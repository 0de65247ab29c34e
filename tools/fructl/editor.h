// The editor that a person has chosen.
#pragma once

#include "tools/fructl/interrupt.h"

#include <filesystem>
#include <string>

namespace Fructl {

/// Lets a person edit a text. It lies in a file that nobody else can read, in a directory that goes with this.
class CEditor {
  public:
    /// @throws CToolError where there is no place for the file
    CEditor();
    ~CEditor();
    CEditor(const CEditor&) = delete;
    CEditor& operator=(const CEditor&) = delete;

    /// The text as it is when the editor of VISUAL or EDITOR, or vi or nano, ends. @throws CToolError where it fails
    std::string Edit(const std::string& text) const;

  private:
    CHold m_hold;
    std::filesystem::path m_directory;
};

} // namespace Fructl
