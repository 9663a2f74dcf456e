#!/bin/bash
# check_dependencies.sh LIBRARY: the library needs what every system has and exports what it should;
# on Windows it is small, lets the system place it anywhere, and tells nothing of who built it when; on
# Linux nothing in it can be overwritten and run.
set -euo pipefail
library=$1
failed=0

complain() {
    echo "$(basename "$library"): $*" >&2
    failed=1
}

case $library in
    *.dll)
        system='ADVAPI32 GDI32 KERNEL32 OLEAUT32 SECUR32 USER32 WS2_32 DNSAPI RPCRT4 MSVCRT OLE32'
        needed=$(objdump -p "$library" | sed -n 's/.*DLL Name: \(.*\)\.dll$/\1/Ip')
        for name in $needed; do
            [[ " $system " == *" ${name^^} "* ]] || complain "needs $name.dll"
        done
        exports=$(objdump -p "$library" | sed -n '/\[Ordinal\/Name Pointer\]/,/^$/s/^.*\[ *[0-9]*\] //p')
        wanted=$'DllCanUnloadNow\nDllGetClassObject\nDllRegisterServer\nDllUnregisterServer'
        [ "$exports" = "$wanted" ] || complain "exports" $exports
        [ "$(stat -c %s "$library")" -lt $((3 << 20)) ] || complain "has 3 MiB or more"
        headers=$(objdump -x "$library")
        for flag in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
            grep -q "$flag" <<<"$headers" || complain "lacks $flag"
        done
        grep -q 'Time/Date.*1970' <<<"$headers" && grep -qa 'Created by WIDL .* 1970$' "$library" ||
            complain "carries the time of its making"
        # The stack isn't aligned for 32-byte vectors, which compilers put there all the same.
        if objdump -d "$library" | grep -qE '%ymm.*\(%r[sb]p|\(%r[sb]p.*%ymm'; then
            complain "keeps 32-byte vectors on the stack"
        fi
        if grep -qaF "$PWD" "$library"; then complain "carries the name of a folder"; fi
        ;;
    *)
        exports=$(nm --dynamic --defined-only --extern-only "$library" | awk '{print $3}')
        for name in DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer \
            CoInitializeEx CoCreateInstance SysAllocStringLen VariantClear GetErrorInfo; do
            grep -qx "$name" <<<"$exports" || complain "doesn't export $name"
        done
        # A host that uses another version of a C++ library must not meet ours.
        if grep -q '^_Z' <<<"$exports"; then complain "exports C++ names"; fi
        imports=$(nm --dynamic --undefined-only "$library")
        if ! grep -qE '__(a|t)san_' <<<"$imports"; then
            headers=$(readelf -lW "$library")
            grep -q GNU_RELRO <<<"$headers" || complain "has tables that stay writable"
            grep -q 'GNU_STACK.* RW ' <<<"$headers" || complain "has a stack that can be run"
            readelf -dW "$library" | grep -q BIND_NOW || complain "binds its imports late"
            grep -q __stack_chk_fail <<<"$imports" || complain "has no stack guards"
        fi
        ;;
esac
exit $failed
