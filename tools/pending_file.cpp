// Temporary output files and their removal when the tool is interrupted.
// The signal handler may only make async-signal-safe calls, so pending
// paths sit in fixed slots that it can read without locks or allocation.
#include "pending_file.h"

#include "errors.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
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

} // namespace

PendingFile::PendingFile(std::string target) : target_(std::move(target)) {
    static std::atomic<unsigned> counter{0};
    std::string::size_type slash = target_.rfind('/');
    std::string directory =
        slash == std::string::npos ? "" : target_.substr(0, slash + 1);
    std::string name =
        slash == std::string::npos ? target_ : target_.substr(slash + 1);
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
            throw ToolError(target_ + ": cannot write: " +
                            system_message(errno));
    }
}

// Removed before its slot is released: a signal in between finds the path
// gone, which is harmless, rather than a file it does not know of.
PendingFile::~PendingFile() {
    if (!committed_)
        std::remove(path_.c_str());
    release_slot(slot_);
}

void PendingFile::commit() {
    if (std::rename(path_.c_str(), target_.c_str()) != 0)
        throw ToolError(target_ + ": cannot rename into place: " +
                        system_message(errno));
    committed_ = true;
}

void remove_pending_files_on_signal() {
    struct sigaction action {};
    action.sa_handler = remove_pending_and_reraise;
    sigemptyset(&action.sa_mask);
    for (int signal_number : InterruptsBlocked::kInterrupts)
        sigaction(signal_number, &action, nullptr);
}

} // namespace orvtool
