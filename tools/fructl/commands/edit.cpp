#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicesession.h"
#include "tools/fructl/editor.h"
#include "tools/fructl/edittext.h"
#include "tools/fructl/files.h"
#include "tools/fructl/toolerror.h"

#include <CLI/CLI.hpp>

#include <memory>

#include <unistd.h>

namespace Fructl {

namespace {

using WORDS = std::vector<std::string>;

/// Why, for the line of this name.
std::string Reason(const CToolError& error, const std::string& name) {
    const std::string what = error.m_what == name ? std::string() : error.m_what + ": ";
    return what + error.m_why + (error.m_hint.empty() ? "" : " (" + error.m_hint + ")");
}

PLAN PlanOf(const CONTENTS& contents, const WORDS& words, const EDIT_OPTIONS& options) {
    if (words.empty()) {
        PLAN plan;
        plan.bytes = contents.fru.bytes;
        return plan;
    }
    return MakePlan(contents, ParseEdits(words, options), options.limits);
}

/// Puts the reason behind each line whose change conflicts with earlier ones.
void Blame(CEditedText& text, const CONTENTS& contents, const EDIT_OPTIONS& options) {
    // Removals make room for additions.
    WORDS accepted = text.Removals();
    for (CEditedText::LINE& line : text.Lines()) {
        const std::string word = text.Word(line);
        if (word.empty())
            continue;
        accepted.push_back(word);
        try {
            PlanOf(contents, accepted, options);
        } catch (const CToolError& error) {
            line.problem = Reason(error, line.name);
            accepted.pop_back();
        }
    }
}

/// The plan of the text; nothing if a line or, with `problem`, the whole is wrong.
std::optional<PLAN> Understood(CEditedText& text, const CONTENTS& contents, const EDIT_OPTIONS& options,
                               std::string& problem) {
    if (!text.Problems().empty())
        return std::nullopt;
    WORDS words;
    for (const CEditedText::LINE& line : text.Lines())
        if (std::string word = text.Word(line); !word.empty())
            words.push_back(std::move(word));
    const WORDS removals = text.Removals();
    words.insert(words.end(), removals.begin(), removals.end());
    try {
        return PlanOf(contents, words, options);
    } catch (const CToolError& error) {
        Blame(text, contents, options);
        problem = text.Problems().empty() ? Reason(error, {}) : std::string();
    }
    return std::nullopt;
}

/// Checks that the source has not changed during the minutes in an editor.
void CheckUnchanged(const CONTENTS& contents) {
    const SOURCE& source = contents.source;
    if (source.label == STANDARD_STREAM)
        return;
    const BYTES present = source.kind == SOURCE::DEVICE
                              ? ReadDevice(source, READING::WHOLE, contents.bytes.size()).bytes
                              : FileSource(source.label).bytes;
    if (present != contents.bytes)
        throw CToolError(EXIT_REFUSED, source.label, "it was changed while it was edited; nothing was written");
}

/// Lets a person edit the text until it is right or comes back unchanged.
PLAN EditedPlan(const CONTENTS& contents, const EDIT_OPTIONS& options) {
    const CEditor editor;
    std::string shown = EditText(contents);
    std::string before;
    for (;;) {
        CEditedText text(editor.Edit(shown), contents);
        std::string problem;
        if (text.IsEmpty() && !contents.fru.areas.empty())
            throw CToolError(EXIT_REFUSED, "edit", "the text is empty: nothing was written");
        if (auto plan = Understood(text, contents, options, problem)) {
            if (!plan->IsEmpty())
                CheckUnchanged(contents);
            return std::move(*plan);
        }
        const std::string present = text.Text();
        // A script in the editor's place would never end this loop.
        const bool isScript = isatty(STDERR_FILENO) == 0 && !before.empty();
        if (present == before || isScript)
            throw CToolError(EXIT_REFUSED, "edit", problem.empty() ? text.Problems() : problem,
                             "the text came back wrong again: nothing was written");
        before = present;
        shown = text.Marked(problem);
    }
}

} // namespace

void AddEdit(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "edit", "Change a FRU in your editor: fields as a text of NAME = VALUE lines",
                   "  fructl edit board.fru\n"
                   "  fructl edit image.bin -o changed.bin\n"
                   "  fructl edit --system                      the difference, a question, a backup, as 'commit'\n"
                   "  EDITOR='code --wait' fructl edit --at 'PSU 1' --dry-run\n"
                   "The editor is that of VISUAL or EDITOR, else vi or nano. Lines may be added and removed; what is\n"
                   "wrong is marked, and the editor opens again. A text saved as it was changes nothing.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE", "File to edit");
    const auto options = std::make_shared<CHANGE_OPTIONS>();
    const auto edits = std::make_shared<EDIT_OPTIONS>();
    command.add_option("-o,--output", options->output, "File to write instead")->type_name("FILE");
    command.add_flag("--binary", options->binary, "Write a binary image");
    AddWriteOptions(command, options->write);
    AddLayoutOptions(command, *edits);
    command.callback([sources, options, edits] {
        const SOURCE source = sources->TakeAll(1)[0];
        options->commit = source.kind == SOURCE::DEVICE && options->output.empty();
        options->asks = true;
        Change(
            source, [&](const CONTENTS& contents) { return EditedPlan(contents, *edits); }, *options);
    });
}

} // namespace Fructl
