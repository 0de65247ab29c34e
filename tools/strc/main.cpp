// frudata-strc: compiles the readable source of a string table into the file that the library loads.
#include "tools/strc/source.h"
#include "tools/strc/tablefile.h"
#include "tools/strc/utf8.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace {

using Frudata_Private::TEXT_TABLE;

int Fail(const std::string& what) {
    std::cerr << what << '\n';
    return 1;
}

int FailWithReason(const std::string& path) {
    return Fail(path + ": " + std::strerror(errno));
}

/// Writes `bytes` beside `path` and renames, so that a build that is stopped leaves no half a table.
int WriteAtomically(const std::string& path, const std::string& bytes) {
    const std::string temporary = path + "." + std::to_string(getpid()) + ".tmp";
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << bytes;
    file.close();
    if (!file || std::rename(temporary.c_str(), path.c_str()) != 0) {
        const int result = FailWithReason(path);
        std::remove(temporary.c_str());
        return result;
    }
    return 0;
}

int Compile(const std::string& input, const std::string& output) {
    std::ifstream source(input, std::ios::binary);
    if (!source)
        return FailWithReason(input);
    std::vector<std::string> faults;
    const TEXT_TABLE table = Frudata_Private::ReadSource(source, input, faults);
    if (source.bad())
        return FailWithReason(input);
    for (const std::string& fault : faults)
        std::cerr << fault << '\n';
    return faults.empty() ? WriteAtomically(output, Frudata_Private::CompileTable(table)) : 1;
}

int List(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return FailWithReason(path);
    std::ostringstream bytes;
    if (!(bytes << file.rdbuf()))
        return FailWithReason(path);
    TEXT_TABLE table;
    if (const char* fault = Frudata_Private::ReadCompiledTable(bytes.str(), table))
        return Fail(path + ": " + fault);
    for (std::size_t number = 0; number < table.size(); ++number)
        if (!table[number].empty())
            std::cout << number << '\t' << Frudata_Private::EncodeUtf8(table[number]) << '\n';
    return std::cout.flush() ? 0 : Fail("standard output: write failed");
}

int Run(int argc, char** argv) {
    CLI::App app("Compile a table of localised texts for frudata, or list a compiled one.", "frudata-strc");
    std::string input;
    std::string output;
    std::string listed;
    auto* inputOption = app.add_option("input", input, "Readable source: lines of number, name and text in quotes");
    auto* outputOption = app.add_option("-o,--output", output, "Compiled table to write")->needs(inputOption);
    inputOption->needs(outputOption);
    app.add_option("--list", listed, "Print the texts of this compiled table")->excludes(inputOption);
    app.require_option(1, 2);
    CLI11_PARSE(app, argc, argv);
    return listed.empty() ? Compile(input, output) : List(listed);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
