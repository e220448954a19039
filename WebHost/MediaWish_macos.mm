#include "WebHost/MediaWish_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/WebAddress.h"

namespace quorvel {
namespace {

// Without the words for its own question, the system never answers.
bool hasWordsFor(NSString* key) {
    return [[NSBundle.mainBundle objectForInfoDictionaryKey:key] isKindOfClass:[NSString class]];
}

bool canAskFor(WKMediaCaptureType type) {
    const bool usesCamera = type != WKMediaCaptureTypeMicrophone;
    const bool usesMicrophone = type != WKMediaCaptureTypeCamera;
    return (!usesCamera || hasWordsFor(@"NSCameraUsageDescription")) &&
           (!usesMicrophone || hasWordsFor(@"NSMicrophoneUsageDescription"));
}

} // namespace

MediaWish mediaWishOf(WKMediaCaptureType type) {
    MediaWish wish{"camera+microphone", "use the camera and the microphone"};
    if (type == WKMediaCaptureTypeCamera) {
        wish = {"camera", "use the camera"};
    } else if (type == WKMediaCaptureTypeMicrophone) {
        wish = {"microphone", "use the microphone"};
    }
    if (!canAskFor(type)) {
        wish.problem = "This clone can’t use camera and microphone. Create it again";
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
