#pragma once

#ifdef __cplusplus
extern "C"
#endif
char*** _NSGetEnviron(void);
