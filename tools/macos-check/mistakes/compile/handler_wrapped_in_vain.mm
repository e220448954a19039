// expected: ignoring return value of function declared with 'nodiscard' attribute
#import "WebHost/AnswerOnce_macos.h"

void refuse(void (^handler)(BOOL)) { quorvel::answerOnce(handler, NO); }
