// The recording buffer library behind trace_buffer.h.
#include "support/trace_buffer.h"

#include <cstring>

namespace orv_test {

std::vector<std::string> &query_log() {
    static std::vector<std::string> log;
    return log;
}

void clear_query_log() { query_log().clear(); }

FakeBuffer fake_image(const std::string &name, void *address, uint32_t format,
                      uint32_t width, uint32_t height, uint32_t stride) {
    FakeBuffer b;
    b.name = name;
    b.values = {{OFS_BUFFER_VALID, 1},
                {OFS_START_ADDR, reinterpret_cast<uintptr_t>(address)},
                {OFS_FORMAT, format},
                {OFS_WIDTH, width},
                {OFS_HEIGHT, height},
                {OFS_STRIDE, stride},
                {OFS_BAYER_METHOD, 0},
                {OFS_BAYER_PHASE, 0}};
    return b;
}

} // namespace orv_test

extern "C" ORV_API ORV_STATUS OFS_BufferParameterGet(OFS_HANDLE buffer,
                                                     uint32_t parameter,
                                                     void *value) {
    const auto *fake = reinterpret_cast<const orv_test::FakeBuffer *>(buffer);
    orv_test::query_log().push_back(fake->name + ":" +
                                    std::to_string(parameter));
    auto it = fake->values.find(parameter);
    if (it != fake->values.end()) {
        if (parameter == OFS_START_ADDR || parameter == OFS_BUFFER_VALID) {
            const uintptr_t v = static_cast<uintptr_t>(it->second);
            std::memcpy(value, &v, sizeof v);
        } else {
            const uint32_t v = static_cast<uint32_t>(it->second);
            std::memcpy(value, &v, sizeof v);
        }
    }
    return fake->status;
}
