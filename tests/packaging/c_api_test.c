/* The public header used from C: constants, the handle type and a real
 * conversion, checked without any C++ in the translation unit. */
#include <orvaneimage.h>

#include <stdio.h>

static int failures = 0;

static void expect(int ok, const char *what) {
    if (!ok) {
        fprintf(stderr, "FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    uint8_t grey[4] = {0x00, 0x40, 0x80, 0xFF};
    uint8_t bgr[12] = {0};
    OFS_HANDLE src = OFS_BufferCreateImage(grey, 4, 1, 4, ORV_FORMAT_Y8);
    OFS_HANDLE dst = OFS_BufferCreateImage(bgr, 4, 1, 12, ORV_FORMAT_BGR24);
    int i;

    expect(sizeof(OFS_HANDLE) == sizeof(void *), "handle is pointer-width");
    expect(OVC_Convert(src, dst) == ORV_OK, "Y8 to BGR24 succeeds");
    for (i = 0; i < 12; ++i) expect(bgr[i] == grey[i / 3], "grey replicated");
    expect(OVC_Convert(src, 0) == ORV_ERROR_BAD_PARAM, "null handle refused");

    OFS_BufferDestroy(src);
    OFS_BufferDestroy(dst);
    if (failures == 0) printf("1 passed, 0 failed\n");
    return failures != 0;
}
