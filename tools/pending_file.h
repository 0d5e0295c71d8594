// Output files that appear complete or not at all: each is written under a
// temporary name beside its destination and renamed over it when done.
// A symbolic link is followed to the file it names, which takes the new
// file; a FIFO or a device is never replaced: the file is written in the
// temporary directory and copied into it when done.
#ifndef ORVANE_TOOL_PENDING_FILE_H
#define ORVANE_TOOL_PENDING_FILE_H

#include <cstddef>
#include <string>

namespace orvtool {

// A unique empty file in the destination's directory (in the temporary
// directory for a FIFO or a device). commit() puts it in the destination's
// place; otherwise the destructor removes it, and so does an interrupting
// signal (see remove_pending_files_on_signal). Throws ToolError naming the
// target as given for a target it cannot write.
class PendingFile {
public:
    explicit PendingFile(std::string target);
    ~PendingFile();
    PendingFile(const PendingFile &) = delete;
    PendingFile &operator=(const PendingFile &) = delete;

    const std::string &path() const { return path_; }
    void commit();

private:
    std::string target_;      // as given, for messages
    std::string destination_; // the target with its symbolic links followed
    std::string path_;
    bool copied_in_ = false;  // the destination is a FIFO or a device
    bool renamed_ = false;
    std::size_t slot_ = 0;    // where the interrupt handler finds the path
};

// SIGINT, SIGTERM and SIGHUP remove every pending file, then end the
// process as the signal would have.
void remove_pending_files_on_signal();

} // namespace orvtool

#endif // ORVANE_TOOL_PENDING_FILE_H
