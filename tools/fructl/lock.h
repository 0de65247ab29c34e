// One writer of a device at a time, and one program at a KCS interface.
#pragma once

#include "tools/fructl/source.h"

#include <string>

namespace Fructl {

/// A locked file. The kernel ends the lock with the process: none is ever stale.
class CFileLock {
  public:
    CFileLock(const CFileLock&) = delete;
    CFileLock& operator=(const CFileLock&) = delete;
    ~CFileLock();

  protected:
    /// Waits for another holder as long as the settings say, and tells for whom. @throws CToolError after that
    /// @param what the locked thing, for people @param use what its holder does, after "which"; empty: the file has
    /// another purpose, and no holder can sign it
    CFileLock(const std::string& path, std::string what, std::string use);

  private:
    /// The holder's note about itself.
    std::string Holder() const;
    void Wait() const;

    std::string m_what;
    std::string m_use;
    int m_file;
};

/// While one lives, no other fructl writes the device.
class CDeviceLock : public CFileLock {
  public:
    explicit CDeviceLock(const SOURCE& device);
};

/// While one lives, no other fructl changes a file of the directory. A change replaces the file itself, which
/// therefore cannot carry the lock.
class CDirectoryLock : public CFileLock {
  public:
    /// @param file a path to the file
    explicit CDirectoryLock(const std::string& file);
};

/// While one lives, no other fructl uses the KCS interface at the port: the first reader takes an answer.
class CPortLock : public CFileLock {
  public:
    explicit CPortLock(UINT16 port);
};

} // namespace Fructl
