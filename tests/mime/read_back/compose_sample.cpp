// compose_sample FOLDER ENCODING: writes a message with the contents of the files alternative.txt,
// body.html, picture.png and report.pdf to standard output, its texts in the encoding 0 to 4.
#include <cstdio>
#include <fstream>
#include <iterator>

#include "mime/message_composer.h"

namespace {

using namespace quorvane;

WideString ReadUtf8(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return FromUtf8(std::string(std::istreambuf_iterator<char>(file), {}));
}

CBodyPart Body(const std::string& path, const WideString& type, LONG encoding) {
    CBodyPart part;
    part.contentType = type;
    part.charset = OLESTR("unicode");
    part.encoding = encoding;
    part.text = ReadUtf8(path);
    return part;
}

CAttachmentPart Attachment(const std::string& folder, const WideString& name) {
    CAttachmentPart part;
    part.file = FromUtf8(folder) + WCHAR('\\') + name;
    part.encoding = 4;
    return part;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string folder = argv[1];
    const LONG encoding = argv[2][0] - '0';
    COutgoingMessage message;
    message.sender = {OLESTR("J\u00FCrgen M\u00FCller"), OLESTR("sender@example.com")};
    message.to.push_back({OLESTR("O'Brien, \"Bob\""), OLESTR("bob@example.org")});
    message.to.push_back({{}, OLESTR("second@example.org")});
    message.subject = OLESTR("Gr\u00FC\u00DFe \u20AC \U0001F600");
    message.bodyParts.push_back(Body(folder + "/alternative.txt", OLESTR("text/plain"), encoding));
    message.bodyParts.push_back(Body(folder + "/body.html", OLESTR("text/html"), encoding));
    message.attachments.push_back(Attachment(folder, OLESTR("report.pdf")));
    message.attachments.push_back(Attachment(folder, OLESTR("picture.png")));
    message.attachments[1].isInline = true;
    message.attachments[1].contentId = OLESTR("picture@example.com");
    message.headers.Append("X-Long", "one\r\nSubject: two\n.\nthree");
    std::string out;
    ComposeMessage(message, out);
    return std::fwrite(out.data(), 1, out.size(), stdout) == out.size() ? 0 : 1;
}
