#include "support/desktop/ChildProcess.h"

#include "support/desktop/Wait.h"

#include <QStandardPaths>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::chrono::duration<int, std::milli> termination{2000};

/// The pointers of an argument or environment list for execve; valid as long as the list.
std::vector<char*> pointersTo(QList<QByteArray>& texts) {
    std::vector<char*> pointers;
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Runs in the new process, where only calls that are safe after a fork are allowed. Writes errno
/// to `report` when the program cannot be run.
[[noreturn]] void becomeProgram(const char* path, char* const* arguments, char* const* environment,
                                pid_t parent, int output, int error, int report) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(127);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
    execve(path, arguments, environment);
    const int reason = errno;
    if (write(report, &reason, sizeof reason) < 0) _exit(126);
    _exit(127);
}

int captureFile() {
    // In memory and unbounded: a program that writes a lot never has to wait for its reader.
    const int file = memfd_create("captured", MFD_CLOEXEC);
    if (file < 0) throw std::runtime_error("no memory file for captured output");
    fcntl(file, F_SETFL, O_APPEND);
    return file;
}

}  // namespace

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment)
    : m_output(captureFile()), m_error(captureFile()) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const QString path = program.contains(u'/') ? program : QStandardPaths::findExecutable(program);
    const QByteArray pathBytes = path.toLocal8Bit();
    QList<QByteArray> argumentTexts{program.toLocal8Bit()};
    for (const QString& argument : arguments)
        argumentTexts.append(argument.toLocal8Bit());
    QList<QByteArray> environmentTexts;
    for (const QString& entry : environment.toStringList()) {
        environmentTexts.append(entry.toLocal8Bit());
    }
    const std::vector<char*> argv = pointersTo(argumentTexts);
    const std::vector<char*> envp = pointersTo(environmentTexts);

    std::array<int, 2> report{-1, -1};
    int reason = pipe2(report.data(), O_CLOEXEC) == 0 ? 0 : errno;
    const pid_t parent = getpid();
    m_pid = reason == 0 ? fork() : -1;
    if (m_pid == 0) {
        becomeProgram(pathBytes.constData(), argv.data(), envp.data(), parent, m_output, m_error,
                      report[1]);
    }
    if (m_pid < 0 && reason == 0) reason = errno;
    close(report[1]);
    // The pipe closes without a word when the program takes over.
    if (m_pid > 0 && read(report[0], &reason, sizeof reason) > 0) reap();
    close(report[0]);
    if (reason != 0) {
        close(m_output);
        close(m_error);
        throw std::runtime_error("cannot start " + program.toStdString() + ": " +
                                 std::strerror(reason));
    }
}

ChildProcess::~ChildProcess() {
    end();
    close(m_output);
    close(m_error);
}

std::optional<int> ChildProcess::exitStatus() {
    if (!m_exitStatus && hasExited()) reap();
    return m_exitStatus;
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds timeout) {
    static_cast<void>(waitUntil([this] { return !isRunning(); }, timeout));
    return m_exitStatus;
}

ChildProcess::Outcome ChildProcess::waitForOutcome() {
    const auto status = waitForExit(defaultWait);
    return {status, standardOutput(), standardError()};
}

void ChildProcess::sendSignal(int signalNumber) {
    if (!m_exitStatus) kill(m_pid, signalNumber);
}

void ChildProcess::end() {
    if (m_exitStatus) return;
    kill(-m_pid, SIGTERM);
    // Not waitUntil: no Qt event may run while a test is being taken down.
    // The C library's own name for this call cannot be linked from C++ before its version 2.37.
    pollfd exited{static_cast<int>(syscall(SYS_pidfd_open, m_pid, 0)), POLLIN, 0};
    poll(&exited, 1, termination.count());
    close(exited.fd);
    reap();
}

QByteArray ChildProcess::waitForFirstLine() {
    const bool hasLine =
        waitUntil([this] { return standardOutput().contains('\n') || hasExited(); });
    const QByteArray output = standardOutput();
    if (!hasLine || !output.contains('\n')) {
        throw std::runtime_error("a program did not report its readiness: " +
                                 standardError().toStdString());
    }
    return output.left(output.indexOf('\n'));
}

QByteArray ChildProcess::contents(int file) {
    struct stat status {};
    fstat(file, &status);
    QByteArray bytes(status.st_size, Qt::Uninitialized);
    const ssize_t count = pread(file, bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
    bytes.truncate(std::max<ssize_t>(count, 0));
    return bytes;
}

bool ChildProcess::hasExited() const {
    if (m_exitStatus) return true;
    siginfo_t information{};
    // The process stays a zombie, so that the id of its group cannot be used again before reap().
    waitid(P_PID, static_cast<id_t>(m_pid), &information, WEXITED | WNOHANG | WNOWAIT);
    return information.si_pid != 0;
}

void ChildProcess::reap() {
    kill(-m_pid, SIGKILL);
    int status = 0;
    waitpid(m_pid, &status, 0);
    // Its own children, orphaned by now, are ours as the subreaper.
    while (waitpid(-m_pid, nullptr, 0) > 0) {
    }
    m_exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

QByteArray shellOutput(const QString& folder, const QString& commands) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FOLDER"), folder);
    ChildProcess shell(QStringLiteral("sh"),
                       {QStringLiteral("-ec"), QStringLiteral("cd \"$FOLDER\"; ") + commands},
                       environment);
    const auto outcome = shell.waitForOutcome();
    if (outcome.status != 0) throw std::runtime_error(outcome.error.toStdString());
    return outcome.output.trimmed();
}
