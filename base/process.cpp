#include "base/process.h"

#include <algorithm>
#include <atomic>
#include <optional>

#ifdef _WIN32
#include <thread>

#ifndef NOMINMAX
#define NOMINMAX  // std::min and std::max, not the macros
#endif
#include <windows.h>
#else
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;
#endif

namespace zelko {

namespace {

void appendCapped(std::string& to, const char* bytes, std::size_t count)
{
    to.append(bytes, std::min(count, kMaxProcessOutputBytes - std::min(to.size(), kMaxProcessOutputBytes)));
}

}  // namespace

#ifndef _WIN32

std::string uniqueTag()
{
    static std::atomic<unsigned long> counter{0};
    return std::to_string(static_cast<long>(::getpid())) + "-" + std::to_string(counter++);
}

namespace {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }
    int get() const { return fd_; }
    bool open() const { return fd_ >= 0; }
    void reset(int fd)
    {
        close();
        fd_ = fd;
    }
    void close()
    {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = -1;
    }

private:
    int fd_ = -1;
};

// Both ends close on exec at once: a program another thread starts meanwhile
// must not inherit them, or our end would see no end of file until it exits.
bool makePipe(Descriptor& readEnd, Descriptor& writeEnd)
{
    int fds[2];
#ifdef __linux__
    if (::pipe2(fds, O_CLOEXEC) != 0)
        return false;
#else
    if (::pipe(fds) != 0)
        return false;
    ::fcntl(fds[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(fds[1], F_SETFD, FD_CLOEXEC);
#endif
    readEnd.reset(fds[0]);
    writeEnd.reset(fds[1]);
    return true;
}

void setNonBlocking(int fd) { ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK); }

// Reads what is there; false at end of file or on an error.
bool drain(int fd, std::string& to)
{
    char chunk[65536];
    for (;;) {
        const ssize_t got = ::read(fd, chunk, sizeof chunk);
        if (got > 0) {
            appendCapped(to, chunk, static_cast<std::size_t>(got));
            continue;
        }
        if (got < 0 && errno == EINTR)
            continue;
        return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
}

// A child that stops reading must not end this process with SIGPIPE: the signal
// is blocked in this thread while the child runs, and one it raised is taken back.
class PipeSignalBlock {
public:
    PipeSignalBlock()
    {
        sigemptyset(&pipeSignal_);
        sigaddset(&pipeSignal_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipeSignal_, &previous_);
    }
    ~PipeSignalBlock()
    {
        sigset_t pending;
        sigpending(&pending);
        if (!wasPending_ && sigismember(&pending, SIGPIPE) == 1) {
            int taken = 0;
            sigwait(&pipeSignal_, &taken);
        }
        pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    }

private:
    sigset_t pipeSignal_{};
    sigset_t previous_{};
    bool wasPending_ = false;
};

struct Spawned {
    pid_t pid = -1;
    int error = 0;
};

Spawned spawn(const ProcessRequest& request, int input, int output, int errorOutput)
{
    std::vector<std::string> words;
    words.push_back(request.program);
    words.insert(words.end(), request.arguments.begin(), request.arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, input, 0);
    posix_spawn_file_actions_adddup2(&actions, output, 1);
    posix_spawn_file_actions_adddup2(&actions, errorOutput, 2);
    // Its own process group, so that a kill reaches what it starts; SIGPIPE as
    // a program expects it, whatever this thread has blocked or ignored.
    sigset_t none, pipeSignal;
    sigemptyset(&none);
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &pipeSignal);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    Spawned spawned;
    spawned.error = posix_spawnp(&spawned.pid, request.program.c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return spawned;
}

int millisecondsUntil(std::chrono::steady_clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<long long>(left.count() + 1, 0, 1000000));
}

}  // namespace

