// The simulated client's system log: datagram listeners on the journal's socket and on
// /dev/log that write what they receive into text files, for transcripts.
//
//   logsink JOURNAL_SOCKET JOURNAL_FILE SYSLOG_SOCKET SYSLOG_FILE
//       binds both sockets, then goes to the background (the parent exits once they accept)
//   logsink --sync SOCKET
//       returns once every datagram sent to SOCKET before it has been written out
//
// Journal entries arrive in the journal's native protocol: "NAME=value\n" fields, or
// "NAME\n" followed by a 64-bit little-endian length, the bytes and "\n" for a value holding a
// line break or any byte; an entry too large for one datagram comes as a sealed memory file
// passed with the datagram. Each entry is written as one "NAME=value" line per field in the
// order sent, then a line "--". A syslog datagram is written as one line. In both, a
// backslash is written "\\", a line break "\n" and any other control or non-UTF-8 byte "\xNN".
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

const char syncRequest[] = "SIM_LOGSINK_SYNC";

bool socketAddress(const char *path, sockaddr_un *address)
{
    std::memset(address, 0, sizeof *address);
    address->sun_family = AF_UNIX;
    const size_t length = std::strlen(path);
    if (length >= sizeof address->sun_path)
        return false;
    std::memcpy(address->sun_path, path, length + 1);
    return true;
}

int listenOn(const char *path)
{
    sockaddr_un address;
    if (!socketAddress(path, &address))
        return -1;
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    unlink(path);
    if (bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
        chmod(path, 0666) != 0) {
        close(fd);
        return -1;
    }
    // Room for a burst of entries while the sink is busy writing.
    const int size = 4 << 20;
    setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    return fd;
}

// Length of the valid UTF-8 sequence at text[i], or 0.
size_t utf8Length(const std::string &text, size_t i)
{
    const auto byte = [&text](size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(i);
    size_t length = 0;
    if (lead >= 0xc2 && lead <= 0xdf)
        length = 2;
    else if (lead >= 0xe0 && lead <= 0xef)
        length = 3;
    else if (lead >= 0xf0 && lead <= 0xf4)
        length = 4;
    if (length == 0 || i + length > text.size())
        return 0;
    for (size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xc0) != 0x80)
            return 0;
    }
    return length;
}

std::string escaped(const std::string &text)
{
    std::string out;
    for (size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '\\') {
            out += "\\\\";
        } else if (byte == '\n') {
            out += "\\n";
        } else if (byte >= 0x20 && byte < 0x7f) {
            out += text[i];
        } else if (const size_t length = byte >= 0x80 ? utf8Length(text, i) : 0) {
            out.append(text, i, length);
            i += length;
            continue;
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", byte);
            out += hex;
        }
        ++i;
    }
    return out;
}

// The fields of one journal entry, as "NAME=value" lines.
std::string journalEntry(const std::string &data)
{
    std::string out;
    size_t at = 0;
    while (at < data.size()) {
        const size_t end = data.find('\n', at);
        const std::string line = data.substr(at, end == std::string::npos ? end : end - at);
        at = end == std::string::npos ? data.size() : end + 1;
        if (line.empty())
            continue;
        if (line.find('=') != std::string::npos) {
            out += escaped(line) + '\n';
            continue;
        }
        uint64_t size = 0;
        if (data.size() - at < 8) {
            out += "(truncated binary field " + escaped(line) + ")\n";
            break;
        }
        for (int k = 7; k >= 0; --k)
            size = size << 8 | static_cast<unsigned char>(data[at + k]);
        at += 8;
        if (size > data.size() - at) {
            out += "(truncated binary field " + escaped(line) + ")\n";
            break;
        }
        out += escaped(line) + '=' + escaped(data.substr(at, size)) + '\n';
        at += size + 1; // the value's closing line break
    }
    return out + "--\n";
}

void append(const char *file, const std::string &text)
{
    if (FILE *out = std::fopen(file, "a")) {
        std::fputs(text.c_str(), out);
        std::fclose(out);
    }
}

// Receives one datagram from fd into data; answers a sync request itself. Returns false when
// the datagram was a sync request (or nothing could be read).
bool receive(int fd, std::string *data)
{
    std::vector<char> buffer(1 << 20);
    char control[CMSG_SPACE(sizeof(int))];
    sockaddr_un sender{};
    iovec iov{buffer.data(), buffer.size()};
    msghdr message{};
    message.msg_name = &sender;
    message.msg_namelen = sizeof sender;
    message.msg_iov = &iov;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t size = recvmsg(fd, &message, MSG_CMSG_CLOEXEC);
    if (size < 0)
        return false;
    data->assign(buffer.data(), static_cast<size_t>(size));
    for (cmsghdr *c = CMSG_FIRSTHDR(&message); c; c = CMSG_NXTHDR(&message, c)) {
        if (c->cmsg_level != SOL_SOCKET || c->cmsg_type != SCM_RIGHTS)
            continue;
        int passed;
        std::memcpy(&passed, CMSG_DATA(c), sizeof passed);
        data->clear();
        ssize_t got;
        off_t offset = 0;
        while ((got = pread(passed, buffer.data(), buffer.size(), offset)) > 0) {
            data->append(buffer.data(), static_cast<size_t>(got));
            offset += got;
        }
        close(passed);
    }
    if (*data != syncRequest)
        return true;
    if (message.msg_namelen > sizeof(sa_family_t))
        sendto(fd, "", 0, 0, reinterpret_cast<sockaddr *>(&sender), message.msg_namelen);
    return false;
}

int sync(const char *path)
{
    sockaddr_un address;
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un self{};
    self.sun_family = AF_UNIX; // an automatically chosen abstract name to be answered at
    if (fd < 0 || !socketAddress(path, &address) ||
        bind(fd, reinterpret_cast<sockaddr *>(&self), sizeof(sa_family_t)) != 0 ||
        sendto(fd, syncRequest, sizeof syncRequest - 1, 0, reinterpret_cast<sockaddr *>(&address),
               sizeof address) < 0)
        return 1;
    pollfd wait{fd, POLLIN, 0};
    if (poll(&wait, 1, 10000) != 1)
        return 1;
    char byte;
    return recv(fd, &byte, 1, 0) < 0 ? 1 : 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 3 && std::strcmp(argv[1], "--sync") == 0)
        return sync(argv[2]);
    if (argc != 5) {
        std::fprintf(stderr, "usage: logsink JOURNAL_SOCKET JOURNAL_FILE SYSLOG_SOCKET "
                             "SYSLOG_FILE | --sync SOCKET\n");
        return 2;
    }
    const int journal = listenOn(argv[1]);
    const int syslog = listenOn(argv[3]);
    if (journal < 0 || syslog < 0) {
        std::fprintf(stderr, "logsink: cannot listen on %s and %s: %s\n", argv[1], argv[3],
                     std::strerror(errno));
        return 1;
    }
    const pid_t child = fork();
    if (child != 0)
        return child < 0 ? 1 : 0;
    setsid();
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int fd = 0; fd <= 2 && null >= 0; ++fd)
        dup2(null, fd);
    pollfd fds[2] = {{journal, POLLIN, 0}, {syslog, POLLIN, 0}};
    std::string data;
    for (;;) {
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            return 1;
        }
        if ((fds[0].revents & POLLIN) && receive(journal, &data))
            append(argv[2], journalEntry(data));
        if ((fds[1].revents & POLLIN) && receive(syslog, &data)) {
            while (!data.empty() && (data.back() == '\n' || data.back() == '\0'))
                data.pop_back();
            append(argv[4], escaped(data) + '\n');
        }
    }
}
