// The DNS client: records of a name.
#pragma once

#include "windef.h"

#ifdef __cplusplus

typedef LONG DNS_STATUS;
typedef DWORD IP4_ADDRESS;

// Network byte order. AddrCount addresses follow each other.
typedef struct _IP4_ARRAY {
    DWORD AddrCount;
    IP4_ADDRESS AddrArray[1];
} IP4_ARRAY;

typedef struct {
    PWSTR pNameExchange;
    WORD wPreference;
    WORD Pad;
} DNS_MX_DATAW;

// Differs from Windows: the type decides the data of a mail exchanger only; the data of other
// records, their length, flags and time to live are left out, since no caller looks at them.
typedef struct _DnsRecordW {
    struct _DnsRecordW* pNext;
    PWSTR pName;
    WORD wType;
    WORD wDataLength;
    DWORD Flags;
    DWORD dwTtl;
    DWORD dwReserved;
    union {
        DNS_MX_DATAW MX;
    } Data;
} DNS_RECORDW, *PDNS_RECORD;

typedef enum { DnsFreeRecordList = 1 } DNS_FREE_TYPE;

#define DNS_TYPE_MX 15
#define DNS_QUERY_STANDARD 0
#define DNS_QUERY_BYPASS_CACHE 0x00000008

extern "C" {

// Asks for the records of a name: the servers of an IP4_ARRAY, or those of the system when there
// are none. The name is taken as it stands, without the suffixes of the system's search list. An
// answer that doesn't fit a datagram is asked for again over TCP. Takes ten seconds at most. 0 with
// the records of all sections of the answer in its order, to be freed with DnsRecordListFree; else
// ERROR_TIMEOUT, a DNS_ERROR_... number, or DNS_INFO_NO_RECORDS.
// Differs from Windows: nothing is cached; a name has printable ASCII characters only.
DNS_STATUS WINAPI DnsQuery_W(PCWSTR name, WORD type, DWORD options, PVOID servers,
                             PDNS_RECORD* records, PVOID* reserved);

void WINAPI DnsRecordListFree(PDNS_RECORD records, DNS_FREE_TYPE type);

}  // extern "C"

#endif
