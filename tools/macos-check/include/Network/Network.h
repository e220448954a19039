#pragma once

#include <objc/objc.h>

// Proxies that a program chooses itself. All are Objective-C objects.

@protocol OS_nw_endpoint <NSObject>
@end
typedef NSObject<OS_nw_endpoint>* nw_endpoint_t;
@protocol OS_nw_protocol_options <NSObject>
@end
typedef NSObject<OS_nw_protocol_options>* nw_protocol_options_t;
@protocol OS_nw_proxy_config <NSObject>
@end
typedef NSObject<OS_nw_proxy_config>* nw_proxy_config_t;

#ifdef __cplusplus
extern "C" {
#endif
#define NW_RETURNS_RETAINED __attribute__((ns_returns_retained))
nw_endpoint_t _Nonnull nw_endpoint_create_host(const char* _Nonnull host,
                                               const char* _Nonnull port) NW_RETURNS_RETAINED
    SINCE_MACOS(10.14);
nw_protocol_options_t _Nonnull nw_tls_create_options(void) NW_RETURNS_RETAINED SINCE_MACOS(10.14);
nw_proxy_config_t _Nonnull nw_proxy_config_create_http_connect(
    nw_endpoint_t _Nonnull proxy, nw_protocol_options_t _Nullable encryption) NW_RETURNS_RETAINED
    SINCE_MACOS(14.0);
nw_proxy_config_t _Nonnull nw_proxy_config_create_socksv5(nw_endpoint_t _Nonnull proxy)
    NW_RETURNS_RETAINED SINCE_MACOS(14.0);
void nw_proxy_config_set_failover_allowed(nw_proxy_config_t _Nonnull proxy, bool isAllowed)
    SINCE_MACOS(14.0);
#ifdef __cplusplus
}
#endif
