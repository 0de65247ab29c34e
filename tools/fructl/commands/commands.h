// The commands. Each adds itself to the command line and carries itself out when parsed.
#pragma once

#include "tools/fructl/edit.h"
#include "tools/fructl/report.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/value.h"

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
void AddFields(CLI::App& app);
void AddSave(CLI::App& app);
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

/// SOURCE arguments of a command: files, --system, --at; and the words that follow them.
class CSources {
  public:
    /// Adds the options to `command`. `positional` is what its arguments are called in the help.
    CSources(CLI::App& command, const std::string& positional, const std::string& description);

    /// `count` sources, in the order of the command line; the remaining words stay for Words(). Where
    /// `optional` and none is given, the system's own FRU. @throws CToolError where there are not so many
    std::vector<SOURCE> Take(std::size_t count, bool optional = false);
    SOURCE TakeOne(bool optional = false) { return Take(1, optional)[0]; }
    /// The same where no words may remain.
    std::vector<SOURCE> TakeAll(std::size_t count, bool optional = false);
    /// The one device. @throws CToolError for a file
    SOURCE TakeDevice();
    const std::vector<std::string>& Words() const { return m_words; }

  private:
    CLI::App& m_command;
    bool m_system = false;
    std::vector<std::string> m_at;
    std::vector<std::string> m_words;
    CLI::Option* m_positional;
};

/// Options of everything that writes a device.
struct WRITE_OPTIONS {
    std::string backup; ///< a file, or a directory for one with a name made from the device's; empty: the current one
    bool noBackup = false;
    bool dryRun = false;
};
void AddWriteOptions(CLI::App& command, WRITE_OPTIONS& options);

/// Writes `edits` to a device: difference, backup, write, read back, compare.
void Commit(const SOURCE& device, const std::function<EDITS(const FRU&)>& makeEdits, const WRITE_OPTIONS& options);
/// Writes bytes to a device from its start on, except where `known` says that they are there already.
void WriteImage(const SOURCE& device, BYTE_VIEW bytes, BYTE_VIEW known);
/// Reads a device back. @throws CToolError EXIT_UNVERIFIED where it does not hold `expected`, with what `before`,
/// its contents until then as far as they are known, tells about the reason
void CompareWritten(const SOURCE& device, BYTE_VIEW expected, BYTE_VIEW before);
/// Writes the source with `edits` to the file `output`; binary where `binary`.
void SaveContents(const CONTENTS& contents, const EDITS& edits, const std::string& output, bool binary,
                  const std::string& title = {});

/// A new command with its help; `examples` are shown behind the options.
CLI::App& NewCommand(CLI::App& app, const std::string& name, const std::string& description,
                     const std::string& examples);
/// The arguments of a command in its usage line.
void SetUsage(CLI::App& command, const std::string& arguments);

} // namespace Fructl
