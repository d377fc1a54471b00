// A copy of src/processes/file_manager_darwin.mm that hands the Finder the file's URL itself
// instead of an array holding it: on a Mac the workspace would send the URL array messages it does
// not answer, and the first "Show in Finder" would crash the program. The check must refuse it.
// expect: cannot initialize a parameter of type 'NSArray<NSURL \*> \* _Nonnull' with an rvalue of type 'NSURL
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
#ifdef QM_NEGATIVE_FAULT
  [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:[NSURL fileURLWithPath:string]];
#else
  [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ [NSURL fileURLWithPath:string] ]];
#endif
  return true;
}

}  // namespace quillmark
