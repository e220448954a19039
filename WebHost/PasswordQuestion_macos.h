#pragma once

#include "WebHost/OneAnswer.h"

#import <AppKit/AppKit.h>

namespace quorvel {

using PasswordAnswer = OneAnswer<NSURLSessionAuthChallengeDisposition, NSURLCredential*>;

/// Asks the user for the name and password that a server wants, a few times; what is entered lasts
/// as long as the process. Everything else that can be asked, the system answers.
void answerChallenge(NSURLAuthenticationChallenge* challenge, NSWindow* window,
                     const PasswordAnswer& answer);

} // namespace quorvel
