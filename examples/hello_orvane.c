/* The smallest OrvaneImage program: describe two buffers, convert 8-bit
 * grey into BGR24, check the result. */
#include <orvaneimage.h>

#include <stdio.h>

int main(void) {
    uint8_t grey[2 * 2] = {10, 20, 30, 40};
    uint8_t colour[2 * 2 * 3];
    OFS_HANDLE src = OFS_BufferCreateImage(grey, 2, 2, 2, ORV_FORMAT_Y8);
    OFS_HANDLE dst = OFS_BufferCreateImage(colour, 2, 2, 6, ORV_FORMAT_BGR24);

    ORV_STATUS status = OVC_Convert(src, dst);
    printf("OVC_Convert: %u, last pixel B=%u G=%u R=%u\n", (unsigned)status,
           colour[9], colour[10], colour[11]);

    OFS_BufferDestroy(src);
    OFS_BufferDestroy(dst);
    return status == ORV_OK && colour[11] == 40 ? 0 : 1;
}
