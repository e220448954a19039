#include "WebHost/PasswordQuestion_macos.h"

#include "Base/TerminalText.h"
#include "WebHost/NSText_macos.h"

namespace quorvel {
namespace {

constexpr NSInteger mostAttempts = 3;

bool wantsPassword(NSURLProtectionSpace* space) {
    NSArray<NSString*>* const methods = @[
        NSURLAuthenticationMethodDefault, NSURLAuthenticationMethodHTTPBasic,
        NSURLAuthenticationMethodHTTPDigest, NSURLAuthenticationMethodNTLM
    ];
    return [methods containsObject:space.authenticationMethod] == YES;
}

// The server's own words come last, and in quotes.
std::string explanation(NSURLProtectionSpace* space, bool isRepeated) {
    constexpr std::size_t longestRealm = 100;
    std::string text = isRepeated ? "That was not accepted. " : "";
    text += space.receivesCredentialSecurely ? "The password is sent encrypted."
                                             : "The password can be read on the way.";
    const std::string realm = withoutUnsafe(textOf(space.realm), longestRealm);
    return realm.empty() ? text : text + " The server calls the place “" + realm + "”.";
}

struct Fields {
    NSTextField* name;
    NSTextField* password;
    NSView* view;
};

Fields newFields() {
    constexpr CGFloat width = 260;
    constexpr CGFloat height = 24;
    constexpr CGFloat line = 32;
    NSView* const view = [[NSView alloc] initWithFrame:{{0, 0}, {width, line + height}}];
    NSTextField* const name = [[NSTextField alloc] initWithFrame:{{0, line}, {width, height}}];
    name.placeholderString = @"Name";
    NSTextField* const password =
        [[NSSecureTextField alloc] initWithFrame:{{0, 0}, {width, height}}];
    password.placeholderString = @"Password";
    [view addSubview:name];
    [view addSubview:password];
    return {name, password, view};
}

void ask(NSURLAuthenticationChallenge* challenge, NSWindow* window, const PasswordAnswer& answer) {
    NSURLProtectionSpace* const space = challenge.protectionSpace;
    const Fields fields = newFields();
    NSAlert* const alert = [[NSAlert alloc] init];
    const std::string host = withoutUnsafe(textOf(space.host)) + ":" + std::to_string(space.port);
    alert.messageText = nsText((space.isProxy ? "The proxy " : "") + host + " wants a password");
    alert.informativeText = nsText(explanation(space, challenge.previousFailureCount > 0));
    alert.accessoryView = fields.view;
    [alert addButtonWithTitle:@"Sign In"];
    [alert addButtonWithTitle:@"Cancel"];
    alert.window.initialFirstResponder = fields.name;
    const PasswordAnswer given = answer;
    [alert beginSheetModalForWindow:window
                  completionHandler:^(NSModalResponse response) {
                    if (response != NSAlertFirstButtonReturn) {
                        given(NSURLSessionAuthChallengeCancelAuthenticationChallenge, nil);
                        return;
                    }
                    // The keychain is shared by all clones.
                    NSURLCredential* const credential =
                        [NSURLCredential credentialWithUser:fields.name.stringValue
                                                   password:fields.password.stringValue
                                                persistence:NSURLCredentialPersistenceForSession];
                    given(NSURLSessionAuthChallengeUseCredential, credential);
                  }];
}

} // namespace

void answerChallenge(NSURLAuthenticationChallenge* challenge, NSWindow* window,
                     const PasswordAnswer& answer) {
    if (!wantsPassword(challenge.protectionSpace)) {
        answer(NSURLSessionAuthChallengePerformDefaultHandling, nil);
    } else if (challenge.previousFailureCount < mostAttempts) {
        ask(challenge, window, answer);
    } else {
        answer(NSURLSessionAuthChallengeCancelAuthenticationChallenge, nil);
    }
}

} // namespace quorvel
