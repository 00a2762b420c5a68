// Asks a profile what a print job asks. Arguments: a profile.
#include <nvxprofile/nvxprofile.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  CProfileAccess access;
  CError error;
  if (!access.Init(nvx::Utf8ToWide(argv[1]).c_str(), &error)) {
    std::fprintf(stderr, "%s\n", nvx::WideToUtf8(error.GetErrorCommentW()).c_str());
    return 1;
  }
  int size = 0;
  if (access.GetIccProfile(size, &error) == nullptr || size == 0) return 1;
  std::printf("format %d, ICC profile of %d bytes\n", access.GetProfileLoadFormat(), size);
  return 0;
}
