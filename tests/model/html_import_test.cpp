// HTML import: what counts as a reference and what becomes of it, to the character; which files
// are refused with which words, and what the message holds then.
#include "model/html_import.h"

#include <gtest/gtest.h>

#include "model/mail_attachment.h"
#include "model/mail_message.h"
#include "tests/support/com.h"
#include "tests/support/scratch_folder.h"

namespace quorvane {
namespace {

using namespace std::string_view_literals;

// Everything that an import of the text from C:\mail\page.htm gives: the HTML or the error's text,
// then the files of the parts. UTF-8.
std::string Import(std::string_view html) {
    std::vector<CAttachmentPart> parts;
    std::string result;
    try {
        result = Show(ImportHtmlText(FromUtf8(html), OLESTR("C:\\mail\\page.htm"), parts));
    } catch (const HtmlImportError& error) {
        result = Show(error.text());
    }
    for (const CAttachmentPart& part : parts) result += "|" + Show(part.file);
    return result;
}

TEST(HtmlImport, References) {
    const std::string malformed = "Cannot import malformed HTML file C:\\mail\\page.htm";
    const struct {
        std::string_view html;
        std::string expected;
    } cases[] = {
        {"", ""},
        {"<p>src is = no reference, src =\"nor this\"</p>",
         "<p>src is = no reference, src =\"nor this\"</p>"},
        {"<IMG SRC=\"Images/A.GIF\" alt=\"x\">\r\n",
         "<IMG SRC=\"cid:i0000\" alt=\"x\">\r\n|C:\\mail\\Images\\A.GIF"},
        {"data-src= \t\r\n\f\v\"a.b\" and src=\"c.d\"",
         "data-src= \t\r\n\f\v\"cid:i0000\" and src=\"cid:i0001\"|C:\\mail\\a.b|C:\\mail\\c.d"},
        // The same file again, in either case of its ASCII letters.
        {"src=\"a/b.gif\" src=\"A\\B.GIF\" src=\"é.gif\" src=\"É.gif\" src=\"中.gif\"",
         "src=\"cid:i0000\" src=\"cid:i0000\" src=\"cid:i0001\" src=\"cid:i0002\" "
         "src=\"cid:i0003\"|C:\\mail\\a\\b.gif|C:\\mail\\é.gif|C:\\mail\\É.gif|C:\\mail\\中.gif"},
        {"src=\"HTTPS://x/a.gif\" src=\"http://x/b.gif\" src='http:/x'",
         "src=\"HTTPS://x/a.gif\" src=\"http://x/b.gif\" src='cid:i0000'|C:\\mail\\http:\\x"},
        // The kind of quote that opens a value doesn't say which one ends it.
        {"src='a.gif' src='b.gif'",
         "src='cid:i0000' src='cid:i0001'|C:\\mail\\a.gif|C:\\mail\\b.gif"},
        {"src='a.gif' class=\"x\" src=\"b.gif\"",
         "src='cid:i0000\"x\" src=\"cid:i0001\"|C:\\mail\\a.gif' class=|C:\\mail\\b.gif"},
        {"src=\"a'b.gif\" src=\"it's'",
         "src=\"cid:i0000\" src=\"cid:i0001's'|C:\\mail\\a'b.gif|C:\\mail\\it"},
        {"src=\"src=\"src=\"x.y\"",
         "src=\"cid:i0000\"src=\"cid:i0001\"|C:\\mail\\src=|C:\\mail\\x.y"},
        // Nothing is decoded, and no scheme but the two is known.
        {"src=\"my%20dog.gif?x=1#y\" src=\"data:image/png;base64,A==\" src=\"cid:a@b\"",
         "src=\"cid:i0000\" src=\"cid:i0001\" src=\"cid:i0002\"|C:\\mail\\my%20dog.gif?x=1#y|"
         "C:\\mail\\data:image\\png;base64,A==|C:\\mail\\cid:a@b"},
        {"src=\"\" src=\"x\" src=\"/\"",
         "src=\"cid:i0000\" src=\"cid:i0001\" src=\"cid:i0002\"||x|/"},
        {"<img src=a.gif>", malformed},
        {"src=\"a.gif\" src=b.gif src=\"c.gif\"", malformed + "|C:\\mail\\a.gif"},
        {"src=\"a.gif\" src=\"b.gif", malformed + "|C:\\mail\\a.gif"},
        {"src='a.gif", malformed},
        {"src=\u00a0\"a.gif\"", malformed},
        {"src=", malformed},
        {"src= \t ", malformed},
        {"src=\"", malformed},
    };
    for (const auto& c : cases) EXPECT_EQ(Import(c.html), c.expected) << c.html;
}

TEST(HtmlImport, PathsOfReferences) {
    const struct {
        WideView htmlPath;
        WideView reference;
        const char* path;
    } cases[] = {
        {OLESTR("C:\\mail\\page.htm"), OLESTR("images/a.gif"), "C:\\mail\\images\\a.gif"},
        {OLESTR("C:\\mail\\page.htm"), OLESTR("..\\a/b.gif"), "C:\\mail\\..\\a\\b.gif"},
        {OLESTR("C:\\mail\\page.htm"), OLESTR("D:a/b.gif"), "D:a\\b.gif"},
        {OLESTR("C:\\mail\\page.htm"), OLESTR("/logo.gif"), "\\logo.gif"},
        {OLESTR("C:\\mail\\page.htm"), OLESTR("//server/share/a.gif"), "\\\\server\\share\\a.gif"},
        {OLESTR("C:\\mail\\page.htm"), OLESTR("file:///C:/a"), "C:\\mail\\file:\\\\\\C:\\a"},
        {OLESTR("page.htm"), OLESTR("a.gif"), ".\\a.gif"},
        {OLESTR("C:/mail/page.htm"), OLESTR("a.gif"), ".\\a.gif"},
        {OLESTR("C:\\mail\\sub/page.htm"), OLESTR("a.gif"), "C:\\mail\\a.gif"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Show(ResolveImagePath(c.htmlPath, c.reference)), c.path);
    }
}

class ImportHtml : public ::testing::Test {
protected:
    const ScratchFolder folder;
    const ComPtr<CMailMessage> message{new CMailMessage};

