// The TLS package: what the product leans on of its contract.
#include <schannel.h>
#include <security.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/servers/tls_server.h"

namespace quorvane::testing {
namespace {

constexpr DWORD kAll = SP_PROT_TLS1_0_CLIENT | SP_PROT_TLS1_1_CLIENT | SP_PROT_TLS1_2_CLIENT;
constexpr ULONG kRequest = ISC_REQ_USE_SUPPLIED_CREDS | ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM |
                           ISC_REQ_MANUAL_CRED_VALIDATION;

// A client that keeps its input and does one call after the other.
class Client {
public:
    explicit Client(DWORD protocols = kAll) {
        SCHANNEL_CRED record{};
        record.dwVersion = SCHANNEL_CRED_VERSION;
        record.grbitEnabledProtocols = protocols;
        std::u16string package = UNISP_NAME_W;
        EXPECT_EQ(AcquireCredentialsHandleW(nullptr, package.data(), SECPKG_CRED_OUTBOUND, nullptr,
                                            &record, nullptr, nullptr, &credentials_, nullptr),
                  SEC_E_OK);
        SecInvalidateHandle(&context_);
    }
    ~Client() {
        if (SecIsValidHandle(&context_)) DeleteSecurityContext(&context_);
        FreeCredentialsHandle(&credentials_);
    }

    // One step; the token goes to `said`. The input that is left stays in `input`.
    SECURITY_STATUS Step(std::string& said, std::u16string target = u"mail.example.test") {
        SecBuffer token{0, SECBUFFER_EMPTY, nullptr};
        SecBufferDesc output{SECBUFFER_VERSION, 1, &token};
        SecBuffer buffers[] = {{static_cast<ULONG>(input.size()), SECBUFFER_TOKEN, input.data()},
                               {0, SECBUFFER_EMPTY, nullptr}};
        SecBufferDesc given{SECBUFFER_VERSION, 2, buffers};
        const bool first = !SecIsValidHandle(&context_);
        ULONG attributes = 0;
        const SECURITY_STATUS status = InitializeSecurityContextW(
            &credentials_, first ? nullptr : &context_, target.data(), kRequest, 0, 0,
            first ? nullptr : &given, 0, &context_, &output, &attributes, nullptr);
        missing = buffers[1].BufferType == SECBUFFER_MISSING ? buffers[1].cbBuffer : 0;
        if (status == SEC_E_OK || status == SEC_I_CONTINUE_NEEDED) {
            EXPECT_EQ(attributes & kRequest, kRequest);
            said.append(static_cast<const char*>(token.pvBuffer), token.cbBuffer);
            FreeContextBuffer(token.pvBuffer);
            const bool extra = buffers[1].BufferType == SECBUFFER_EXTRA;
            input.erase(0, input.size() - (extra ? buffers[1].cbBuffer : 0));
        } else {
            EXPECT_EQ(token.pvBuffer, nullptr);
        }
        return status;
    }

    // The first token.
    std::string Hello(const std::u16string& target = u"mail.example.test") {
        std::string hello;
        EXPECT_EQ(Step(hello, target), SEC_I_CONTINUE_NEEDED);
        return hello;
    }

    // Shakes hands; what the server says behind its part stays in `input`.
    void Establish(TlsServer& server, const std::string& text = {}) {
        SECURITY_STATUS status = SEC_I_CONTINUE_NEEDED;
        for (std::string said = Hello(); status != SEC_E_OK;) {
            input += server.Handshake(said);
            if (server.established()) input += server.Encrypt(text);
            said.clear();
            status = Step(said);
            ASSERT_TRUE(status == SEC_E_OK || status == SEC_I_CONTINUE_NEEDED)
                << std::hex << status;
        }
    }

