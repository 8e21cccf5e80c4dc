#include "filesizelimit.h"

#include <csignal>

FileSizeLimit::FileSizeLimit(rlim_t bytes)
{
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit = {bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_IGN); // writing fails instead
}

FileSizeLimit::~FileSizeLimit()
{
    std::signal(SIGXFSZ, SIG_DFL);
    setrlimit(RLIMIT_FSIZE, &m_before);
}
