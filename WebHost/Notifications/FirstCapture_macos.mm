#include "Base/Text.h"

#include "WebHost/NSText_macos.h"

#include <stdexcept>

// The module is a part of every web clone. With the system's regular expressions, which are ICU's,
// it does not need ICU itself, which is a hundred times as large.
namespace quorvel::Text {

std::optional<std::string> firstCapture(std::string_view pattern, std::string_view text) {
    @autoreleasepool {
        NSError* error = nil;
        NSRegularExpression* const expression =
            [NSRegularExpression regularExpressionWithPattern:nsText(std::string(pattern))
                                                      options:0
                                                        error:&error];
        if (expression == nil) {
            throw std::invalid_argument(textOf(error.localizedDescription));
        }
        NSString* const searched = nsText(std::string(text));
        NSTextCheckingResult* const match = [expression firstMatchInString:searched
                                                                   options:0
                                                                     range:{0, searched.length}];
        if (match == nil || match.numberOfRanges < 2 ||
            [match rangeAtIndex:1].location == NSNotFound) {
            return std::nullopt;
        }
        return textOf([searched substringWithRange:[match rangeAtIndex:1]]);
    }
}

} // namespace quorvel::Text
