#include "WebHost/Questions/MediaWish_macos.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Questions/PermissionQuestions.h"

namespace quorvel {
namespace {

// Without the words for its own question, the system never answers.
bool hasWordsFor(NSString* key) {
    return [[NSBundle.mainBundle objectForInfoDictionaryKey:key] isKindOfClass:[NSString class]];
}

NSString* missingWords(WKMediaCaptureType type) {
    NSString* const camera = @"NSCameraUsageDescription";
    NSString* const microphone = @"NSMicrophoneUsageDescription";
    if (type != WKMediaCaptureTypeMicrophone && !hasWordsFor(camera)) {
        return camera;
    }
    return type != WKMediaCaptureTypeCamera && !hasWordsFor(microphone) ? microphone : nil;
}

} // namespace

MediaWish mediaWishOf(WKMediaCaptureType type) {
    MediaWish wish{"camera+microphone"};
    if (type == WKMediaCaptureTypeCamera) {
        wish.kind = "camera";
    } else if (type == WKMediaCaptureTypeMicrophone) {
        wish.kind = "microphone";
    }
    if (NSString* const missing = missingWords(type)) {
        wish.problem = "This clone can’t " + permissionWords(wish.kind) +
                       ": its Info.plist has no " + textOf(missing);
    }
    return wish;
}

std::string originTextOf(WKSecurityOrigin* origin) {
    std::string host = textOf(origin.host);
    if (host.find(':') != std::string::npos && !host.starts_with('[')) {
        host = "[" + host + "]";
    }
    const std::string port = origin.port > 0 ? ":" + std::to_string(origin.port) : "";
    return originOf(textOf(origin.protocol) + "://" + host + port);
}

} // namespace quorvel
