// Opening the output file of both writers: created or truncated, for
// binary writing. A path that cannot be opened gives a null stream after
// the open failure's message has been formatted and dropped. A null path
// fails the same way without reaching fopen or the formatter, neither of
// which accepts one.
#ifndef ORVANE_FILEIO_OPEN_FILE_H
#define ORVANE_FILEIO_OPEN_FILE_H

#include "diagnostics.h"

#include <cstdio>

namespace orv {

inline FILE *open_for_writing(const char *path) {
    if (path == nullptr) return nullptr;
    FILE *stream = std::fopen(path, "wb");
    if (stream == nullptr) drop_open_failure(path);
    return stream;
}

} // namespace orv

#endif // ORVANE_FILEIO_OPEN_FILE_H
