// expected: no known conversion from 'NSURL *__strong' to 'NSString *__strong'
#import "WebHost/AnswerOnce_macos.h"

void give(void (^handler)(NSString*), NSURL* address) {
    quorvel::answerOnce(handler, nil)(address);
}
