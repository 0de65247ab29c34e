// One writer of a device at a time, and one program at a KCS interface.
#pragma once

#include "tools/fructl/source.h"

#include <string>

namespace Fructl {

/// A locked file. The kernel ends the lock with the process, so none is ever stale.
class CFileLock {
  public:
    CFileLock(const CFileLock&) = delete;
    CFileLock& operator=(const CFileLock&) = delete;
    ~CFileLock();

  protected:
    /// Waits for another holder as long as the settings say, and says for whom. @throws CToolError after that
    /// @param what is locked, for people @param use what its holder does, after "which"; empty: the file is there for
    /// something else, so that no holder can sign it
    CFileLock(const std::string& path, std::string what, std::string use);

  private:
    /// What the holder has left about itself.
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

/// While one lives, no other fructl changes a file of the directory: the file itself is replaced by each that does.
class CDirectoryLock : public CFileLock {
  public:
    /// @param file a path to the file
    explicit CDirectoryLock(const std::string& file);
};

/// While one lives, no other fructl uses the KCS interface at the port: an answer goes to whoever asks first.
class CPortLock : public CFileLock {
  public:
    explicit CPortLock(UINT16 port);
};

} // namespace Fructl
