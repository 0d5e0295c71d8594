// Output files that appear complete or not at all: each is written under a
// temporary name beside its destination and renamed over it when done.
#ifndef ORVANE_TOOL_PENDING_FILE_H
#define ORVANE_TOOL_PENDING_FILE_H

#include <cstddef>
#include <string>

namespace orvtool {

// A unique empty file in the destination's directory. commit() renames it
// over the destination; otherwise the destructor removes it, and so does
// an interrupting signal (see remove_pending_files_on_signal).
class PendingFile {
public:
    explicit PendingFile(std::string target);
    ~PendingFile();
    PendingFile(const PendingFile &) = delete;
    PendingFile &operator=(const PendingFile &) = delete;

    const std::string &path() const { return path_; }
    // Throws ToolError naming the destination when the rename fails.
    void commit();

private:
    std::string target_;
    std::string path_;
    bool committed_ = false;
    std::size_t slot_ = 0; // where the interrupt handler finds the path
};

// SIGINT, SIGTERM and SIGHUP remove every pending file, then end the
// process as the signal would have.
void remove_pending_files_on_signal();

} // namespace orvtool

#endif // ORVANE_TOOL_PENDING_FILE_H
