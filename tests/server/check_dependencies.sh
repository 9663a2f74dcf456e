#!/bin/bash
# check_dependencies.sh LIBRARY: the library needs what every system has and exports what it should;
# on Windows it is small, lets the system place it anywhere, and tells nothing of who built it when.
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
        grep -q 'Time/Date.*1970' <<<"$headers" || complain "carries the time of its making"
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
        ;;
esac
exit $failed
