// The buffer library: heap-allocated descriptors behind opaque handles.
//
// A handle is the descriptor's address. Each descriptor is touched only
// through its own handle, so distinct buffers need no locking.
#include <orvane/buffer.h>

#include <cstring>
#include <new>

namespace {

struct Descriptor {
    uintptr_t valid = 1;
    uintptr_t start_address = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t stride = 0;
    uint32_t format = 0;
    uint32_t bayer_method = 0;
    uint32_t bayer_phase = 0;
};

Descriptor *descriptor_of(OFS_HANDLE buffer) {
    return reinterpret_cast<Descriptor *>(buffer);
}

// Where a parameter lives in the descriptor; null for an unknown id.
// The field's size is the value width of the parameter.
struct Field {
    void *address;
    size_t size;
};

Field field_of(Descriptor &d, uint32_t parameter) {
    switch (parameter) {
    case OFS_WIDTH: return {&d.width, sizeof d.width};
    case OFS_HEIGHT: return {&d.height, sizeof d.height};
    case OFS_START_ADDR: return {&d.start_address, sizeof d.start_address};
    case OFS_STRIDE: return {&d.stride, sizeof d.stride};
    case OFS_FORMAT: return {&d.format, sizeof d.format};
    case OFS_BAYER_METHOD: return {&d.bayer_method, sizeof d.bayer_method};
    case OFS_BAYER_PHASE: return {&d.bayer_phase, sizeof d.bayer_phase};
    case OFS_BUFFER_VALID: return {&d.valid, sizeof d.valid};
    default: return {nullptr, 0};
    }
}

} // namespace

extern "C" {

OFS_HANDLE OFS_BufferCreate(void) {
    return reinterpret_cast<OFS_HANDLE>(new (std::nothrow) Descriptor());
}

OFS_HANDLE OFS_BufferCreateImage(void *address, uint32_t width,
                                 uint32_t height, uint32_t stride,
                                 uint32_t format) {
    Descriptor *d = new (std::nothrow) Descriptor();
    if (d == nullptr) return 0;
    d->start_address = reinterpret_cast<uintptr_t>(address);
    d->width = width;
    d->height = height;
    d->stride = stride;
    d->format = format;
    return reinterpret_cast<OFS_HANDLE>(d);
}

void OFS_BufferDestroy(OFS_HANDLE buffer) { delete descriptor_of(buffer); }

ORV_STATUS OFS_BufferParameterGet(OFS_HANDLE buffer, uint32_t parameter,
                                  void *value) {
    if (buffer == 0 || value == nullptr) return ORV_ERROR_BAD_PARAM;
    Field field = field_of(*descriptor_of(buffer), parameter);
    if (field.address == nullptr) return ORV_ERROR_BAD_PARAM;
    std::memcpy(value, field.address, field.size);
    return ORV_OK;
}

ORV_STATUS OFS_BufferParameterSet(OFS_HANDLE buffer, uint32_t parameter,
                                  const void *value) {
    if (buffer == 0 || value == nullptr) return ORV_ERROR_BAD_PARAM;
    Field field = field_of(*descriptor_of(buffer), parameter);
    if (field.address == nullptr) return ORV_ERROR_BAD_PARAM;
    std::memcpy(field.address, value, field.size);
    return ORV_OK;
}

} // extern "C"
