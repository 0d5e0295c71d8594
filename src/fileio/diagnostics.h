// The file writers' diagnostics. Each is formatted into a 256-byte local
// buffer with a bounded formatter and then dropped: nothing is printed or
// returned, and the library allocates nothing. The wording is fixed so that
// a logging hook could pass it on unchanged.
#ifndef ORVANE_FILEIO_DIAGNOSTICS_H
#define ORVANE_FILEIO_DIAGNOSTICS_H

#include <cstdint>
#include <cstdio>

namespace orv {

inline void drop_open_failure(const char *path) {
    char message[256];
    std::snprintf(message, sizeof message,
                  "Failed to open file %20s for writing", path);
}

// `where` names the TIFF field at which the format was refused ("IFD",
// "BitsPerSample", ...). The format code is shown as a signed decimal.
inline void drop_format_failure(uint32_t format, const char *where) {
    char message[256];
    std::snprintf(message, sizeof message,
                  "Unrecognised Image Format [%d] in %s",
                  static_cast<int>(format), where);
}

} // namespace orv

#endif // ORVANE_FILEIO_DIAGNOSTICS_H
