/* Checks the installed header's version against the package's, and calls the library. */
#include <qxpixlib.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  char version[32];
  snprintf(version, sizeof version, "%d.%d.%d", QXPIXLIB_VERSION_MAJOR, QXPIXLIB_VERSION_MINOR,
           QXPIXLIB_VERSION_PATCH);
  if (strcmp(version, QXPIXLIB_VERSION_STRING) != 0 || strcmp(version, EXPECTED_VERSION) != 0) {
    fprintf(stderr, "consumer: header %s, package %s\n", version, EXPECTED_VERSION);
    return 1;
  }
  /* An opaque foreground over opaque black: dst.c = fg.c * 255 / 256, dst.a = 254. */
  uint32_t bg[5], fg[5], out[5];
  qx_fill(bg, 0xFF000000u, 5);
  qx_fill(fg, 0xFF204080u, 5);
  qx_blend(out, bg, fg, 5);
  for (int i = 0; i < 5; ++i)
    if (out[i] != 0xFE1F3F7Fu) {
      fprintf(stderr, "consumer: pixel %d is %08x\n", i, (unsigned)out[i]);
      return 1;
    }
  printf("consumer: qxpixlib %s works\n", version);
  return 0;
}
