// OVC_FileWrite: a buffer saved as a raw dump of its memory (height x
// stride bytes from the first pixel, line padding included), or handed to
// the TIFF writer.
#include <orvane/fileio.h>

#include "../common/query.h"
#include "open_file.h"

#include <cstdio>

extern "C" ORV_API ORV_STATUS OVC_FileWrite(OFS_HANDLE buffer,
                                            const char *path,
                                            uint32_t file_type) {
    using namespace orv;
    if (!buffer_is_valid(buffer)) return ORV_ERROR_BAD_PARAM;
    if (file_type == OVC_FILE_TIFF) return OVC_FileWriteTiff(buffer, path);
    if (file_type != OVC_FILE_RAW) return ORV_ERROR_NOT_SUPPORTED;

    const uint8_t *address = query_address(buffer);
    if (address == nullptr) return ORV_ERROR_BAD_PARAM;
    const uint32_t height = query_u32(buffer, OFS_HEIGHT);
    uint32_t stride = 0;
    // Success is reported as the buffer library's answer to this last
    // query, which is ORV_OK from a library that answered normally.
    const ORV_STATUS stride_status =
        OFS_BufferParameterGet(buffer, OFS_STRIDE, &stride);

    FILE *stream = open_for_writing(path);
    if (stream == nullptr) return ORV_ERROR_OPEN_FAILED;
    // A 32-bit product: a dump of more than 4 GiB wraps to its low bits.
    const size_t count = height * stride;
    const size_t written = std::fwrite(address, 1, count, stream);
    const int closed = std::fclose(stream);
    if (written < count) return ORV_ERROR_WRITE_FAILED;
    if (closed != 0) return ORV_ERROR_CLOSE_FAILED;
    return stride_status;
}
