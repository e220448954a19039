#pragma once

// What libc++ asks for on macOS, in terms of glibc's locale_t.

#include <ctype.h>
#include <locale.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <wchar.h>
#include <wctype.h>

#define _CTYPE_A 0x00000100L
#define _CTYPE_C 0x00000200L
#define _CTYPE_D 0x00000400L
#define _CTYPE_G 0x00000800L
#define _CTYPE_L 0x00001000L
#define _CTYPE_P 0x00002000L
#define _CTYPE_S 0x00004000L
#define _CTYPE_U 0x00008000L
#define _CTYPE_X 0x00010000L
#define _CTYPE_B 0x00020000L
#define _CTYPE_R 0x00040000L

#ifdef __cplusplus
extern "C" {
#endif
int snprintf_l(char*, size_t, locale_t, const char*, ...);
int asprintf_l(char**, locale_t, const char*, ...);
int sscanf_l(const char*, locale_t, const char*, ...);
wint_t btowc_l(int, locale_t);
int wctob_l(wint_t, locale_t);
size_t mbrlen_l(const char*, size_t, mbstate_t*, locale_t);
size_t mbrtowc_l(wchar_t*, const char*, size_t, mbstate_t*, locale_t);
size_t mbsnrtowcs_l(wchar_t*, const char**, size_t, size_t, mbstate_t*, locale_t);
size_t mbsrtowcs_l(wchar_t*, const char**, size_t, mbstate_t*, locale_t);
size_t wcrtomb_l(char*, wchar_t, mbstate_t*, locale_t);
size_t wcsnrtombs_l(char*, const wchar_t**, size_t, size_t, mbstate_t*, locale_t);
int mbtowc_l(wchar_t*, const char*, size_t, locale_t);
struct lconv* localeconv_l(locale_t);
size_t bytesOfLongestCharacter(locale_t);
#define MB_CUR_MAX_L(locale) bytesOfLongestCharacter(locale)
#ifdef __cplusplus
}
#endif
