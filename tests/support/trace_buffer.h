// A recording stand-in for the buffer library. Test programs linked with it
// define OFS_BufferParameterGet themselves, so the image library's calls
// land here: every query is logged, and each fake buffer answers from its
// own table, may stay silent for chosen ids, and returns a chosen status.
#ifndef ORVANE_TRACE_BUFFER_H
#define ORVANE_TRACE_BUFFER_H

#include <orvane/types.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace orv_test {

struct FakeBuffer {
    std::string name;                 // used in the query log
    std::map<uint32_t, uint64_t> values; // id -> value; missing ids stay silent
    ORV_STATUS status = ORV_OK;       // what every query returns

    OFS_HANDLE handle() const { return reinterpret_cast<OFS_HANDLE>(this); }
};

// A valid buffer answering every id of the image routines.
FakeBuffer fake_image(const std::string &name, void *address, uint32_t format,
                      uint32_t width, uint32_t height, uint32_t stride);

// Queries since the last clear, as "name:id" strings in call order.
std::vector<std::string> &query_log();
void clear_query_log();

} // namespace orv_test

#endif // ORVANE_TRACE_BUFFER_H
