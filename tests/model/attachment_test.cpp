#include <gtest/gtest.h>

#include <cstring>

#include "automation/boundary.h"
#include "model/mail_attachment.h"
#include "model/mail_message.h"
#include "tests/support/com.h"

namespace quorvane {
namespace {

std::string Saved(IMailAttachment* attachment) {
    unsigned char* data = nullptr;
    LONG size = -1;
    EXPECT_EQ(attachment->SaveToMemory(&data, &size), S_OK);
    const std::string bytes(reinterpret_cast<char*>(data), static_cast<std::size_t>(size));
    CoTaskMemFree(data);
    return bytes;
}

HRESULT Load(IMailAttachment* attachment, const char* bytes, LONG size) {
    std::string copy(bytes, std::strlen(bytes));
    return attachment->LoadFromMemory(reinterpret_cast<unsigned char*>(copy.data()), size);
}

TEST(MailAttachment, Defaults) {
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    MailEncoding encoding = MailEncodingDefault;
    VARIANT_BOOL isInline = VARIANT_TRUE;
    EXPECT_EQ(attachment->get_Encoding(&encoding), S_OK);
    EXPECT_EQ(encoding, MailEncodingBase64);
    EXPECT_EQ(attachment->get_Inline(&isInline), S_OK);
    EXPECT_EQ(isInline, VARIANT_FALSE);
    for (auto get :
         {&IMailAttachment::get_Name, &IMailAttachment::get_File, &IMailAttachment::get_ContentType,
          &IMailAttachment::get_Charset, &IMailAttachment::get_ContentId}) {
        EXPECT_EQ(GetString(attachment.Get(), get), OLESTR(""));
    }
    unsigned char dummy = 0;
    unsigned char* data = &dummy;
    LONG size = 7;
    EXPECT_EQ(attachment->SaveToMemory(&data, &size), S_OK);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(size, 0);
}

TEST(MailAttachment, DataComesBackAsNewBlocks) {
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    ASSERT_EQ(Load(attachment.Get(), "abc", 3), S_OK);
    unsigned char* first = nullptr;
    unsigned char* second = nullptr;
    LONG size = 0;
    ASSERT_EQ(attachment->SaveToMemory(&first, &size), S_OK);
    ASSERT_EQ(attachment->SaveToMemory(&second, &size), S_OK);
    EXPECT_NE(first, second);
    first[0] = 'X';
    CoTaskMemFree(first);
    CoTaskMemFree(second);
    EXPECT_EQ(Saved(attachment.Get()), "abc");
}

TEST(MailAttachment, RefusesBadArgumentsAndKeepsItsData) {
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    ASSERT_EQ(Load(attachment.Get(), "abc", 3), S_OK);
    EXPECT_EQ(Load(attachment.Get(), "xyz", 0), E_INVALIDARG);
    EXPECT_EQ(Load(attachment.Get(), "xyz", -1), E_INVALIDARG);
    EXPECT_EQ(attachment->LoadFromMemory(nullptr, 3), E_INVALIDARG);
    unsigned char* data = nullptr;
    LONG size = 0;
    EXPECT_EQ(attachment->SaveToMemory(nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(attachment->SaveToMemory(&data, nullptr), E_INVALIDARG);
    EXPECT_EQ(Saved(attachment.Get()), "abc");
}

TEST(MailAttachment, StoresAnyEncodingAndBoolean) {
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    MailEncoding nine;
    StoreEnumeration(9, &nine);
    EXPECT_EQ(attachment->put_Encoding(nine), S_OK);
    EXPECT_EQ(attachment->get_Encoding(&nine), S_OK);
    EXPECT_EQ(EnumerationValue(nine), 9);
    VARIANT_BOOL value = 0;
    EXPECT_EQ(attachment->put_Inline(2), S_OK);
    EXPECT_EQ(attachment->get_Inline(&value), S_OK);
    EXPECT_EQ(value, 2);
}

// Late-bound, a number for the block would be read past its end.
TEST(MailAttachment, LateBoundBlocksComeByReferenceOnly) {
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    const struct {
        VARTYPE kind;
        UINT named;  // arguments given by name
    } cases[] = {{VT_UI1, 0}, {VT_I4, 0}, {VT_BSTR, 0}, {VT_UI1, 2}, {VT_EMPTY, 2}};
    for (const auto& c : cases) {
        VARIANT arguments[2] = {};
        DISPID names[2] = {1, 0};
        arguments[0].vt = VT_I4;
        arguments[0].lVal = 1000;
        arguments[1].vt = c.kind;
        DISPPARAMS parameters{arguments, names, 2, c.named};
        UINT bad = 77;
        EXPECT_EQ(attachment->Invoke(8, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                     nullptr, nullptr, &bad),
                  DISP_E_TYPEMISMATCH)
            << c.kind;
        EXPECT_EQ(bad, 1u);
    }
    unsigned char* data = nullptr;
    LONG size = -1;
    EXPECT_EQ(attachment->SaveToMemory(&data, &size), S_OK);
    EXPECT_EQ(size, 0);
}

TEST(DataBlock, IsFollowedByAnUncountedZeroAndShared) {
    const BYTE bytes[] = {1, 2, 3, 4, 5};
    const DataBlock block = DataBlock::Copy(bytes);
    EXPECT_EQ(block.size(), 5u);
    EXPECT_EQ(block.data()[5], 0);
    const DataBlock copy = block;
    EXPECT_EQ(copy.data(), block.data());
    EXPECT_TRUE(DataBlock::Copy({}).empty());
}

// An attachment of another implementation: every read is counted, and one of them can fail.
class ForeignAttachment final : public ComObject<PlainCount, IMailAttachment> {
public:
    explicit ForeignAttachment(HRESULT saveResult) : saveResult_(saveResult) {}
    std::string reads;

    STDMETHODIMP get_Name(BSTR* out) override { return Text('N', OLESTR("name"), out); }
    STDMETHODIMP get_File(BSTR* out) override { return Text('F', OLESTR("file"), out); }
    STDMETHODIMP get_Encoding(MailEncoding* out) override {
        reads += 'E';
        StoreEnumeration(9, out);
        return S_OK;
    }
    STDMETHODIMP get_ContentType(BSTR* out) override { return Text('T', OLESTR("a/b"), out); }
    STDMETHODIMP get_Charset(BSTR* out) override { return Text('C', OLESTR(""), out); }
    STDMETHODIMP get_Inline(VARIANT_BOOL* out) override {
        reads += 'I';
        *out = 1;
        return S_OK;
    }
    STDMETHODIMP get_ContentId(BSTR* out) override { return Text('D', OLESTR("cid"), out); }
    STDMETHODIMP SaveToMemory(unsigned char** data, LONG* size) override {
        reads += 'S';
        *data = nullptr;
        *size = 0;
        if (FAILED(saveResult_)) return saveResult_;
        *data = static_cast<unsigned char*>(CoTaskMemAlloc(3));
        std::memcpy(*data, "xyz", 3);
        *size = 3;
        return S_OK;
    }
    STDMETHODIMP put_Name(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP put_File(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP put_Encoding(MailEncoding) override { return E_NOTIMPL; }
    STDMETHODIMP put_ContentType(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP put_Charset(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP put_Inline(VARIANT_BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP put_ContentId(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP LoadFromMemory(unsigned char*, LONG) override { return E_NOTIMPL; }

private:
    HRESULT Text(char what, WideView text, BSTR* out) {
        reads += what;
        return ToBstr(text, out);
    }
    HRESULT saveResult_;
};

TEST(AddAttachment, ReadsAForeignObjectInOrderAndTakesASnapshot) {
    const ComPtr<ForeignAttachment> foreign(new ForeignAttachment(S_OK));
    const ComPtr<CMailMessage> message(new CMailMessage);
    ASSERT_EQ(message->AddAttachment(foreign.Get()), S_OK);
    EXPECT_EQ(foreign->reads, "NFETCIDS");
    ASSERT_EQ(message->content().attachments.size(), 1u);
    const CAttachmentPart& part = message->content().attachments[0];
    EXPECT_EQ(part.name, OLESTR("name"));
    EXPECT_EQ(part.file, OLESTR("file"));
    EXPECT_EQ(part.encoding, 0) << "9 is no encoding";
    EXPECT_EQ(part.contentType, OLESTR("a/b"));
    EXPECT_EQ(part.charset, OLESTR("")) << "the charset of the object replaces the default";
    EXPECT_TRUE(part.isInline);
    EXPECT_EQ(part.contentId, OLESTR("cid"));
    EXPECT_EQ(part.data.size(), 3u);
}

TEST(AddAttachment, PassesTheFailureOfTheDataOnAndAddsNothing) {
    const ComPtr<ForeignAttachment> foreign(new ForeignAttachment(E_OUTOFMEMORY));
    const ComPtr<CMailMessage> message(new CMailMessage);
    EXPECT_EQ(message->AddAttachment(foreign.Get()), E_OUTOFMEMORY);
    EXPECT_TRUE(message->content().attachments.empty());
}

TEST(AddAttachment, LaterChangesDoNotReachTheMessage) {
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    const ComPtr<CMailMessage> message(new CMailMessage);
    ASSERT_EQ(Load(attachment.Get(), "first", 5), S_OK);
    ASSERT_EQ(attachment->put_Name(Bstr(OLESTR("one"))), S_OK);
    ASSERT_EQ(message->AddAttachment(attachment.Get()), S_OK);
    ASSERT_EQ(Load(attachment.Get(), "second", 6), S_OK);
    ASSERT_EQ(attachment->put_Name(Bstr(OLESTR("two"))), S_OK);
    MailEncoding nine;
    StoreEnumeration(9, &nine);
    ASSERT_EQ(attachment->put_Encoding(nine), S_OK);
    ASSERT_EQ(attachment->put_Inline(2), S_OK);
    ASSERT_EQ(attachment->put_ContentType(Bstr(OLESTR("a/b"))), S_OK);
    ASSERT_EQ(attachment->put_ContentId(Bstr(OLESTR("cid"))), S_OK);
    ASSERT_EQ(attachment->put_File(Bstr(OLESTR("file"))), S_OK);
    ASSERT_EQ(message->AddAttachment(attachment.Get()), S_OK);

    const auto& parts = message->content().attachments;
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(parts[0].data.data())), "first");
    EXPECT_EQ(parts[0].name, OLESTR("one"));
    EXPECT_EQ(parts[0].encoding, 4);
    EXPECT_EQ(parts[1].data.size(), 6u);
    EXPECT_EQ(parts[0].charset, OLESTR("")) << "an empty charset stays empty";
    EXPECT_FALSE(parts[0].isInline);
    EXPECT_EQ(parts[1].name, OLESTR("two"));
    EXPECT_EQ(parts[1].encoding, 0);
    EXPECT_TRUE(parts[1].isInline);
    EXPECT_EQ(parts[1].contentType, OLESTR("a/b"));
    EXPECT_EQ(parts[1].contentId, OLESTR("cid"));
    EXPECT_EQ(parts[1].file, OLESTR("file"));
    EXPECT_EQ(message->ClearAttachments(), S_OK);
    EXPECT_TRUE(parts.empty());
}

}  // namespace
}  // namespace quorvane
