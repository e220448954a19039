// expected: Incorrect decrement of the reference count of an object that is not owned
#include <CoreFoundation/CoreFoundation.h>

void drop(CFArrayRef array) {
    CFRelease(CFArrayGetValueAtIndex(array, 0));
}
