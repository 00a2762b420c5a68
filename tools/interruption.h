// What is left behind when a run is interrupted: nothing.
#pragma once

#include <mutex>
#include <shared_mutex>
#include <string>

namespace nvx::tool {

// From now on SIGINT, SIGTERM and SIGHUP, where they are not ignored, let saves that are under way come to their end
// and remove the folders below before the process ends of them. To be called before there are threads.
void CleanUpWhenInterrupted();

// Lets saves that are under way come to their end, lets none begin any more, and removes the folders below. For
// CleanUpWhenInterrupted, which ends the process then.
void EndAllSaves();

// While one lives the process does not end of a signal. For a save, not for a wait.
class [[nodiscard]] SaveUnderWay {
 public:
  SaveUnderWay();

 private:
  std::shared_lock<std::shared_mutex> lock_;
};

// A folder of its own for results that are looked at before they go where they belong. It is removed with all that is
// left in it.
class WorkFolder {
 public:
  // Throws std::runtime_error if there is no room for it in the temporary folder.
  WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder();

  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace nvx::tool
