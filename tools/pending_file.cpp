// Temporary output files and their removal when the tool is interrupted.
// The signal handler may only make async-signal-safe calls, so pending
// paths sit in fixed slots that it can read without locks or allocation.
#include "pending_file.h"

#include "errors.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>

namespace orvtool {

namespace {

// One pending path. `used` is set after the path is complete and cleared
// before the path may change, so the handler never reads a half-written
// path. A path too long for a slot, or a file beyond the last free slot,
// is simply not registered.
struct Slot {
    std::atomic<bool> used{false};
    char path[1024];
};

constexpr std::size_t kNoSlot = SIZE_MAX;
std::array<Slot, 128> g_slots;

std::size_t register_path(const std::string &path) {
    if (path.size() >= sizeof(Slot::path))
        return kNoSlot;
    static std::mutex claiming;
    std::lock_guard<std::mutex> lock(claiming);
    std::size_t found = kNoSlot;
    for (std::size_t i = 0; i < g_slots.size() && found == kNoSlot; ++i)
        if (!g_slots[i].used.load(std::memory_order_relaxed))
            found = i;
    if (found != kNoSlot) {
        std::memcpy(g_slots[found].path, path.c_str(), path.size() + 1);
        g_slots[found].used.store(true, std::memory_order_release);
    }
    return found;
}

void release_slot(std::size_t slot) {
    if (slot != kNoSlot)
        g_slots[slot].used.store(false, std::memory_order_release);
}

void remove_pending_and_reraise(int signal_number) {
    for (Slot &slot : g_slots)
        if (slot.used.load(std::memory_order_acquire))
            unlink(slot.path);
    ::signal(signal_number, SIG_DFL);
    ::raise(signal_number);
}

// The signals that remove pending files, blocked while one is created and
// registered so that no file exists unregistered when they arrive.
class InterruptsBlocked {
public:
    InterruptsBlocked() {
        sigset_t interrupts;
        sigemptyset(&interrupts);
        for (int signal_number : kInterrupts)
            sigaddset(&interrupts, signal_number);
        pthread_sigmask(SIG_BLOCK, &interrupts, &previous_);
    }
    ~InterruptsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    InterruptsBlocked(const InterruptsBlocked &) = delete;
    InterruptsBlocked &operator=(const InterruptsBlocked &) = delete;

    static constexpr int kInterrupts[] = {SIGINT, SIGTERM, SIGHUP};

private:
    sigset_t previous_;
};

// `path` with its symbolic links followed, however deep; a dangling link
// gives the path it names, where the file is then created.
std::string followed_links(const std::string &path) {
    constexpr int kMostLinks = 40;
    std::filesystem::path current = path;
    for (int depth = 0; depth < kMostLinks; ++depth) {
        std::error_code error;
        if (!std::filesystem::is_symlink(
                std::filesystem::symlink_status(current, error)))
            return current.string();
        std::filesystem::path link = std::filesystem::read_symlink(current, error);
        if (error)
            return current.string();
        current = link.is_absolute() ? link : current.parent_path() / link;
    }
    throw write_error(path, ELOOP);
}

std::string temporary_directory() {
    const char *directory = std::getenv("TMPDIR");
    std::string path = directory && *directory ? directory : "/tmp";
    return path.back() == '/' ? path : path + "/";
}

// Copies the file at `from` into the FIFO or device `to`.
void copy_into(const std::string &from, const std::string &to,
               const std::string &target) {
    int in = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        throw write_error(target, errno);
    int out = open(to.c_str(), O_WRONLY | O_CLOEXEC);
    if (out < 0) {
        int error = errno;
        close(in);
        throw write_error(target, error);
    }
    char buffer[1 << 16];
    int error = 0;
    for (;;) {
        ssize_t got = read(in, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            error = got < 0 ? errno : 0;
            break;
        }
        for (ssize_t put = 0; put < got && error == 0;) {
            ssize_t wrote = write(out, buffer + put, static_cast<size_t>(got - put));
            if (wrote < 0 && errno != EINTR)
                error = errno;
            else if (wrote > 0)
                put += wrote;
        }
        if (error != 0)
            break;
    }
    close(in);
    if (close(out) != 0 && error == 0)
        error = errno;
    if (error != 0)
        throw write_error(target, error);
}

} // namespace

PendingFile::PendingFile(std::string target)
    : target_(std::move(target)), destination_(target_) {
    static std::atomic<unsigned> counter{0};
    struct stat info {};
    if (stat(target_.c_str(), &info) == 0) {
        if (S_ISDIR(info.st_mode))
            throw write_error(target_, EISDIR);
        copied_in_ = S_ISFIFO(info.st_mode) || S_ISCHR(info.st_mode) ||
                     S_ISBLK(info.st_mode);
        if (!copied_in_ && !S_ISREG(info.st_mode))
            throw ToolError(target_ + ": cannot write: not a file, FIFO or "
                                      "device");
    }
    // A FIFO or a device is opened through its links; a file is replaced
    // where the links end.
    if (!copied_in_)
        destination_ = followed_links(target_);
    std::string::size_type slash = destination_.rfind('/');
    std::string directory =
        slash == std::string::npos ? "" : destination_.substr(0, slash + 1);
    std::string name = slash == std::string::npos
                           ? destination_
                           : destination_.substr(slash + 1);
    if (copied_in_)
        directory = temporary_directory();
    InterruptsBlocked blocked;
    for (;;) {
        path_ = directory + "." + name + ".orvane-" + std::to_string(getpid()) +
                "-" + std::to_string(counter++) + ".tmp";
        int fd = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                      0666);
        if (fd >= 0) {
            close(fd);
            slot_ = register_path(path_);
            return;
        }
        if (errno != EEXIST)
            throw write_error(target_, errno);
    }
}

// Removed before its slot is released: a signal in between finds the path
// gone, which is harmless, rather than a file it does not know of.
PendingFile::~PendingFile() {
    if (!renamed_)
        std::remove(path_.c_str());
    release_slot(slot_);
}

void PendingFile::commit() {
    if (copied_in_) {
        copy_into(path_, destination_, target_);
        return;
    }
    if (std::rename(path_.c_str(), destination_.c_str()) != 0)
        throw write_error(target_, errno);
    renamed_ = true;
}

void remove_pending_files_on_signal() {
    struct sigaction action {};
    action.sa_handler = remove_pending_and_reraise;
    sigemptyset(&action.sa_mask);
    for (int signal_number : InterruptsBlocked::kInterrupts)
        sigaction(signal_number, &action, nullptr);
}

} // namespace orvtool
