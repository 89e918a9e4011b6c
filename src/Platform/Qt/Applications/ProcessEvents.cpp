#include "Platform/Qt/Applications/ProcessEvents.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <linux/cn_proc.h>
#include <linux/connector.h>
#include <linux/filter.h>
#include <linux/netlink.h>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::chrono::milliseconds shortestPause{500};

// What an event is about. The names of these numbers moved between versions of the kernel's header.
constexpr std::uint32_t answerToRequest = 0;
constexpr std::uint32_t startOfProgram = 2;

constexpr std::size_t contentOffset = NLMSG_LENGTH(0) + sizeof(cn_msg);
constexpr std::size_t kindOffset = contentOffset + offsetof(proc_event, what);

// Of all that the kernel tells of processes, most is about threads and ends: the socket itself
// leaves that out, so that it wakes nobody. Numbers are read in network order.
bool keepOnlyStarts(int socket) {
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kindOffset),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, htonl(startOfProgram), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, 0xffffffff),
        BPF_STMT(BPF_RET | BPF_K, 0),
    }};
    const sock_fprog filter{program.size(), program.data()};
    return setsockopt(socket, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter) == 0;
}

bool bindToProcessEvents(int socket) {
    sockaddr_nl address = {};
    address.nl_family = AF_NETLINK;
    address.nl_groups = CN_IDX_PROC;
    return bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool requestEvents(int socket, proc_cn_mcast_op operation) {
    std::array<char, NLMSG_SPACE(sizeof(cn_msg) + sizeof operation)> bytes{};
    nlmsghdr header = {};
    header.nlmsg_len = NLMSG_LENGTH(sizeof(cn_msg) + sizeof operation);
    header.nlmsg_type = NLMSG_DONE;
    cn_msg message = {};
    message.id = {CN_IDX_PROC, CN_VAL_PROC};
    message.len = sizeof operation;
    std::memcpy(bytes.data(), &header, sizeof header);
    std::memcpy(bytes.data() + NLMSG_LENGTH(0), &message, sizeof message);
    std::memcpy(bytes.data() + contentOffset, &operation, sizeof operation);
    return send(socket, bytes.data(), header.nlmsg_len, 0) >= 0;
}

using Message = std::array<char, 1024>;

// The event of a message that really comes from the kernel.
std::optional<proc_event> eventIn(const Message& message, ssize_t length,
                                  const sockaddr_nl& sender) {
    if (sender.nl_pid != 0) return std::nullopt;
    // Older kernels send less after the part that is read here.
    constexpr std::size_t needed = kindOffset + sizeof(proc_event::what);
    if (length < static_cast<ssize_t>(needed)) return std::nullopt;
    proc_event event = {};
    std::memcpy(&event, message.data() + contentOffset,
                std::min(sizeof event, static_cast<std::size_t>(length) - contentOffset));
    return event;
}

std::uint32_t kindOf(const proc_event& event) {
    return static_cast<std::uint32_t>(event.what);
}

ssize_t receive(int socket, Message& message, sockaddr_nl& sender) {
    socklen_t size = sizeof sender;
    return recvfrom(socket, message.data(), message.size(), MSG_DONTWAIT,
                    reinterpret_cast<sockaddr*>(&sender), &size);
}

// The kernel answers before the request returns, where it answers at all.
bool isGranted(int socket) {
    Message message;
    sockaddr_nl sender = {};
    for (ssize_t length = 0; (length = receive(socket, message, sender)) >= 0;) {
        const auto event = eventIn(message, length, sender);
        if (event && kindOf(*event) == answerToRequest) return event->event_data.ack.err == 0;
    }
    return false;
}

}  // namespace

std::unique_ptr<ProcessEvents> ProcessEvents::open(Scheduler& scheduler, Callback callback) {
    const int socket =
        ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_CONNECTOR);
    if (socket < 0) return nullptr;
    if (bindToProcessEvents(socket) && requestEvents(socket, PROC_CN_MCAST_LISTEN) &&
        isGranted(socket) && keepOnlyStarts(socket))
        return std::unique_ptr<ProcessEvents>(
            new ProcessEvents(socket, scheduler, std::move(callback)));
    close(socket);
    return nullptr;
}

ProcessEvents::ProcessEvents(int socket, Scheduler& scheduler, Callback callback)
    : m_socket(socket),
      m_scheduler(scheduler),
      m_callback(std::move(callback)),
      m_notifier(socket, QSocketNotifier::Read) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, [this] { readSoon(); });
}

ProcessEvents::~ProcessEvents() {
    m_notifier.setEnabled(false);
    requestEvents(m_socket, PROC_CN_MCAST_IGNORE);
    close(m_socket);
}

void ProcessEvents::readSoon() {
    const std::chrono::milliseconds elapsed(m_sinceReading.isValid() ? m_sinceReading.elapsed()
                                                                     : shortestPause.count());
    if (elapsed >= shortestPause) {
        readNow();
        return;
    }
    m_notifier.setEnabled(false);
    m_pause = m_scheduler.after(shortestPause - elapsed, [this] {
        m_notifier.setEnabled(true);
        readNow();
    });
}

void ProcessEvents::readNow() {
    m_sinceReading.start();
    QList<pid_t> started;
    bool hasMissed = false;
    while (true) {
        Message message;
        sockaddr_nl sender = {};
        const ssize_t length = receive(m_socket, message, sender);
        if (length < 0 && errno == EINTR) continue;
        if (length < 0 && errno == ENOBUFS) {
            hasMissed = true;
            continue;
        }
        if (length < 0) break;
        const auto event = eventIn(message, length, sender);
        if (!event || kindOf(*event) != startOfProgram) continue;
        const pid_t process = event->event_data.exec.process_tgid;
        if (!started.contains(process)) started.append(process);
    }
    if (hasMissed)
        m_callback(std::nullopt);
    else if (!started.isEmpty())
        m_callback(started);
}
