// Holds a file open, as another program would, until standard input ends. Arguments: the file, and what others may do
// with it meanwhile: any of the letters r (read), w (write) and d (delete), or a minus for nothing.
#include <windows.h>

#include <cstdio>
#include <string_view>

int wmain(int argc, wchar_t** argv) {
  if (argc != 3) return 2;
  const std::wstring_view letters(argv[2]);
  const auto share = [&](wchar_t letter, DWORD flag) { return letters.find(letter) != letters.npos ? flag : DWORD{0}; };
  const DWORD mode = share(L'r', FILE_SHARE_READ) | share(L'w', FILE_SHARE_WRITE) | share(L'd', FILE_SHARE_DELETE);
  const HANDLE file = ::CreateFileW(argv[1], GENERIC_READ, mode, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 1;
  std::puts("held");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  ::CloseHandle(file);
  return 0;
}
