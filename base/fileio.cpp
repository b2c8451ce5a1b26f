#include "base/fileio.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <system_error>

#include "base/temporaryfiles.h"

#if defined(_WIN32)
#include <process.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zelko {

namespace fs = std::filesystem;

namespace {

// Linux gives up after 40 links as well.
constexpr int kMaxLinkHops = 40;

constexpr std::string_view kNameTooLong = "the file name is too long";
constexpr std::string_view kCannotCreate = "cannot create a file in that folder";
constexpr std::string_view kCannotWrite = "cannot write the file (disk full?)";

// Short, so a target whose name is near the filesystem's limit still gets one.
fs::path temporaryName(const fs::path& folder)
{
    static const unsigned process = std::random_device{}()
#if defined(_WIN32)
                                    ^ static_cast<unsigned>(_getpid());
#else
                                    ^ static_cast<unsigned>(::getpid());
#endif
    static std::atomic<unsigned> counter{0};
    const auto stamp = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
    char name[48];
    std::snprintf(name, sizeof name, ".zelko-%08x-%x-%x.tmp", process, stamp & 0xFFFFFu, counter++);
    return folder / name;
}

// The file path stands for: links followed to the file they name (which need not exist yet).
std::optional<fs::path> resolveTarget(const fs::path& path, std::string& error)
{
    std::error_code ec;
    const fs::file_status followed = fs::status(path, ec);
    if (ec == std::errc::filename_too_long) {
        error = kNameTooLong;
        return std::nullopt;
    }
    if (fs::is_directory(followed) || path.filename().empty()) {
        error = "is a folder, not a file";
        return std::nullopt;
    }
    if (fs::exists(followed) && !fs::is_regular_file(followed)) {
        error = "is not a regular file";
        return std::nullopt;
    }
    fs::path target = path;
    for (int hop = 0; hop < kMaxLinkHops; ++hop) {
        if (!fs::is_symlink(fs::symlink_status(target, ec)))
            return target;
        const fs::path link = fs::read_symlink(target, ec);
        if (ec) {
            error = "cannot follow the link: " + ec.message();
            return std::nullopt;
        }
        target = link.is_absolute() ? link : target.parent_path() / link;
    }
    error = "too many levels of symbolic links";
    return std::nullopt;
}

// Creates the temporary (never over an existing file) with the bytes, and the
// target's permissions when there is a target.
bool writeTemporary(const fs::path& temporary, const fs::path& target, std::string_view bytes, int& registration,
                    std::string& error)
{
#if defined(_WIN32)
    std::error_code ec;
    if (fs::exists(temporary, ec)) {
        error = kCannotCreate;
        return false;
    }
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    if (!out) {
        error = kCannotCreate;
        return false;
    }
    registration = registerTemporaryFile(temporary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        error = kCannotWrite;
        return false;
    }
    const fs::file_status previous = fs::status(target, ec);
    if (!ec && fs::is_regular_file(previous))
        fs::permissions(temporary, previous.permissions(), ec);
    return true;
#else
    // A file being replaced lends its permissions, and until then nobody else may
    // read the new bytes; a new file gets what the umask allows.
    struct stat previous {};
    const bool replacing = ::stat(target.c_str(), &previous) == 0 && S_ISREG(previous.st_mode);
    // Named before it exists: a signal the moment the file appears must find it listed.
    registration = registerTemporaryFile(temporary);
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replacing ? 0600 : 0666);
    if (fd < 0) {
        const int reason = errno;
        releaseTemporaryFile(registration);
        registration = -1;
        error = reason == ENAMETOOLONG ? kNameTooLong : kCannotCreate;
        return false;
    }
    bool written = true;
    for (std::size_t done = 0; written && done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n > 0)
            done += static_cast<std::size_t>(n);
        else if (n == 0 || errno != EINTR)
            written = false;
    }
    // The replaced file's permissions, and its owner where we may.
    if (written && replacing) {
        if (::fchmod(fd, previous.st_mode & 07777) != 0)
            written = false;
        else if (previous.st_uid != ::geteuid() || previous.st_gid != ::getegid())
            (void)!::fchown(fd, previous.st_uid, previous.st_gid);
    }
    if (::close(fd) != 0)
        written = false;
    if (!written)
        error = kCannotWrite;
    return written;
