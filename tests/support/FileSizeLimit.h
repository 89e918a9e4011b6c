#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

/// No file may grow beyond this while it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &m_old), 0);
        const rlimit limit{bytes, m_old.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &m_old), 0);
        ::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_old{};
    void (*m_handler)(int);
};
