// A FRU as text for an editor: one NAME = VALUE a line.
#pragma once

#include "tools/fructl/contents.h"

#include <string>
#include <unordered_map>
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
    /// The text of `contents`, without the comments about problems of an earlier round.
    CEditedText(const std::string& text, const CONTENTS& contents);

    std::vector<LINE>& Lines() { return m_lines; }
    /// Whether there is no line with a value: emptying the text means giving up.
    bool IsEmpty() const;
    /// The word for `set`; empty for a line without a change.
    std::string Word(const LINE& line) const;
    /// The words that remove what lost its lines: custom fields, and records without any line left.
    std::vector<std::string> Removals() const;
    /// The text without the problems.
    std::string Text() const;
    /// The text with each problem below its line; `problem` concerns the whole.
    std::string Marked(const std::string& problem) const;
    /// All problems, each behind its line, in one line.
    std::string Problems() const;

  private:
    std::vector<LINE> m_lines;
    // By name: an image can have more than ten thousand of them.
    std::unordered_map<std::string, std::string> m_present; ///< the contents' names and values
    std::vector<std::string> m_removable; ///< custom fields, and "multirecord.N" of records, in their order
};

} // namespace Fructl
