#!/usr/bin/env bash
# unknown_calls.sh OBJECTS WRAPPED-CALL...: prints what the objects of the library (one text, parted
# by blanks) call that is neither wrapped by the fault loops nor known not to fail.
set -euo pipefail

read -r -a objects <<<"$1"
shift

# Computing; locks, signal masks and cancellation of the process's own; what ends the process; names
# of the compiler's own. Where a file that was created for nothing cannot be removed it stays, empty.
cannot_fail='mem(chr|cmp|cpy|move|set)|sqrt|floor|fmod
__popcountdi2|__errno_location|__libc_single_threaded|_GLOBAL_OFFSET_TABLE_|__aarch64_.*
pthread_mutex_(un)?lock|pthread_sigmask|pthread_setcancelstate|getpid|unlink|sig(addset|emptyset|ismember|pending)
exit|(__)?fprintf(_chk)?|stderr|__stack_chk_fail|__memcpy_chk|__gxx_personality_v0|_ZSt7nothrow|_ZSt24__throw_out_of_range_fmtPKcz
_ZSt20__throw_system_errori|_ZSt8to_charsPcS_dSt12chars_formati'

known="$cannot_fail|$(IFS='|'; echo "$*")"
unknown=$(comm -23 <(nm -u --format=just-symbols "${objects[@]}" | sort -u) \
    <(nm --defined-only --format=just-symbols "${objects[@]}" | sort -u) |
    grep -vxE "${known//$'\n'/|}|.*:|" || true)
[ -z "$unknown" ] && exit
echo "neither wrapped nor known not to fail: $unknown"
exit 1
