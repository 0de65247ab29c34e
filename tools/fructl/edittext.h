// A FRU as a text that a person edits: one NAME = VALUE a line.
#pragma once

#include "tools/fructl/contents.h"

#include <string>
#include <vector>

namespace Fructl {

/// The text of everything that has a name and a value. Areas are headings; what is a comment begins with '#'.
std::string EditText(const CONTENTS& contents);

/// The text as it came back.
class CEditedText {
  public:
    /// `problem`, where a line has one, stands behind it when the text is edited again.
    struct LINE {
        std::string text;
        std::string name = {}; ///< empty: a comment, a blank line, or one that has a problem
        std::string value = {};
        std::string problem = {};
    };
    /// Lines that say what earlier ones are wrong about are left out.
    explicit CEditedText(const std::string& text);

    std::vector<LINE>& Lines() { return m_lines; }
    /// Whether there is no line with a value: whoever empties the whole text wants nothing of it.
    bool IsEmpty() const;
    /// The word that `set` takes; empty for a line that says what `contents` hold, or nothing.
    std::string Word(const LINE& line, const CONTENTS& contents) const;
    /// The words for what has no line any more: custom fields, and records of which no line is left.
    std::vector<std::string> Removals(const CONTENTS& contents) const;
    /// The text without what is said about it.
    std::string Text() const;
    /// The same with what is wrong below each line; `problem` is about the whole of it.
    std::string Marked(const std::string& problem) const;
    /// All problems, each behind its line, in one line.
    std::string Problems() const;

  private:
    bool HasName(const std::string& name) const;

    std::vector<LINE> m_lines;
};

} // namespace Fructl
