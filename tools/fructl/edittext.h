// A FRU as text for an editor: one NAME = VALUE a line.
#pragma once

#include "tools/fructl/contents.h"

#include <string>
#include <vector>

namespace Fructl {

/// The text of all names and values. Areas are headings; a comment begins with '#'.
std::string EditText(const CONTENTS& contents);

/// The text from the editor.
class CEditedText {
  public:
    /// `problem`, where a line has one, stands behind it when the text is edited again.
    struct LINE {
        std::string text;
        std::string name = {}; ///< empty: a comment, a blank line, or one that has a problem
        std::string value = {};
        std::string problem = {};
    };
    /// Leaves out the comments about problems of an earlier round.
    explicit CEditedText(const std::string& text);

    std::vector<LINE>& Lines() { return m_lines; }
    /// Whether there is no line with a value: emptying the text means giving up.
    bool IsEmpty() const;
    /// The word for `set`; empty for a line without a change.
    std::string Word(const LINE& line, const CONTENTS& contents) const;
    /// The words that remove what lost its lines: custom fields, and records without any line left.
    std::vector<std::string> Removals(const CONTENTS& contents) const;
    /// The text without the problems.
    std::string Text() const;
    /// The text with each problem below its line; `problem` concerns the whole.
    std::string Marked(const std::string& problem) const;
    /// All problems, each behind its line, in one line.
    std::string Problems() const;

  private:
    bool HasName(const std::string& name) const;

    std::vector<LINE> m_lines;
};

} // namespace Fructl
