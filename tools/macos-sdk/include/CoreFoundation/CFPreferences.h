// Stub SDK: the user defaults domain through CoreFoundation.
#pragma once
#include <CoreFoundation/CFBase.h>

QM_STUB_EXTERN_C_BEGIN
extern const CFStringRef kCFPreferencesCurrentApplication;
// +1 or NULL.
CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
// A NULL value removes the key.
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);
Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);
QM_STUB_EXTERN_C_END