    // The file's path in the form in which references are resolved against its folder.
    WideString PathOf(const char* name) const {
        WideString path = ToWide(folder.path() / name);
        std::replace(path.begin(), path.end(), WCHAR('/'), WCHAR('\\'));
        return path;
    }
    HRESULT Import(const char* name) { return message->ImportHTML(Bstr(PathOf(name))); }
    const MessageContent& content() const { return message->content(); }

    void Attach(WideView file, WideView contentId) {
        const auto attachment = New<CMailAttachment, IMailAttachment>();
        attachment->put_File(Bstr(file));
        attachment->put_ContentId(Bstr(contentId));
        ASSERT_EQ(message->AddAttachment(attachment.Get()), S_OK);
    }
    // The import fails with this text, as the component's error information for the interface.
    void ExpectFailure(const char* name, const std::string& text) {
        EXPECT_EQ(Import(name), E_FAIL) << name;
        ComPtr<IErrorInfo> info;
        ASSERT_EQ(GetErrorInfo(0, info.Receive()), S_OK) << name;
        BstrHolder description;
        GUID about{};
        info->GetDescription(description.Receive());
        info->GetGUID(&about);
        EXPECT_EQ(Show(FromBstr(description.Get())), text + Show(PathOf(name)));
        EXPECT_EQ(about, IID_IMailMessage);
        EXPECT_EQ(content().body, OLESTR("before"));
        EXPECT_EQ(content().bodyFormat, MailFormatText);
    }
};

TEST_F(ImportHtml, FillsTheMessage) {
    // Bytes of the thread's code page, a charset that is not believed, and an end at a zero byte.
    folder.Write(
        "page.html",
        "<meta charset=utf-8>\x80\xE9<img src=\"\xE9/a.png\"><img src='A.png'>\0<img src="sv);
    message->put_AltMessageBody(Bstr(OLESTR("alternative")));
    Attach(OLESTR("report.pdf"), {});
    Attach(PathOf("a.PNG"), OLESTR("logo@x"));
    ASSERT_EQ(Import("page.html"), S_OK);
    EXPECT_EQ(Show(content().body),
              "<meta charset=utf-8>€é<img src=\"cid:i0002\"><img src='cid:logo@x'>");
    EXPECT_EQ(content().bodyFormat, MailFormatHtml);
    EXPECT_EQ(content().altBody, OLESTR("alternative"));
    ASSERT_EQ(content().attachments.size(), 3u);
    const CAttachmentPart& part = content().attachments[2];
    EXPECT_EQ(Show(part.file), Show(PathOf("")) + "é\\a.png");
    EXPECT_EQ(part.contentId, OLESTR("i0002"));
    EXPECT_EQ(part.charset, OLESTR("iso-8859-1"));
    EXPECT_EQ(part.contentType + part.name, OLESTR(""));
    EXPECT_EQ(part.encoding, MailEncodingBase64);
    EXPECT_TRUE(part.isInline);
    EXPECT_TRUE(part.data.empty());
}

// The first part of a file decides. Without an identifier it can't be referred to, and it hides
// the parts made for the references.
TEST_F(ImportHtml, PartsWithoutIdentifierAreNotReused) {
    folder.Write("page.html", "src=\"a.png\" src=\"a.png\"");
    Attach(PathOf("a.png"), {});
    ASSERT_EQ(Import("page.html"), S_OK);
    EXPECT_EQ(content().body, OLESTR("src=\"cid:i0001\" src=\"cid:i0002\""));
    EXPECT_EQ(content().attachments.size(), 3u);
}

TEST_F(ImportHtml, TextsWithoutReferencesBecomeTheBody) {
    folder.Write("empty.html", "");
    folder.Write("zeros.html", std::string(1000, '\0'));
    folder.Write("text.html", "<p>no picture</p>");
    for (const auto& [name, body] : {std::pair{"text.html", WideView(OLESTR("<p>no picture</p>"))},
                                     {"empty.html", {}},
                                     {"zeros.html", {}}}) {
        message->put_MessageBody(Bstr(OLESTR("before")));
        EXPECT_EQ(Import(name), S_OK) << name;
        EXPECT_EQ(content().body, body) << name;
        EXPECT_EQ(content().bodyFormat, MailFormatHtml);
    }
    EXPECT_TRUE(content().attachments.empty());
}

TEST_F(ImportHtml, FailuresLeaveTheBody) {
    folder.Write("cut.html", "<img src=\"a.png\"><img src=b.png>");
    folder.Write("busy.html", "<p>");
    message->put_MessageBody(Bstr(OLESTR("before")));
    ExpectFailure("none.html", "Cannot open HTML file ");
    ExpectFailure("", "Cannot open HTML file ");  // the folder itself
    const HANDLE busy = CreateFileW(PathOf("busy.html").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    ASSERT_NE(busy, INVALID_HANDLE_VALUE);
    ExpectFailure("busy.html", "Cannot open HTML file ");
    CloseHandle(busy);
    EXPECT_EQ(message->ImportHTML(nullptr), E_FAIL);
    EXPECT_TRUE(content().attachments.empty());
    ExpectFailure("cut.html", "Cannot import malformed HTML file ");
    EXPECT_EQ(content().attachments.size(), 1u) << "pictures before the fault stay attached";
    folder.Write("page.html", "<img src=\"c.png\">");
    EXPECT_EQ(Import("page.html"), S_OK);
    EXPECT_EQ(content().body, OLESTR("<img src=\"cid:i0001\">"));
}

TEST_F(ImportHtml, ManyPictures) {
    constexpr int kCount = 10001;
    std::string html;
    for (int i = 0; i < kCount; ++i) html += "<img src='" + std::to_string(i) + ".png'>";
    folder.Write("page.html", html + html);
    ASSERT_EQ(Import("page.html"), S_OK);
    ASSERT_EQ(content().attachments.size(), std::size_t{kCount});
    EXPECT_EQ(content().attachments[9999].contentId, OLESTR("i9999"));
    EXPECT_EQ(content().attachments[10000].contentId, OLESTR("i10000"));
    EXPECT_TRUE(content().body.ends_with(OLESTR("<img src='cid:i9999'><img src='cid:i10000'>")));
}

}  // namespace
}  // namespace quorvane
