#pragma once

#include "WebHost/OneAnswer.h"
#include "WebHost/Questions/PasswordQuestions.h"
#include "WebHost/Window/HostWindow_macos.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <string>

namespace quorvel {

using PasswordAnswer = OneAnswer<NSURLSessionAuthChallengeDisposition, NSURLCredential*>;

/// Returns questions that are shown as sheets of that window; once it has ended, they are refused.
[[nodiscard]] std::shared_ptr<PasswordQuestions> newPasswordQuestions(QuorvelWindow* window);

/// Answers what a server wants of the user: a name and password are the user's to give, and last as
/// long as the process. Certificates and tickets of the user are not given to servers, since the
/// keychain is shared by all clones. `refused` is called if the user gives no password.
void answerChallenge(NSURLAuthenticationChallenge* challenge, PasswordQuestions& questions,
                     const std::string& pageHost, const std::function<void()>& refused,
                     const PasswordAnswer& answer);

} // namespace quorvel