ProcessResult runProcess(const ProcessRequest& request, std::stop_token stop)
{
    ProcessResult result;
    Descriptor inRead, inWrite, outRead, outWrite, errRead, errWrite, wakeRead, wakeWrite;
    if (!makePipe(inRead, inWrite) || !makePipe(outRead, outWrite) || !makePipe(errRead, errWrite)
        || !makePipe(wakeRead, wakeWrite)) {
        result.error = std::string("cannot make a pipe: ") + std::strerror(errno);
        return result;
    }
    const PipeSignalBlock pipeSignalBlock;
    const Spawned child = spawn(request, inRead.get(), outWrite.get(), errWrite.get());
    if (child.error != 0) {
        result.error = child.error == ENOENT ? "not found" : std::strerror(child.error);
        return result;
    }
    inRead.close();
    outWrite.close();
    errWrite.close();
    for (const int fd : {inWrite.get(), outRead.get(), errRead.get(), wakeRead.get(), wakeWrite.get()})
        setNonBlocking(fd);
    // The stop wakes the wait below at once instead of at its next look.
    const std::stop_callback onStop(stop, [&wakeWrite] {
        const char byte = 1;
        [[maybe_unused]] const ssize_t ignored = ::write(wakeWrite.get(), &byte, 1);
    });

    using Clock = std::chrono::steady_clock;
    const bool limited = request.timeLimit.count() > 0;
    const Clock::time_point deadline = Clock::now() + request.timeLimit;
    // Output a program's own children still hold open is not waited for long.
    constexpr auto kAfterExit = std::chrono::milliseconds(200);
    constexpr int kExitLook = 20;  // ms between looks for an exit the pipes did not show
    std::optional<Clock::time_point> exitedAt;
    int status = 0;
    std::size_t written = 0;
    if (request.input.empty())
        inWrite.close();
    ProcessEnd killedFor = ProcessEnd::Exited;
    for (;;) {
        if (!exitedAt) {
            pid_t reaped = 0;
            do
                reaped = ::waitpid(child.pid, &status, WNOHANG);
            while (reaped < 0 && errno == EINTR);
            if (reaped == child.pid || reaped < 0)
                exitedAt = Clock::now();
        }
        if (exitedAt && ((!outRead.open() && !errRead.open()) || Clock::now() - *exitedAt >= kAfterExit))
            break;
        if (!exitedAt && stop.stop_requested()) {
            killedFor = ProcessEnd::Stopped;
            break;
        }
        if (!exitedAt && limited && Clock::now() >= deadline) {
            killedFor = ProcessEnd::TimedOut;
            break;
        }
        pollfd fds[4];
        nfds_t count = 0;
        const auto watch = [&](const Descriptor& d, short events) {
            if (d.open())
                fds[count++] = {d.get(), events, 0};
        };
        if (!exitedAt)
            watch(wakeRead, POLLIN);
        watch(inWrite, POLLOUT);
        watch(outRead, POLLIN);
        watch(errRead, POLLIN);
        int timeout = kExitLook;
        if (!exitedAt && limited)
            timeout = std::min(timeout, millisecondsUntil(deadline));
        if (::poll(fds, count, timeout) < 0 && errno != EINTR)
            break;
        if (inWrite.open()) {
            const ssize_t sent = ::write(inWrite.get(), request.input.data() + written, request.input.size() - written);
            if (sent > 0)
                written += static_cast<std::size_t>(sent);
            // A program that closed its input (or never reads it) is not an error.
            if (written == request.input.size() || (sent < 0 && errno != EAGAIN && errno != EINTR))
                inWrite.close();
        }
        if (outRead.open() && !drain(outRead.get(), result.output))
            outRead.close();
        if (errRead.open() && !drain(errRead.get(), result.errorOutput))
            errRead.close();
    }
    if (killedFor != ProcessEnd::Exited) {
        ::kill(-child.pid, SIGKILL);
        ::kill(child.pid, SIGKILL);
        while (::waitpid(child.pid, &status, 0) < 0 && errno == EINTR) {
        }
        result.end = killedFor;
        return result;
    }
    if (WIFEXITED(status)) {
        result.end = ProcessEnd::Exited;
        result.exitCode = WEXITSTATUS(status);
    } else {
        result.end = ProcessEnd::Crashed;
    }
    return result;
}

#else  // _WIN32

std::string uniqueTag()
{
    static std::atomic<unsigned long> counter{0};
    return std::to_string(static_cast<unsigned long>(GetCurrentProcessId())) + "-" + std::to_string(counter++);
}

namespace {

std::wstring wide(const std::string& utf8)
{
    if (utf8.empty())
        return {};
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), length);
    return out;
}

// One argument as the C runtime splits a command line: quotes around it,
// backslashes doubled before a quote.
void appendQuoted(std::wstring& line, const std::wstring& argument)
{
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        line.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        backslashes = 0;
        line += c;
    }
    line.append(2 * backslashes, L'\\');
    line += L'"';
}

