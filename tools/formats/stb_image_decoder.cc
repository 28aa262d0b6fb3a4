// The PNG and JPEG decoder (stb_image 2.27, a header-only Debian package),
// compiled alone so that the one sanitizer check it fails on corrupt data
// can be left out for it and nothing else: on a corrupt progressive JPEG it
// shifts a 32-bit value by 32 (fixed upstream after 2.27). That garbles the
// pixels of an image that is corrupt anyway, on every target; the memory
// errors of 2.27 are kept from it by the checks in image_file.cc.
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#include <stb_image.h>
