// The byte-order writers: an unsigned value put on a stdio stream one byte
// at a time, most significant byte first ("m") or least significant first
// ("i"). Each returns what its last putc returned; the results of the
// earlier bytes are not looked at.
#include <orvane/fileio.h>

namespace {

int put_byte(FILE *stream, uint32_t value, unsigned shift) {
    return putc(static_cast<int>((value >> shift) & 0xFFu), stream);
}

} // namespace

extern "C" ORV_API int OVC_fput_ui32m(FILE *stream, uint32_t value) {
    put_byte(stream, value, 24);
    put_byte(stream, value, 16);
    put_byte(stream, value, 8);
    return put_byte(stream, value, 0);
}

extern "C" ORV_API int OVC_fput_ui32i(FILE *stream, uint32_t value) {
    put_byte(stream, value, 0);
    put_byte(stream, value, 8);
    put_byte(stream, value, 16);
    return put_byte(stream, value, 24);
}

extern "C" ORV_API int OVC_fput_ui16m(FILE *stream, uint32_t value) {
    put_byte(stream, value, 8);
    return put_byte(stream, value, 0);
}

extern "C" ORV_API int OVC_fput_ui16i(FILE *stream, uint32_t value) {
    put_byte(stream, value, 0);
    return put_byte(stream, value, 8);
}

extern "C" ORV_API int OVC_fput_ui8(FILE *stream, uint32_t value) {
    return put_byte(stream, value, 0);
}
