#include "WebHost/HostSignals_macos.h"

#include <dispatch/dispatch.h>

#import <Foundation/Foundation.h>

#include <csignal>
#include <cstdint>

namespace quorvel {

void onRequestToEnd(std::function<void()> asked) {
    static NSMutableArray<dispatch_source_t>* const kept = [NSMutableArray array];
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        std::signal(number, SIG_IGN); // the source sees it nevertheless
        dispatch_source_t source =
            dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<std::uintptr_t>(number),
                                   0, dispatch_get_main_queue());
        const auto handler = asked;
        dispatch_source_set_event_handler(source, ^{
          handler();
        });
        dispatch_resume(source);
        [kept addObject:source];
    }
}

} // namespace quorvel
