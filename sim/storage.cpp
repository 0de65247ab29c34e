#include "sim/storage.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Frudata_Sim {

CStorage::CStorage(const std::filesystem::path& file) : m_file(file) {
    std::ifstream stream(file, std::ios::binary);
    m_bytes.assign(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
        throw std::runtime_error(file.filename().string() + ": cannot be read");
}

bool CStorage::Write(std::size_t offset, std::span<const UINT8> data) {
    if (offset > m_bytes.size() || data.size() > m_bytes.size() - offset)
        return false;
    if (!m_file.empty()) {
        std::fstream stream(m_file, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(static_cast<std::streamoff>(offset));
        stream.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
        if (!stream.flush())
            return false;
    }
    std::copy(data.begin(), data.end(), m_bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return true;
}

} // namespace Frudata_Sim
