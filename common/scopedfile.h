// Owner of an open stdio stream.
#pragma once

#include <cstdio>
#include <memory>

namespace Frudata_Private {

struct CFileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using SCOPED_FILE = std::unique_ptr<std::FILE, CFileCloser>;

} // namespace Frudata_Private
