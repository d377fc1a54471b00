#include <AppKit/AppKit.h>

#include "base/log.h"
#include "processes/file_manager.h"

namespace quillmark {

bool revealInFileManager(const std::string& path) {
  NSString* string = path.empty() || path.front() != '/' ? nil : [NSString stringWithUTF8String:path.c_str()];
  if (!string) {
    Log::debug("Reveal in Finder: not an absolute UTF-8 path: " + path);
    return false;
  }
  // Opens a Finder window with the file selected (or selects it in one already open) and brings the
  // Finder forward; the call returns at once.
  [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ [NSURL fileURLWithPath:string] ]];
  return true;
}

}  // namespace quillmark