#endif
}

std::string replaceMessage(const std::error_code& ec)
{
    if (ec == std::errc::filename_too_long)
        return std::string(kNameTooLong);
    return "cannot replace the file: " + ec.message();
}

}  // namespace

bool sameFile(const fs::path& a, const fs::path& b)
{
    std::error_code ec;
    if (fs::equivalent(a, b, ec))
        return true;
    const fs::path canonicalA = fs::weakly_canonical(a, ec);
    if (ec)
        return a == b;
    const fs::path canonicalB = fs::weakly_canonical(b, ec);
    return ec ? a == b : canonicalA == canonicalB;
}

std::optional<std::string> readFileBytes(const fs::path& path, std::string& error, std::uintmax_t maxBytes)
{
    std::error_code ec;
    if (fs::is_directory(path, ec)) {
        error = "is a folder, not a file";
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open the file";
        return std::nullopt;
    }
    // Refused before a byte is read; the bound below still holds for a file that
    // grows meanwhile or reports no size (pipes, /proc).
    std::string bytes;
    if (const std::uintmax_t size = fs::file_size(path, ec); !ec) {
        if (size > maxBytes) {
            error = "file too large";
            return std::nullopt;
        }
        // Straight into place; the loop below takes whatever the file grew by.
        bytes.resize(static_cast<std::size_t>(size));
        in.read(bytes.data(), static_cast<std::streamsize>(size));
        bytes.resize(static_cast<std::size_t>(in.gcount()));
    }
    char chunk[65536];
    while (in) {
        in.read(chunk, sizeof chunk);
        bytes.append(chunk, static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > maxBytes) {
            error = "file too large";
            return std::nullopt;
        }
    }
    if (in.bad()) {
        error = "cannot read the file";
        return std::nullopt;
    }
    return bytes;
}

std::optional<TextReader> readTextFile(const fs::path& path, ReadMode mode, std::string& error, std::uintmax_t maxBytes)
{
    const auto elsewhere = [&]() -> std::optional<TextReader> {
        const auto bytes = readFileBytes(path, error, maxBytes);
        if (!bytes)
            return std::nullopt;
        return TextReader(*bytes, mode);
    };
    std::error_code ec;
    if (fs::is_directory(path, ec))
        return elsewhere();
    std::ifstream in(path, std::ios::binary);
    const std::uintmax_t size = fs::file_size(path, ec);
    if (!in || ec || size > maxBytes)
        return elsewhere();  // its reasons, or a size it finds as it reads
    TextBuffer buffer(static_cast<std::size_t>(size));
    in.read(buffer.data(), static_cast<std::streamsize>(size));
    buffer.shrink(static_cast<std::size_t>(in.gcount()));
    if (in.bad()) {
        error = "cannot read the file";
        return std::nullopt;
    }
    if (in && in.peek() != std::ifstream::traits_type::eof())
        return elsewhere();  // it grew while read
    return TextReader(std::move(buffer), mode);
}

bool saveFileAtomically(const fs::path& path, std::string_view bytes, std::string& error)
{
    PendingOutputs outputs;
    return outputs.stage(path, bytes, error) && outputs.commit(error);
}

PendingOutputs::~PendingOutputs()
{
    discard();
}

std::optional<PendingOutputs::Output> PendingOutputs::prepare(const fs::path& path, std::string& error)
{
    std::optional<fs::path> target = resolveTarget(path, error);
    if (!target)
        return std::nullopt;
    for (const Output& other : outputs_)
        if (sameFile(other.target, *target)) {
            error = "names the same file as " + other.given.string();
            return std::nullopt;
        }
    return Output{path, *target, temporaryName(target->parent_path()), -1};
}

