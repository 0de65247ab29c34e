// The commands. Each adds itself to the command line, whose parsing runs it.
#pragma once

#include "tools/fructl/edit.h"
#include "tools/fructl/jsonreport.h"
#include "tools/fructl/open.h"
#include "tools/fructl/report.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace Fructl {

void AddShow(CLI::App& app);
void AddGet(CLI::App& app);
void AddSet(CLI::App& app);
void AddEdit(CLI::App& app);
void AddFields(CLI::App& app);
void AddSave(CLI::App& app);
void AddNew(CLI::App& app);
void AddRepair(CLI::App& app);
void AddCommit(CLI::App& app);
void AddRestore(CLI::App& app);
void AddApply(CLI::App& app);
void AddDiff(CLI::App& app);
void AddMap(CLI::App& app);
void AddDump(CLI::App& app);
void AddLoad(CLI::App& app);
void AddScan(CLI::App& app);
void AddProbe(CLI::App& app);
void AddInfo(CLI::App& app);

/// What the command line calls a source, and how to get it: a file is read, a device's name looked up. That may fail.
struct NAMED_SOURCE {
    std::string name;
    SOURCE (*get)(const std::string& name);

    SOURCE Get() const { return get(name); }
};

/// SOURCE arguments of a command (files, --system, --at) and the words behind them.
class CSources {
  public:
    /// Adds the options to `command`. `positional` names its arguments in the help.
    CSources(CLI::App& command, const std::string& positional, const std::string& description);

    /// `count` sources, in the order of the command line; the remaining words stay for Words(). With `optional` and
    /// none given, the system's own FRU. @throws CToolError for any other number
    std::vector<SOURCE> Take(std::size_t count, bool optional = false);
    SOURCE TakeOne(bool optional = false) { return Take(1, optional)[0]; }
    /// The same, without remaining words.
    std::vector<SOURCE> TakeAll(std::size_t count, bool optional = false);
    /// All named devices, and the words before the first that `isOther` knows; without a device, the first word in any
    /// case. The remaining words stay for Words(). @throws CToolError without a source
    std::vector<NAMED_SOURCE> TakeWhile(const std::function<bool(const std::string&)>& isOther);
    /// Whether the command line names any.
    bool IsEmpty() const { return !m_system && m_at.empty() && m_words.empty(); }
    /// The one device. @throws CToolError for a file
    SOURCE TakeDevice();
    const std::vector<std::string>& Words() const { return m_words; }

  private:
    std::vector<NAMED_SOURCE> TakeNames(std::size_t count, bool optional);

    CLI::App& m_command;
    bool m_system = false;
    std::vector<std::string> m_at;
    std::vector<std::string> m_words;
    CLI::Option* m_positional;
};

/// Options of commands that write.
struct WRITE_OPTIONS {
    std::string backup; ///< a file, or a directory for one named after the source. Empty: in the current one for a
                        ///< device, none for a file
    bool noBackup = false;
    bool dryRun = false;
    bool yes = false;
    bool mends = false; ///< the command repairs: damaged contents are not odd
};
void AddWriteOptions(CLI::App& command, WRITE_OPTIONS& options);
/// Asks on a terminal whether to write `target`, unless `options` answer. Without a terminal it asks nothing, but an
/// oddity `odd`, which a person should know before anything is written, needs --yes or --force. @throws CToolError if
/// the answer is no or missing
void Confirm(const std::string& target, const WRITE_OPTIONS& options, const std::string& odd = {});
/// The oddity of contents about to be overwritten: nothing in them tells what the device is. Else empty.
std::string Oddity(const CONTENTS& present);

/// Options of commands that change a file or a device.
struct CHANGE_OPTIONS {
    std::string output; ///< empty: the source itself
    bool binary = false;
    bool commit = false;
    bool asks = false; ///< also before it writes a file
    WRITE_OPTIONS write;
};
void AddChangeOptions(CLI::App& command, CHANGE_OPTIONS& options);

/// Options of commands that may let areas grow.
void AddLayoutOptions(CLI::App& command, EDIT_OPTIONS& options);
/// The same for commands that take AREA.FIELD=VALUE.
void AddEditOptions(CLI::App& command, EDIT_OPTIONS& options);

/// Makes the plan of a change to a source. @throws CToolError for a refusal
using PLANNER = std::function<PLAN(const CONTENTS&)>;
/// Shows the changes of the plan and writes it, by the options to the source or to another file.
void Change(const SOURCE& source, const PLANNER& planner, const CHANGE_OPTIONS& options);
/// The same for a device: difference, backup, write, read back, compare.
void Commit(const SOURCE& device, const PLANNER& planner, const WRITE_OPTIONS& options);
/// Keeps `bytes` of the source in the file `given`, or in one named after the source. @return its name
std::string KeepBackup(const SOURCE& source, BYTE_VIEW bytes, const std::string& given);
/// The command, for a person to type, that restores the device from `backup`.
std::string RestoreHint(const std::string& backup, const CONTENTS& before);

/// Writes a device to the end, whatever the terminal says, reads it back and compares it with `expected`.
/// @param before its former contents, as far as they are known
/// @param backup their file; empty: none
/// @throws CToolError EXIT_UNVERIFIED if it holds something else
void WriteVerified(const CONTENTS& before, BYTE_VIEW expected, const std::string& backup,
                   const std::function<void(const PROGRESS&)>& write);

/// Notes damage of the FRU. @throws CToolError if one of `areas` is damaged, or missing behind a damaged header
void RequireAreas(const CONTENTS& contents, const std::vector<AREA_ID>& areas);

/// A new command with its help; `examples` are shown behind the options.
CLI::App& NewCommand(CLI::App& app, const std::string& name, const std::string& description,
                     const std::string& examples);
/// The arguments of a command in its usage line.
void SetUsage(CLI::App& command, const std::string& arguments);

} // namespace Fructl
