#include <winbase.h>
#include <winerror.h>

#include <algorithm>
#include <string_view>

namespace {

struct Message {
    DWORD number;
    std::u16string_view text;
};

// Windows' own words.
constexpr Message kMessages[] = {
    {ERROR_NOT_ENOUGH_MEMORY,
     u"Not enough memory resources are available to process this command.\r\n"},
    {ERROR_TIMEOUT, u"This operation returned because the timeout period expired.\r\n"},
    {DNS_ERROR_RCODE_FORMAT_ERROR, u"DNS server unable to interpret format.\r\n"},
    {DNS_ERROR_RCODE_SERVER_FAILURE, u"DNS server failure.\r\n"},
    {DNS_ERROR_RCODE_NAME_ERROR, u"DNS name does not exist.\r\n"},
    {DNS_ERROR_RCODE_NOT_IMPLEMENTED, u"DNS request not supported by name server.\r\n"},
    {DNS_ERROR_RCODE_REFUSED, u"DNS operation refused.\r\n"},
    {DNS_INFO_NO_RECORDS, u"No records found for given DNS query.\r\n"},
    {DNS_ERROR_BAD_PACKET, u"Bad DNS packet.\r\n"},
    {DNS_ERROR_INVALID_NAME_CHAR, u"DNS name contains an invalid character.\r\n"},
};

}  // namespace

DWORD FormatMessageW(DWORD, LPCVOID, DWORD message, DWORD, LPWSTR buffer, DWORD size, va_list*) {
    const auto* const found =
        std::find_if(std::begin(kMessages), std::end(kMessages),
                     [message](const Message& entry) { return entry.number == message; });
    if (found == std::end(kMessages)) {
        SetLastError(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    if (size <= found->text.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    buffer[found->text.copy(buffer, size)] = u'\0';
    return static_cast<DWORD>(found->text.size());
}
