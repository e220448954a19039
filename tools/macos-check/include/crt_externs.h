#pragma once

#ifdef __cplusplus
extern "C" {
#endif
char*** _NSGetEnviron(void);
#ifdef __cplusplus
}
#endif
