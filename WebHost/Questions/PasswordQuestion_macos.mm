#include "WebHost/Questions/PasswordQuestion_macos.h"

#include "WebHost/NSText_macos.h"

namespace quorvel {
namespace {

bool wantsPassword(NSURLProtectionSpace* space) {
    NSArray<NSString*>* const methods = @[
        NSURLAuthenticationMethodDefault, NSURLAuthenticationMethodHTTPBasic,
        NSURLAuthenticationMethodHTTPDigest, NSURLAuthenticationMethodNTLM
    ];
    return [methods containsObject:space.authenticationMethod] == YES;
}

PasswordAsker askerOf(NSURLProtectionSpace* space, const std::string& pageHost) {
    return {.host = textOf(space.host),
            .port = space.port > 0 ? static_cast<unsigned>(space.port) : 0,
            .realm = textOf(space.realm),
            .isProxy = space.isProxy == YES,
            .isEncrypted = [space.protocol isEqualToString:NSURLProtectionSpaceHTTPS] == YES,
            .pageHost = pageHost};
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

// `answered` gets std::nullopt if it is cancelled, and `isOver` is set if the window ends.
void ask(NSWindow* window, const PasswordText& text, const std::shared_ptr<bool>& isOver,
         const PasswordQuestions::Answered& answered) {
    const Fields fields = newFields();
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.messageText = nsText(text.heading);
    alert.informativeText = nsText(text.text);
    alert.accessoryView = fields.view;
    [alert addButtonWithTitle:@"Log In"];
    [alert addButtonWithTitle:@"Cancel"];
    alert.window.initialFirstResponder = fields.name;
    const auto given = answered;
    const auto over = isOver;
    [alert beginSheetModalForWindow:window
                  completionHandler:^(NSModalResponse response) {
                    *over = *over || response == NSModalResponseAbort;
                    given(response == NSAlertFirstButtonReturn
                              ? std::optional(Login{textOf(fields.name.stringValue),
                                                    textOf(fields.password.stringValue)})
                              : std::nullopt);
                  }];
}

void give(const std::optional<Login>& login, const PasswordAnswer& answer) {
    if (!login) {
        answer(NSURLSessionAuthChallengeCancelAuthenticationChallenge, nil);
        return;
    }
    // The keychain is shared by all clones.
    answer(NSURLSessionAuthChallengeUseCredential,
           [NSURLCredential credentialWithUser:nsText(login->user)
                                      password:nsText(login->password)
                                   persistence:NSURLCredentialPersistenceForSession]);
}

} // namespace

std::shared_ptr<PasswordQuestions> newPasswordQuestions(QuorvelWindow* window) {
    __weak QuorvelWindow* const weakWindow = window;
    const auto isOver = std::make_shared<bool>(false);
    const auto self = std::make_shared<std::weak_ptr<PasswordQuestions>>();
    auto questions = std::make_shared<PasswordQuestions>(
        [weakWindow, isOver, self](const PasswordText& text, PasswordQuestions::Answered answered) {
            QuorvelWindow* const asking = weakWindow;
            if (asking == nil || *isOver) {
                answered(std::nullopt);
                return;
            }
            // A sheet may be answered when the page is gone.
            ask(asking.window, text, isOver,
                [kept = self->lock(), answered](const std::optional<Login>& login) {
                    answered(login);
                });
        },
        [] {}); // the system never takes a question back
    *self = questions;
    return questions;
}

void answerChallenge(NSURLAuthenticationChallenge* challenge, PasswordQuestions& questions,
                     const std::string& pageHost, const std::function<void()>& refused,
                     const PasswordAnswer& answer) {
    NSURLProtectionSpace* const space = challenge.protectionSpace;
    if (!wantsPassword(space)) {
        // The server may do without.
        answer(NSURLSessionAuthChallengeRejectProtectionSpace, nil);
        return;
    }
    questions.decide(askerOf(space, pageHost), challenge.previousFailureCount > 0,
                     [answer, refused](const std::optional<Login>& login) {
                         if (!login) {
                             refused();
                         }
                         give(login, answer);
                     });
}

} // namespace quorvel
