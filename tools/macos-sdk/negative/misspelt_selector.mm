// A status-item title set through a misspelt setter: on a Mac this compiles to a message the
// button does not answer and crashes at the first tick, so the check must refuse it.
// expect: no visible @interface for 'NSStatusBarButton' declares the selector 'setTitel:'
#include <AppKit/AppKit.h>

void showLoad(NSStatusItem* item) {
#ifdef QM_NEGATIVE_FAULT
  [item.button setTitel:@"CPU 12% MEM 63%"];
#else
  [item.button setTitle:@"CPU 12% MEM 63%"];
#endif
}
