// A reader of images that is not ours: FreeIPMI's ipmi-fru.
#pragma once

#include "fruimage/bytes.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

namespace FruImage {

/// What it prints with these arguments. Its status counts for nothing: a closing record makes it fail behind the
/// fields.
inline std::string RunWitness(const std::string& arguments) {
    const std::string command = "PATH=$PATH:/usr/sbin:/sbin ipmi-fru " + arguments;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    char buffer[4096];
    while (pipe && std::fgets(buffer, sizeof buffer, pipe.get()))
        text += buffer;
    return text;
}

inline bool HasWitness() {
    return !RunWitness("--version 2>/dev/null").empty();
}

/// What it says of an image.
inline std::string Witness(const BYTES& image) {
    const auto path = std::filesystem::temp_directory_path() / ("witness-" + std::to_string(getpid()) + ".bin");
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(image.data()), std::ssize(image));
    const std::string text = RunWitness("--fru-file=" + path.string() + " 2>&1");
    std::filesystem::remove(path);
    return text;
}

} // namespace FruImage
