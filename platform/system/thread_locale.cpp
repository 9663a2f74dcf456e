#include "winnls.h"

namespace {

thread_local LCID t_locale = LOCALE_USER_DEFAULT;

}  // namespace

LCID WINAPI GetThreadLocale() {
    return t_locale;
}

BOOL WINAPI SetThreadLocale(LCID locale) {
    t_locale = locale;
    return TRUE;
}