bool PendingOutputs::stage(const fs::path& path, std::string_view bytes, std::string& error)
{
    std::optional<Output> output = prepare(path, error);
    if (!output)
        return false;
    if (!writeTemporary(output->temporary, output->target, bytes, output->registration, error)) {
        forget(*output);
        return false;
    }
    outputs_.push_back(std::move(*output));
    return true;
}

std::optional<fs::path> PendingOutputs::reserve(const fs::path& path, std::string& error)
{
    std::optional<Output> output = prepare(path, error);
    if (!output)
        return std::nullopt;
    if (!writeTemporary(output->temporary, output->target, {}, output->registration, error)) {
        forget(*output);
        return std::nullopt;
    }
    outputs_.push_back(std::move(*output));
    return outputs_.back().temporary;
}

bool PendingOutputs::beginStream(const fs::path& path, std::string& error)
{
    const std::optional<fs::path> temporary = reserve(path, error);
    if (!temporary)
        return false;
    // The temporary exists with its permissions; it is only filled here.
    stream_ = std::make_unique<std::ofstream>(*temporary, std::ios::binary | std::ios::trunc);
    if (!*stream_) {
        error = kCannotWrite;
        withdraw();
        return false;
    }
    return true;
}

void PendingOutputs::write(std::string_view bytes)
{
    if (stream_ && *stream_)
        stream_->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

bool PendingOutputs::endStream(std::string& error)
{
    if (!stream_)
        return false;
    stream_->close();
    const bool written = static_cast<bool>(*stream_);
    stream_.reset();
    if (!written) {
        error = kCannotWrite;
        withdraw();
    }
    return written;
}

void PendingOutputs::withdraw()
{
    stream_.reset();
    if (outputs_.empty())
        return;
    forget(outputs_.back());
    outputs_.pop_back();
}

void PendingOutputs::forget(Output& output)
{
    if (output.registration < 0 && output.temporary.empty())
        return;
    std::error_code ignored;
    fs::remove(output.temporary, ignored);
    releaseTemporaryFile(output.registration);
    output.registration = -1;
}

bool PendingOutputs::commit(std::string& error, fs::path* failed)
{
    // With more than one output, hard links keep the previous files until every
    // rename went through (where the filesystem has no hard links, a failure
    // halfway leaves the outputs renamed so far).
    std::vector<Output> backups(outputs_.size());
    std::vector<bool> existed(outputs_.size(), false);
    if (outputs_.size() > 1)
        for (std::size_t i = 0; i < outputs_.size(); ++i) {
            std::error_code ec;
            existed[i] = fs::exists(fs::symlink_status(outputs_[i].target, ec));
            if (!existed[i])
                continue;
            const fs::path backup = temporaryName(outputs_[i].target.parent_path());
            fs::create_hard_link(outputs_[i].target, backup, ec);
            if (!ec)
                backups[i] = Output{{}, outputs_[i].target, backup, registerTemporaryFile(backup)};
        }
    bool committed = true;
    std::size_t done = 0;
    for (; done < outputs_.size(); ++done) {
        std::error_code ec;
        fs::rename(outputs_[done].temporary, outputs_[done].target, ec);
        if (ec) {
            error = replaceMessage(ec);
            if (failed)
                *failed = outputs_[done].given;
            committed = false;
            break;
        }
        releaseTemporaryFile(outputs_[done].registration);
        outputs_[done].registration = -1;
        outputs_[done].temporary.clear();
    }
    if (!committed)
        for (std::size_t i = 0; i < done; ++i) {
            std::error_code ignored;
            if (!backups[i].temporary.empty()) {
                fs::rename(backups[i].temporary, backups[i].target, ignored);
                if (!ignored)
                    backups[i].temporary.clear();
            } else if (!existed[i]) {
                fs::remove(outputs_[i].target, ignored);
            }
        }
    for (Output& backup : backups)
        forget(backup);
    discard();
    return committed;
}

void PendingOutputs::discard()
{
    for (Output& output : outputs_)
        forget(output);
    outputs_.clear();
}

}  // namespace zelko
