#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/types.h>

/// No file may grow beyond this while it lives, as far as a process writes to it. Beyond it the
/// system sends SIGXFSZ, which ends a process that does nothing about it.
class FileSizeLimit {
public:
    /// Of this process, unless another one is named.
    explicit FileSizeLimit(rlim_t bytes, pid_t process = 0) : m_process(process) {
        EXPECT_EQ(::prlimit(process, RLIMIT_FSIZE, nullptr, &m_old), 0);
        const rlimit limit{bytes, m_old.rlim_max};
        EXPECT_EQ(::prlimit(process, RLIMIT_FSIZE, &limit, nullptr), 0);
    }
    ~FileSizeLimit() { EXPECT_EQ(::prlimit(m_process, RLIMIT_FSIZE, &m_old, nullptr), 0); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    pid_t m_process;
    rlimit m_old{};
};
