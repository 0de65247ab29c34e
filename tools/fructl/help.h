// The layout of the help.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace Fructl {

/// Help with a usage line that names a command's arguments in their order.
class CHelpFormatter : public CLI::Formatter {
  public:
    explicit CHelpFormatter(std::string usage) : m_usage(std::move(usage)) {
        column_width(28);
        label("Subcommands", "Commands");
    }

    std::string make_usage(const CLI::App*, std::string) const override { return "Usage: " + m_usage + "\n"; }
    /// The usage line has them.
    std::string make_positionals(const CLI::App*) const override { return {}; }
    /// Examples stand by themselves.
    std::string make_footer(const CLI::App* app) const override {
        return app->get_footer().empty() ? "" : app->get_footer() + "\n";
    }

  private:
    std::string m_usage;
};

} // namespace Fructl
