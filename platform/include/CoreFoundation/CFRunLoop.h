// The part of the run loop that a host needs to let queries gather and report.
#pragma once

#include <CoreFoundation/CFDate.h>

CF_EXTERN_C_BEGIN

typedef struct __CFRunLoop *CFRunLoopRef;
enum { kCFRunLoopRunFinished = 1, kCFRunLoopRunStopped = 2, kCFRunLoopRunTimedOut = 3, kCFRunLoopRunHandledSource = 4 };

CF_EXPORT const CFStringRef kCFRunLoopDefaultMode;

CFRunLoopRef CFRunLoopGetCurrent(void);
CFRunLoopRef CFRunLoopGetMain(void);
SInt32 CFRunLoopRunInMode(CFStringRef mode, CFTimeInterval seconds, Boolean returnAfterSourceHandled);
void CFRunLoopStop(CFRunLoopRef loop);

CF_EXTERN_C_END