    // Decrypts the first record of the input into `text` and leaves the rest of it.
    SECURITY_STATUS Decrypt(std::string& text) {
        SecBuffer buffers[4] = {{static_cast<ULONG>(input.size()), SECBUFFER_DATA, input.data()}};
        SecBufferDesc message{SECBUFFER_VERSION, 4, buffers};
        const SECURITY_STATUS status = DecryptMessage(&context_, &message, 0, nullptr);
        if (status == SEC_E_OK) {
            EXPECT_EQ(buffers[0].BufferType, unsigned(SECBUFFER_STREAM_HEADER));
            EXPECT_EQ(buffers[1].BufferType, unsigned(SECBUFFER_DATA));
            text.assign(static_cast<const char*>(buffers[1].pvBuffer), buffers[1].cbBuffer);
            const bool extra = buffers[3].BufferType == SECBUFFER_EXTRA;
            input.erase(0, input.size() - (extra ? buffers[3].cbBuffer : 0));
        }
        return status;
    }

    // The records for the text.
    std::string Encrypt(const std::string& text) {
        SecPkgContext_StreamSizes sizes{};
        EXPECT_EQ(QueryContextAttributesW(&context_, SECPKG_ATTR_STREAM_SIZES, &sizes), SEC_E_OK);
        EXPECT_EQ(sizes.cbMaximumMessage, 16384u);
        std::string area(sizes.cbHeader, 'h');
        area += text + std::string(sizes.cbTrailer, 't');
        SecBuffer buffers[] = {
            {sizes.cbHeader, SECBUFFER_STREAM_HEADER, area.data()},
            {static_cast<ULONG>(text.size()), SECBUFFER_DATA, area.data() + sizes.cbHeader},
            {sizes.cbTrailer, SECBUFFER_STREAM_TRAILER, area.data() + sizes.cbHeader + text.size()},
            {0, SECBUFFER_EMPTY, nullptr}};
        SecBufferDesc message{SECBUFFER_VERSION, 4, buffers};
        EXPECT_EQ(EncryptMessage(&context_, 0, &message, 0), SEC_E_OK);
        return area.substr(0, buffers[0].cbBuffer + buffers[1].cbBuffer + buffers[2].cbBuffer);
    }

