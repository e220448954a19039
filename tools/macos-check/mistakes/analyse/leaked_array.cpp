// expected: Potential leak of an object stored into 'array'
#include <CoreFoundation/CoreFoundation.h>

CFIndex length() {
    CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    return CFArrayGetCount(array);
}
