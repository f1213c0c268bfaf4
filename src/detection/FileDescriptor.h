#pragma once

#include <unistd.h>
#include <utility>

namespace brenvik {

// Owns one POSIX file descriptor and closes it once, whatever path leaves the
// scope. Internal to the snapshot sources.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) noexcept
        : m_fd(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    [[nodiscard]] int get() const noexcept { return m_fd; }
    [[nodiscard]] bool isValid() const noexcept { return m_fd >= 0; }
    [[nodiscard]] int release() noexcept { return std::exchange(m_fd, -1); }
    void reset() noexcept {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }

private:
    int m_fd;
};

} // namespace brenvik