struct Handle {
    HANDLE h = nullptr;
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { close(); }
    void close()
    {
        if (h && h != INVALID_HANDLE_VALUE)
            CloseHandle(h);
        h = nullptr;
    }
};

// The child's end is inherited, ours is not.
bool makePipe(Handle& childEnd, Handle& ourEnd, bool childReads)
{
    SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0))
        return false;
    childEnd.h = childReads ? readEnd : writeEnd;
    ourEnd.h = childReads ? writeEnd : readEnd;
    return SetHandleInformation(ourEnd.h, HANDLE_FLAG_INHERIT, 0) != 0;
}

void readAll(HANDLE from, std::string& to)
{
    char chunk[65536];
    DWORD got = 0;
    while (ReadFile(from, chunk, static_cast<DWORD>(sizeof chunk), &got, nullptr) && got > 0)
        appendCapped(to, chunk, got);
}

}  // namespace

ProcessResult runProcess(const ProcessRequest& request, std::stop_token stop)
{
    ProcessResult result;
    Handle inChild, inOurs, outChild, outOurs, errChild, errOurs;
    if (!makePipe(inChild, inOurs, true) || !makePipe(outChild, outOurs, false) || !makePipe(errChild, errOurs, false)) {
        result.error = "cannot make a pipe";
        return result;
    }
    std::wstring commandLine;
    appendQuoted(commandLine, wide(request.program));
    for (const std::string& argument : request.arguments) {
        commandLine += L' ';
        appendQuoted(commandLine, wide(argument));
    }
    // A job holds the program and whatever it starts, so that one kill ends them all.
    Handle job;
    job.h = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (job.h)
        SetInformationJobObject(job.h, JobObjectExtendedLimitInformation, &limits, sizeof limits);

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = inChild.h;
    startup.hStdOutput = outChild.h;
    startup.hStdError = errChild.h;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW | CREATE_SUSPENDED,
                        nullptr, nullptr, &startup, &started)) {
        const DWORD code = GetLastError();
        result.error = code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND
                           ? "not found"
                           : "cannot start it (error " + std::to_string(code) + ")";
        return result;
    }
    Handle process, thread;
    process.h = started.hProcess;
    thread.h = started.hThread;
    if (job.h)
        AssignProcessToJobObject(job.h, process.h);
    ResumeThread(thread.h);
    inChild.close();
    outChild.close();
    errChild.close();

    std::thread feeder([&] {
        DWORD sent = 0;
        std::size_t written = 0;
        while (written < request.input.size()
               && WriteFile(inOurs.h, request.input.data() + written,
                            static_cast<DWORD>(std::min<std::size_t>(request.input.size() - written, 65536)), &sent,
                            nullptr))
            written += sent;
        inOurs.close();
    });
    std::thread outReader([&] { readAll(outOurs.h, result.output); });
    std::thread errReader([&] { readAll(errOurs.h, result.errorOutput); });

    const bool limited = request.timeLimit.count() > 0;
    const auto deadline = std::chrono::steady_clock::now() + request.timeLimit;
    ProcessEnd killedFor = ProcessEnd::Exited;
    while (WaitForSingleObject(process.h, 10) == WAIT_TIMEOUT) {
        if (stop.stop_requested())
            killedFor = ProcessEnd::Stopped;
        else if (limited && std::chrono::steady_clock::now() >= deadline)
            killedFor = ProcessEnd::TimedOut;
        else
            continue;
        if (!job.h || !TerminateJobObject(job.h, 1))
            TerminateProcess(process.h, 1);
        WaitForSingleObject(process.h, INFINITE);
        break;
    }
    // What the program started may still hold the pipes, and a feeder may wait
    // on a program that never read: the job ends them both.
    if (job.h)
        TerminateJobObject(job.h, 1);
    feeder.join();
    outReader.join();
    errReader.join();
    if (killedFor != ProcessEnd::Exited) {
        result.end = killedFor;
        return result;
    }
    DWORD code = 0;
    GetExitCodeProcess(process.h, &code);
    result.end = ProcessEnd::Exited;
    result.exitCode = static_cast<int>(code);
    return result;
}

#endif

}  // namespace zelko
