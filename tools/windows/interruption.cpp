#include "interruption.h"

#include <windows.h>

namespace nvx::tool {
namespace {

// Runs in a thread of its own. The process ends with what is told here.
BOOL WINAPI OnInterruption(DWORD) {
  EndAllSaves();
  return FALSE;
}

}  // namespace

void CleanUpWhenInterrupted() { ::SetConsoleCtrlHandler(OnInterruption, TRUE); }

}  // namespace nvx::tool
