// The user's editor.
#pragma once

#include "tools/fructl/interrupt.h"

#include <filesystem>
#include <string>

namespace Fructl {

/// Lets a person edit a text, in a file that nobody else can read, in a directory that lives as long as this.
class CEditor {
  public:
    /// @throws CToolError if the file cannot be made
    CEditor();
    ~CEditor();
    CEditor(const CEditor&) = delete;
    CEditor& operator=(const CEditor&) = delete;

    /// The text when the editor (VISUAL, EDITOR, vi or nano) ends. @throws CToolError if it fails
    std::string Edit(const std::string& text) const;

  private:
    CHold m_hold;
    std::filesystem::path m_directory;
};

} // namespace Fructl
