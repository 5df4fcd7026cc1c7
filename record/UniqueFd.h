#ifndef UNIQUEFD_H
#define UNIQUEFD_H

#include <unistd.h>

// A file descriptor closed when it goes out of scope.
class UniqueFd
{
public:
    explicit UniqueFd(int fd) : m_fd(fd) {}
    ~UniqueFd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;

    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }
    // Closes now and gives close()'s result: the last moment a write error can show.
    int close()
    {
        const int result = ::close(m_fd);
        m_fd = -1;
        return result;
    }

private:
    int m_fd;
};

#endif