    std::string input;
    ULONG missing = 0;

private:
    CredHandle credentials_;
    CtxtHandle context_;
};

class TlsPackage : public ::testing::TestWithParam<TlsVersion> {};

TEST_P(TlsPackage, CarriesTextBothWays) {
    const auto server = MakeTlsServer(GetParam());
    Client client;
    client.Establish(*server, "greeting");
    std::string text;
    for (int i = 0; i < 2 && text.empty(); ++i) {  // TLS 1.0 begins with an empty record
        ASSERT_EQ(client.Decrypt(text), SEC_E_OK);
    }
    EXPECT_EQ(text, "greeting");
    for (const std::size_t size : {1u, 255u, 8192u, 16383u, 16384u}) {
        const std::string sent(size, static_cast<char>('a' + size % 26));
        EXPECT_EQ(server->Decrypt(client.Encrypt(sent)), sent);
        client.input = server->Encrypt(sent);
        std::string received;
        while (!client.input.empty()) {
            ASSERT_EQ(client.Decrypt(text), SEC_E_OK);
            received += text;
        }
        EXPECT_EQ(received, sent);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, TlsPackage,
                         ::testing::Values(TlsVersion::Tls10, TlsVersion::Tls11,
                                           TlsVersion::Tls12));

// Byte by byte: nothing is consumed before a record is whole, and what is missing is told.
TEST(TlsPackageHandshake, TakesWholeRecordsOnly) {
    const auto server = MakeTlsServer();
    Client client;
    std::string said = client.Hello();
    SECURITY_STATUS status = SEC_I_CONTINUE_NEEDED;
    while (status != SEC_E_OK) {
        const std::string bytes = server->Handshake(said);
        ASSERT_FALSE(bytes.empty());
        said.clear();
        for (const char byte : bytes) {
            ASSERT_NE(status, SEC_E_OK);
            const ULONG before = client.missing;
            client.input += byte;
            status = client.Step(said);
            if (status == SEC_E_INCOMPLETE_MESSAGE) {
                EXPECT_TRUE(before <= 1 || client.missing == before - 1);
            } else {
                ASSERT_TRUE(status == SEC_E_OK || status == SEC_I_CONTINUE_NEEDED);
                EXPECT_EQ(client.input, "");
            }
        }
    }
    EXPECT_TRUE(server->established());
}

// Part of a record behind whole ones is handed back as extra.
TEST(TlsPackageHandshake, HandsBackTheBeginningOfTheNextRecord) {
    const auto server = MakeTlsServer();
    Client client;
    client.input = server->Handshake(client.Hello());
    const char last = client.input.back();
    client.input.pop_back();
    std::string said;
    EXPECT_EQ(client.Step(said), SEC_I_CONTINUE_NEEDED);
    EXPECT_EQ(said, "");
    ASSERT_FALSE(client.input.empty());
    client.input += last;
    EXPECT_EQ(client.Step(said), SEC_I_CONTINUE_NEEDED);
    EXPECT_FALSE(server->Handshake(said).empty());
    EXPECT_TRUE(server->established());
}

TEST(TlsPackageHandshake, TellsCausesApart) {
    const struct {
        std::string answer;
        SECURITY_STATUS status;
    } cases[] = {
        {"220 mx.example.test", SEC_E_INVALID_TOKEN},
        {"2", SEC_E_INVALID_TOKEN},
        {{"\x16\x02\x00", 3}, SEC_E_INVALID_TOKEN},
        {{"\x16\x03\x03\xFF\xFF", 5}, SEC_E_INVALID_TOKEN},
        {{"\x15\x03\x03\x00\x02\x02\x46", 7}, SEC_E_UNSUPPORTED_FUNCTION},
        {{"\x15\x03\x03\x00\x02\x02\x28", 7}, SEC_E_ILLEGAL_MESSAGE},
        {{"\x15\x03\x03\x00\x02\x02\x50", 7}, SEC_E_INTERNAL_ERROR},
        {{"\x15\x03\x03\x00\x02\x01\x00", 7}, SEC_E_ILLEGAL_MESSAGE},
        {{"\x16\x03\x03\x00\x04\x02\x00\x00\x00", 9}, SEC_E_ILLEGAL_MESSAGE},
        {{"\x15\x03\x03\x00\x02\x01\x70", 7}, SEC_I_CONTINUE_NEEDED},  // a warning
    };
    for (const auto& c : cases) {
        Client client;
        client.Hello();
        client.input = c.answer;
        std::string said;
        EXPECT_EQ(client.Step(said), c.status) << c.answer;
        EXPECT_EQ(said, "");
    }
    // A server that is too old for the versions asked for.
    Client client(SP_PROT_TLS1_2_CLIENT);
    client.input = MakeTlsServer(TlsVersion::Tls10)->Handshake(client.Hello());
    std::string said;
    EXPECT_EQ(client.Step(said), SEC_E_UNSUPPORTED_FUNCTION);
}

TEST(TlsPackageHandshake, SendsNamesButNoAddresses) {
    const struct {
        std::u16string target;
        std::string name;
    } cases[] = {
        {u"mail.example.test", "mail.example.test"},
        {u"mail.example.test.", "mail.example.test"},
        {u"localhost", "localhost"},
        {u"127.0.0.1", ""},
        {u"::1", ""},
        {u"b\u00FCro.test", ""},
        {u"", ""},
        {std::u16string(300, u'a'), ""},
    };
    for (const auto& c : cases) {
        const auto server = MakeTlsServer();
        Client client;
        EXPECT_FALSE(server->Handshake(client.Hello(c.target)).empty());
        EXPECT_EQ(server->requestedName(), c.name);
    }
}

}  // namespace
}  // namespace quorvane::testing
