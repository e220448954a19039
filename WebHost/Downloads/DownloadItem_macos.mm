#include "WebHost/Downloads/DownloadItem_macos.h"

#include "Platform/files/PlatformError.h"
#include "WebHost/NSText_macos.h"

#include <CoreServices/CoreServices.h>

namespace quorvel {
namespace {

// The system checks a program before its start only if it is marked like this.
bool quarantine(NSURL* file, NSURL* source) {
    NSMutableDictionary<NSString*, id>* const properties = [NSMutableDictionary dictionary];
    properties[(__bridge NSString*)kLSQuarantineTypeKey] =
        (__bridge NSString*)kLSQuarantineTypeWebDownload;
    if (source != nil) {
        properties[(__bridge NSString*)kLSQuarantineDataURLKey] = source;
    }
    return [file setResourceValue:properties forKey:NSURLQuarantinePropertiesKey error:nil] == YES;
}

} // namespace

NSURL* DownloadItem::file() const {
    return [NSURL fileURLWithFileSystemRepresentation:staged.file().c_str()
                                          isDirectory:NO
                                        relativeToURL:nil];
}

std::filesystem::path DownloadItem::publish() {
    if (!quarantine(file(), download.originalRequest.URL)) {
        throw Error("“" + staged.name() + "” can’t be marked as a download, and was not kept");
    }
    return staged.publish();
}

} // namespace quorvel
