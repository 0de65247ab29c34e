// frudata-strc: compiles the readable source of a string table into the file that the library loads.
#include "tools/strc/source.h"
#include "tools/strc/tablefile.h"
#include "tools/strc/utf8.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <getopt.h>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Frudata_Private::TEXT_TABLE;

int Fail(const std::string& what) {
    std::cerr << what << '\n';
    return 1;
}

int FailWithReason(const std::string& path) {
    return Fail(path + ": " + std::strerror(errno));
}

/// Writes `bytes` beside `path` and renames: a stopped build leaves no half a table.
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

constexpr const char* HELP = "Usage: frudata-strc SOURCE -o TABLE    compiles a readable source of texts\n"
                             "       frudata-strc --list TABLE       prints the texts of a compiled table\n"
                             "A source has lines of number, name and text in quotes, as frudata/str/en-us.txt.\n";

int FailUsage(const std::string& what) {
    return Fail("frudata-strc: " + what + "\n" + HELP);
}

int Run(int argc, char** argv) {
    static constexpr option OPTIONS[] = {{"output", required_argument, nullptr, 'o'},
                                         {"list", required_argument, nullptr, 'l'},
                                         {"help", no_argument, nullptr, 'h'},
                                         {}};
    std::string output;
    std::string listed;
    for (int found = 0; (found = getopt_long(argc, argv, "o:h", OPTIONS, nullptr)) != -1;) {
        if (found == 'h')
            return std::cout << HELP << std::flush ? 0 : 1;
        if (found != 'o' && found != 'l')
            return FailUsage("wrong arguments");
        (found == 'o' ? output : listed) = optarg;
    }
    const std::vector<std::string> inputs(argv + optind, argv + argc);
    if (!listed.empty())
        return inputs.empty() && output.empty() ? List(listed) : FailUsage("--list takes one table and nothing else");
    if (inputs.size() != 1 || output.empty())
        return FailUsage("one source and its -o TABLE are wanted");
    return Compile(inputs[0], output);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
